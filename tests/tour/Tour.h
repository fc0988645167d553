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
    void camerasChapter();
    void faultsChapter();
    void featuresChapter();
    void editorsChapter();
    void slowAndSilentCameraChapter();
    void highResolutionChapter();

private:
    // Tour.cpp
    void picture(const QString& name);
    /// Of a part of the screen.
    void picture(const QString& name, const QRect& area);
    /// Ends the tour where the condition does not come about in time.
    void waitFor(const char* what, const std::function<bool()>& condition);
    void waitForImages(int count);
    /// Triggers the action and closes the modal window that it brings up.
    void pictureOfModal(const char* action, const QString& name);
    void openCamera(const QString& model, bool pictured = false);

    /// Opens an editor of each kind.
    void editors(const QString& suffix); // TourFeatures.cpp

    // TourLive.cpp
    void zoomAndPointer();
    void menus();
    void pauseAndSnapshot();
    void softwareTrigger();
    void about();

    QDir m_folder;
    int m_number = 0;
    std::unique_ptr<WindowDriver> m_driver;
    ShownImages m_images;
};

[[noreturn]] void endTour(const QString& what);
