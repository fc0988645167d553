// Drives the real window with the real camera libraries and saves a picture of each thing that a user sees.
//
//     tour FOLDER
//
// Needs a screen with a window manager, such as tests/support/with-xvfb --windows. Exits with 1 and a line on standard
// error if an expected state is not reached.

#include "tests/tour/Tour.h"

#include "tests/support/Patience.h"

#include <QApplication>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTest>

#include <cstdio>
#include <cstdlib>

namespace {

// A picture shows the finished screen: it has not changed in so many rounds of the event loop, or, because of a live
// image, has changed so many times.
constexpr int kRounds = 10;

} // namespace

void endTour(const QString& what)
{
    std::fprintf(stderr, "tour: %s\n", qPrintable(what));
    std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): no other thread exits the program
}

Tour::Tour(const QDir& folder)
    : m_folder(folder.absolutePath())
{
    newWindow();
}

void Tour::newWindow()
{
    m_images.reset();
    m_driver.reset(); // before the next one, because only one may exist
    m_driver = std::make_unique<WindowDriver>();
    m_images = std::make_unique<ShownImages>(m_driver->window());
    const MainWindow& window = m_driver->window();
    waitFor("the window's frame",
            [&] { return window.isActiveWindow() && window.frameGeometry() != window.geometry(); });
}

void Tour::picture(const QString& name)
{
    // The screen, not the widget: the picture includes whatever covers the window.
    picture(name, m_driver->window().frameGeometry());
}

void Tour::picture(const QString& name, const QRect& area)
{
    int unchanged = 0;
    int changed = 0;
    QImage shot;
    waitFor("a finished screen", [&] {
        const QImage now =
            QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()).toImage();
        const bool same = now == shot;
        unchanged = same ? unchanged + 1 : 0;
        changed += same ? 0 : 1;
        shot = now;
        return unchanged >= kRounds || changed >= kRounds;
    });
    const QString file = m_folder.filePath(QString("%1-%2.png").arg(++m_number, 2, 10, QChar('0')).arg(name));
    if (shot.isNull() || !shot.save(file))
        endTour("cannot save " + file);
    std::printf("%s\n", qPrintable(file));
}

void Tour::waitFor(const char* what, const std::function<bool()>& condition)
{
    if (!QTest::qWaitFor(condition, kPatienceMs))
        endTour(QString("timed out waiting for %1").arg(what));
}

void Tour::waitForImages(int count)
{
    if (!m_images->waitForMore(count))
        endTour("timed out waiting for images");
}

void Tour::waitForRates()
{
    const QString before = m_driver->rates();
    waitFor("frame rates", [&] { return m_driver->rates() != before; });
}

void Tour::pictureOfModal(const char* action, const QString& name)
{
    const bool came = m_driver->triggerModal(action, [&](QWidget& modal) {
        picture(name);
        modal.close();
    });
    if (!came)
        endTour(QString("%1 opens no window").arg(action));
}

void Tour::openCamera(const QString& model, bool pictured)
{
    const auto chosen = [&] {
        if (pictured)
            picture("discovery");
    };
    if (!m_driver->openModel(model, chosen))
        endTour(QString("cannot open a %1: %2").arg(model, m_driver->log().join(" / ")));
}

int main(int argc, char* argv[])
{
    // The toolkit queries windows that the window manager has just announced, and logs a warning if one is already
    // gone. That race is not the viewer's fault. The program that the tour starts inherits the variable.
    qputenv("QT_LOGGING_RULES", "qt.qpa.xcb.warning=false");
    const QApplication application(argc, argv);
    QApplication::setStyle("Fusion"); // until the chapter of styles; otherwise the platform chooses
    // As in main() of the viewer: the default title of message boxes, and the icon.
    QApplication::setApplicationName("OrvoCamLinuxViewer");
    QApplication::setWindowIcon(QIcon(":/images/Icon/Viewer_Main_icon_2.ico"));
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "tour: needs the folder for the pictures\n");
        return EXIT_FAILURE;
    }
    QDir folder(arguments.at(1));
    if (!folder.mkpath("."))
        endTour("cannot make " + folder.path());
    // An earlier tour may have left pictures that this one does not take.
    for (const QString& old : folder.entryList({"[0-9][0-9]-*.png"}, QDir::Files)) {
        if (!folder.remove(old))
            endTour("cannot remove " + folder.filePath(old));
    }
    Tour tour(folder);
    tour.liveChapter();
    tour.featuresChapter();
    tour.editorsChapter();
    tour.refusedAndSlowChapter();
    tour.camerasChapter();
    tour.faultsChapter();
    tour.stylesChapter();
    tour.highResolutionChapter();
    return EXIT_SUCCESS;
}
