#pragma once

#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QDir>
#include <QString>

#include <functional>
#include <memory>

/// A walk through the program that saves a picture at every stop; each chapter has its own file.
class Tour {
public:
    explicit Tour(const QDir& folder);

    void liveChapter();
    void featuresChapter();
    void editorsChapter();
    void refusedAndSlowChapter();
    void camerasChapter();
    void faultsChapter();
    void stylesChapter();
    void highResolutionChapter();

private:
    // Tour.cpp
    /// Ends the window that there is and starts another one.
    void newWindow();
    void picture(const QString& name);
    /// Of a part of the screen.
    void picture(const QString& name, const QRect& area);
    /// Ends the tour where the condition does not come about in time.
    void waitFor(const char* what, const std::function<bool()>& condition);
    void waitForImages(int count);
    /// Triggers the action and closes the modal window that it brings up.
    void pictureOfModal(const char* action, const QString& name);
    void openCamera(const QString& model, bool pictured = false);
    /// Until the frame rates are other ones.
    void waitForRates();

    // TourFeatures.cpp
    void toolTips();
    /// Opens an editor of each kind.
    void editors(const QString& suffix);

    // TourLive.cpp
    void zoomAndPointer();
    void menus();
    void floatingDocks();
    void pauseAndSnapshot();
    void saveInVain();
    void softwareTrigger();
    void about();

    // TourCameras.cpp
    void testPatterns();
    void lostImages();

    QDir m_folder;
    int m_number = 0;
    std::unique_ptr<WindowDriver> m_driver;
    std::unique_ptr<ShownImages> m_images; // of that window
};

[[noreturn]] void endTour(const QString& what);
