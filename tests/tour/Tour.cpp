// Drives the real window with the real camera libraries and saves a picture of each thing that a user sees.
//
//     tour FOLDER
//
// Needs a screen with a window manager, such as tests/support/with-xvfb --windows gives. Ends with status 1 and a line
// on standard error where a state does not come about.

#include "tests/tour/Tour.h"

#include "discovery/DiscoveryDlg.h"

#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTreeWidget>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kPatienceMs = 60000;
constexpr int kSettleMs = 150;

} // namespace

void endTour(const QString& what)
{
    std::fprintf(stderr, "tour: %s\n", qPrintable(what));
    std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): nobody else ends the program
}

Tour::Tour(const QDir& folder)
    : m_folder(folder.absolutePath())
    , m_driver(std::make_unique<WindowDriver>())
{
    QObject::connect(&m_driver->window(), &MainWindow::Update_Image, &m_driver->window(), [this] { ++m_images; });
}

void Tour::picture(const QString& name)
{
    QTest::qWait(kSettleMs);
    const QString file = m_folder.filePath(QString("%1-%2.png").arg(++m_number, 2, 10, QChar('0')).arg(name));
    // The screen, not the widget: what covers the window belongs to what a user sees.
    const QRect area = m_driver->window().frameGeometry();
    const QPixmap shot =
        QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height());
    if (shot.isNull() || !shot.save(file))
        endTour("cannot save " + file);
    std::printf("%s\n", qPrintable(file));
}

void Tour::waitFor(const char* what, const std::function<bool()>& condition)
{
    if (!QTest::qWaitFor(condition, kPatienceMs))
        endTour(QString("waited in vain for %1").arg(what));
}

void Tour::waitForImages(int count)
{
    const int wanted = m_images + count;
    waitFor("images", [&] { return m_images >= wanted; });
}

void Tour::pictureOfModal(const char* action, const QString& name)
{
    const bool came = m_driver->triggerModal(action, [&](QWidget& modal) {
        picture(name);
        modal.close();
    });
    if (!came)
        endTour(QString("%1 brings up no window").arg(action));
}

void Tour::openCamera(const QString& model, bool pictured)
{
    m_driver->open([&](DiscoveryDlg& dialog) {
        auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
        const auto found = list->findItems(model, Qt::MatchExactly, 1);
        if (found.isEmpty())
            endTour(model + " is not listed");
        list->setCurrentItem(found.first());
        if (pictured)
            picture("discovery");
        dialog.findChild<QPushButton*>("openButton")->click();
    });
    if (!m_driver->enabled("actionStart"))
        endTour("the camera did not open: " + m_driver->log().join(" / "));
}

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
        endTour("cannot make " + folder.path());
    Tour tour(folder);
    tour.liveChapter();
    tour.featuresChapter();
    tour.editorsChapter();
    tour.slowAndSilentCameraChapter();
    tour.camerasChapter();
    tour.faultsChapter();
    return EXIT_SUCCESS;
}
