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
    /// Destroys the window and creates a new one.
    void newWindow();
    void picture(const QString& name);
    /// Saves a picture of a part of the screen.
    void picture(const QString& name, const QRect& area);
    /// Ends the tour if the condition does not become true in time.
    void waitFor(const char* what, const std::function<bool()>& condition);
    void waitForImages(int count);
    /// Triggers the action, saves a picture of the modal window that it opens, and closes the window.
    void pictureOfModal(const char* action, const QString& name);
    void openCamera(const QString& model, bool pictured = false);
    /// Waits until the frame rates change.
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
    std::unique_ptr<ShownImages> m_images; // of the current window
};

[[noreturn]] void endTour(const QString& what);
