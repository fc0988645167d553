// The window around a live image: every command of tool bar and menus.

#include "tests/tour/Tour.h"

#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/OpenedCamera.h"

#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

void Tour::liveChapter()
{
    picture("start");
    openCamera("SIM-C1920", true);
    picture("opened");

    m_driver->start();
    waitForImages(5);
    picture("live");
    waitForRates();
    picture("live-with-rates");

    zoomAndPointer();
    menus();
    floatingDocks();
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

void Tour::floatingDocks()
{
    QRect all = m_driver->window().frameGeometry();
    const auto floatBy = [](QDockWidget* dock) {
        QTest::mouseClick(dock->findChild<QAbstractButton*>("qt_dockwidget_floatbutton"), Qt::LeftButton);
    };
    auto* const right = m_driver->child<QDockWidget>("dockWidgetRight");
    auto* const bottom = m_driver->child<QDockWidget>("dockWidgetBottom");
    for (QDockWidget* const dock : {right, bottom})
        floatBy(dock);
    right->move(all.topRight() + QPoint(20, 0));
    bottom->move(all.bottomLeft() + QPoint(0, 20));
    for (QDockWidget* const dock : {right, bottom}) {
        waitFor("a floating dock", [&] { return dock->isFloating() && dock->isVisible(); });
        all |= dock->frameGeometry();
    }
    waitForImages(2);
    picture("floating-docks", all);
    for (QDockWidget* const dock : {right, bottom})
        floatBy(dock);
}

void Tour::pauseAndSnapshot()
{
    m_driver->trigger("actionPause");
    waitFor("the paused rate", [&] { return m_driver->rates().contains("Disp =   0.00"); });
    picture("paused");
    // The file dialog shows the same folders in every tour, and none of the user's own.
    const QString folder = QDir::temp().filePath("snapshots");
    const QString folderBefore = QDir::currentPath();
    const QByteArray homeBefore = qgetenv("HOME");
    QDir().mkpath(folder);
    QDir::setCurrent(folder);
    qputenv("HOME", folder.toLocal8Bit());
    pictureOfModal("actionSnapshot", "snapshot");
    saveInVain();
    qputenv("HOME", homeBefore);
    QDir::setCurrent(folderBefore);
    QDir().rmdir(folder);
    m_driver->trigger("actionPause");
}

void Tour::saveInVain()
{
    const bool came = m_driver->triggerModal("actionSnapshot", [this](QWidget& modal) {
        if (auto* const dialog = qobject_cast<QFileDialog*>(&modal)) {
            // The name ends with "png", so no suffix is appended; but there is no format "notpng".
            dialog->findChild<QLineEdit*>("fileNameEdit")->setText("shot.notpng");
            dialog->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Save)->click();
        } else {
            picture("save-failed");
            modal.close();
        }
    });
    // A slow machine logs busy buffers, too.
    if (!came || !m_driver->log().contains("Cannot save a file."))
        endTour("saving a picture in an unknown format did not fail as expected");
    picture("save-failed-log");
    m_driver->clearLog();
}

void Tour::softwareTrigger()
{
    m_driver->stop();
    picture("stopped");
    if (opened::set("TriggerMode", "On") != 0 || opened::set("TriggerSource", "Software") != 0)
        endTour("the camera does not accept the software trigger settings");
    m_driver->start();
    m_driver->trigger("actionSoftwareTrigger");
    waitForImages(1);
    waitForRates();                                           // rates with single images
    FeatureHand(m_driver->window()).clickName("TriggerMode"); // unfolds its category
    picture("software-trigger");
    m_driver->stop();
    if (opened::set("TriggerMode", "Off") != 0)
        endTour("the trigger mode cannot be switched off");
    m_driver->start();
    waitForImages(2);
}

void Tour::about()
{
    pictureOfModal("action_Menu_About", "about");
}
