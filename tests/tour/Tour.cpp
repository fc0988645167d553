// Drives the real window with the real camera libraries and saves a picture of each thing that a user sees.
//
//     tour FOLDER
//
// Needs a screen, such as a virtual X server's. Ends with status 1 and a line on standard error where a state does not
// come about.

#include "app/MainWindow.h"
#include "discovery/DiscoveryDlg.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/OpenedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kPatienceMs = 15000;
constexpr int kSettleMs = 150;

class Tour {
public:
    explicit Tour(QDir folder)
        : m_folder(std::move(folder))
    {
    }

    void run();

private:
    void picture(const char* name);
    void waitFor(const char* what, const std::function<bool()>& condition);
    void waitForImages(int count);
    /// Calls `look` once the modal widget that `open` brings up is there; `look` ends it.
    void withModal(const std::function<void()>& open, const std::function<void(QWidget&)>& look);
    void openCamera(int row, bool pictured);
    void menu(const char* name);

    void discovery();
    void live();
    void zoomAndPointer();
    void menus();
    void pauseAndSnapshot();
    void softwareTrigger();
    void about();
    void unplug();

    QDir m_folder;
    int m_number = 0;
    WindowDriver m_driver;
    int m_images = 0;
};

void fail(const QString& what)
{
    std::fprintf(stderr, "tour: %s\n", qPrintable(what));
    std::exit(EXIT_FAILURE);
}

void Tour::picture(const char* name)
{
    QTest::qWait(kSettleMs);
    const QString file = m_folder.filePath(QString("%1-%2.png").arg(++m_number, 2, 10, QChar('0')).arg(name));
    // The screen, not the widget: what covers the window belongs to what a user sees.
    const QRect area = m_driver.window().frameGeometry().adjusted(-10, -10, 10, 10);
    const QPixmap shot =
        QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    if (shot.isNull() || !shot.save(file))
        fail("cannot save " + file);
    std::printf("%s\n", qPrintable(file));
}

void Tour::waitFor(const char* what, const std::function<bool()>& condition)
{
    if (!QTest::qWaitFor(condition, kPatienceMs))
        fail(QString("waited in vain for %1").arg(what));
}

void Tour::waitForImages(int count)
{
    const int wanted = m_images + count;
    waitFor("images", [&] { return m_images >= wanted; });
}

void Tour::withModal(const std::function<void()>& open, const std::function<void(QWidget&)>& look)
{
    bool looked = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (QWidget* const modal = QApplication::activeModalWidget()) {
            poll.stop();
            looked = true;
            look(*modal);
        }
    });
    poll.start(20);
    open();
    if (!looked)
        fail("no dialog came up");
}

void Tour::openCamera(int row, bool pictured)
{
    m_driver.open([&](DiscoveryDlg& dialog) {
        auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
        if (list->topLevelItemCount() <= row)
            fail("the camera is not listed");
        list->setCurrentItem(list->topLevelItem(row));
        if (pictured)
            picture("discovery");
        dialog.findChild<QPushButton*>("openButton")->click();
    });
    if (!m_driver.enabled("actionStart"))
        fail("the camera did not open: " + m_driver.log().join(" / "));
}

void Tour::menu(const char* name)
{
    auto* const bar = m_driver.child<QMenuBar>("menuBar");
    auto* const menu = m_driver.child<QMenu>(name);
    menu->popup(bar->mapToGlobal(bar->actionGeometry(menu->menuAction()).bottomLeft()));
    picture(name);
    menu->close();
}

void Tour::discovery()
{
    picture("start");
    openCamera(1, true); // the colour camera of 1920 x 1200 pixels
    picture("opened");
}

void Tour::live()
{
    QObject::connect(&m_driver.window(), &MainWindow::Update_Image, &m_driver.window(), [this] { ++m_images; });
    const QString noRates = m_driver.rates();
    m_driver.start();
    waitForImages(5);
    picture("live");
    waitFor("frame rates", [&] { return m_driver.rates() != noRates; });
    picture("live-with-rates");
}

void Tour::zoomAndPointer()
{
    m_driver.trigger("actionZoomOut");
    waitForImages(2);
    picture("zoomed-out");
    m_driver.trigger("actionNormalSize");
    m_driver.trigger("actionZoomIn");
    m_driver.trigger("actionZoomIn");
    waitForImages(2);
    picture("zoomed-in");

    for (QToolButton* button : m_driver.window().findChildren<QToolButton*>()) {
        if (button->text() == " Drag ")
            button->click();
    }
    auto* const view = qobject_cast<ImageView*>(m_driver.window().centralWidget())->view();
    QWidget* const viewport = view->viewport();
    const QPoint centre = viewport->rect().center();
    QTest::mousePress(viewport, Qt::LeftButton, {}, centre);
    QTest::mouseMove(viewport, centre - QPoint(120, 80));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, centre - QPoint(120, 80));
    waitForImages(2);
    picture("drag-mode");
    m_driver.trigger("actionNormalSize");
    m_driver.trigger("actionZoomOut");
}

void Tour::menus()
{
    menu("menu_Camera");
    menu("menuImage");
    menu("menuHelp");
}

void Tour::pauseAndSnapshot()
{
    m_driver.trigger("actionPause");
    waitFor("the paused rate", [&] { return m_driver.rates().contains("Disp =   0.00"); });
    picture("paused");
    withModal([this] { m_driver.trigger("actionSnapshot"); },
              [this](QWidget& dialog) {
                  picture("snapshot");
                  qobject_cast<QDialog*>(&dialog)->reject();
              });
    m_driver.trigger("actionPause");
}

void Tour::softwareTrigger()
{
    m_driver.stop();
    picture("stopped");
    if (opened::set("TriggerMode", "On") != 0 || opened::set("TriggerSource", "Software") != 0)
        fail("the camera takes no software trigger");
    m_driver.start();
    m_driver.trigger("actionSoftwareTrigger");
    waitForImages(1);
    picture("software-trigger");
    m_driver.stop();
    if (opened::set("TriggerMode", "Off") != 0)
        fail("the trigger stays on");
    m_driver.start();
    waitForImages(2);
}

void Tour::about()
{
    withModal([this] { m_driver.trigger("action_Menu_About"); },
              [this](QWidget& box) {
                  picture("about");
                  qobject_cast<QDialog*>(&box)->accept();
              });
}

void Tour::unplug()
{
    if (opened::execute("SimulationUnplug") != 0)
        fail("the camera does not let itself be unplugged");
    waitFor("the removal", [&] { return m_driver.log().contains("A camera has been Removed."); });
    picture("after-unplug");
}

void Tour::run()
{
    discovery();
    live();
    zoomAndPointer();
    menus();
    pauseAndSnapshot();
    softwareTrigger();
    about();
    unplug();
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QApplication::setApplicationName("OrvoCamLinuxViewer"); // the title of boxes that have none of their own
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "tour: needs the folder for the pictures\n");
        return EXIT_FAILURE;
    }
    const QDir folder(arguments.at(1));
    if (!folder.mkpath("."))
        fail("cannot make " + folder.path());
    Tour(folder).run();
    return EXIT_SUCCESS;
}
