// The window around a live image: every command of tool bar and menus.

#include "tests/tour/Tour.h"

#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/OpenedCamera.h"

#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolButton>

void Tour::liveChapter()
{
    picture("start");
    openCamera("SIM-C1920", true);
    picture("opened");

    const QString noRates = m_driver->rates();
    m_driver->start();
    waitForImages(5);
    picture("live");
    waitFor("frame rates", [&] { return m_driver->rates() != noRates; });
    picture("live-with-rates");

    zoomAndPointer();
    menus();
    pauseAndSnapshot();
    softwareTrigger();
    about();
}

void Tour::zoomAndPointer()
{
    m_driver->trigger("actionZoomIn");
    m_driver->trigger("actionZoomIn");
    waitForImages(2);
    picture("zoomed-in");

    for (QToolButton* button : m_driver->window().findChildren<QToolButton*>()) {
        if (button->text() == " Drag ")
            button->click();
    }
    QWidget* const viewport = m_driver->imageView()->view()->viewport();
    const QPoint centre = viewport->rect().center();
    QTest::mousePress(viewport, Qt::LeftButton, {}, centre);
    QTest::mouseMove(viewport, centre - QPoint(120, 80));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, centre - QPoint(120, 80));
    waitForImages(2);
    picture("drag-mode");

    m_driver->trigger("actionNormalSize");
    m_driver->trigger("actionZoomOut");
    waitForImages(2);
    picture("zoomed-out");
}

void Tour::menus()
{
    auto* const bar = m_driver->child<QMenuBar>("menuBar");
    for (const char* name : {"menu_Camera", "menuImage", "menuHelp"}) {
        auto* const menu = m_driver->child<QMenu>(name);
        menu->popup(bar->mapToGlobal(bar->actionGeometry(menu->menuAction()).bottomLeft()));
        picture(name);
        menu->close();
    }
}

void Tour::pauseAndSnapshot()
{
    m_driver->trigger("actionPause");
    waitFor("the paused rate", [&] { return m_driver->rates().contains("Disp =   0.00"); });
    picture("paused");
    // The file dialog shows the folders of nobody in particular, and the same ones in every tour.
    const QString folder = QDir::temp().filePath("snapshots");
    const QString folderBefore = QDir::currentPath();
    const QByteArray homeBefore = qgetenv("HOME");
    QDir().mkpath(folder);
    QDir::setCurrent(folder);
    qputenv("HOME", folder.toLocal8Bit());
    pictureOfModal("actionSnapshot", "snapshot");
    qputenv("HOME", homeBefore);
    QDir::setCurrent(folderBefore);
    QDir().rmdir(folder);
    m_driver->trigger("actionPause");
}

void Tour::softwareTrigger()
{
    m_driver->stop();
    picture("stopped");
    if (opened::set("TriggerMode", "On") != 0 || opened::set("TriggerSource", "Software") != 0)
        endTour("the camera takes no software trigger");
    const QString ratesBefore = m_driver->rates(); // they stay until the next report
    m_driver->start();
    m_driver->trigger("actionSoftwareTrigger");
    waitForImages(1);
    waitFor("the rates of single images", [&] { return m_driver->rates() != ratesBefore; });
    FeatureHand(m_driver->window()).clickName("TriggerMode"); // unfolds its category
    picture("software-trigger");
    m_driver->stop();
    if (opened::set("TriggerMode", "Off") != 0)
        endTour("the trigger stays on");
    m_driver->start();
    waitForImages(2);
}

void Tour::about()
{
    pictureOfModal("action_Menu_About", "about");
}
