// The real executable with shared camera libraries in a real X server, used through its pixels.

#include "tests/e2e/Desktop.h"

#include <QtTest>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

constexpr int kPatienceMs = 30000;
const QString kMainWindow = "OrvoCamLinuxViewer";
const QString kDialog = "Select a Camera";
// In the dialog: the middle of the button "Open".
constexpr QPoint kOpenButton{270 + 91 / 2, 230 + 31 / 2};

QImage icon(const char* name)
{
    return QImage(QString(ICON_FOLDER "/%1.png").arg(name)).convertToFormat(QImage::Format_ARGB32);
}

/// The viewer as a process of its own.
class Viewer {
public:
    explicit Viewer(const QProcessEnvironment& extra = {})
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(extra);
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::SeparateChannels);
        m_process.start(VIEWER_PROGRAM, QStringList());
    }
    ~Viewer()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    Q_DISABLE_COPY_MOVE(Viewer)

    [[nodiscard]] bool running() const { return m_process.state() == QProcess::Running; }
    [[nodiscard]] bool ended() { return m_process.waitForFinished(kPatienceMs); }
    [[nodiscard]] int exitCode() const { return m_process.exitCode(); }
    [[nodiscard]] bool crashed() const { return m_process.exitStatus() == QProcess::CrashExit; }
    [[nodiscard]] QString errors() { return QString::fromLocal8Bit(m_process.readAllStandardError()); }

    /// The files mapped into the process.
    [[nodiscard]] QString maps() const
    {
        QFile file(QString("/proc/%1/maps").arg(m_process.processId()));
        return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
    }

private:
    QProcess m_process;
};

class EndToEndTest : public QObject {
    Q_OBJECT

private slots:
    void liveImageUnplugAndExit();
    void stopAndClose();
    void otherLibrariesTakeTheirPlace();

private:
    [[nodiscard]] bool clickIcon(const char* name);
    [[nodiscard]] bool openFirstCamera();
    [[nodiscard]] bool sees(const char* iconName);
    /// What the middle of the image view shows.
    [[nodiscard]] QImage imageArea();
    [[nodiscard]] bool imageMoves();

    Desktop desktop;
};

bool EndToEndTest::sees(const char* iconName)
{
    return QTest::qWaitFor([&] { return desktop.find(icon(iconName)).has_value(); }, kPatienceMs);
}

bool EndToEndTest::clickIcon(const char* name)
{
    // An action that is off shows its icon greyed, so it is not found before it can be used.
    std::optional<QRect> found;
    if (!QTest::qWaitFor([&] { return (found = desktop.find(icon(name))).has_value(); }, kPatienceMs))
        return false;
    desktop.click(found->center());
    return true;
}

bool EndToEndTest::openFirstCamera()
{
    if (!clickIcon("Open"))
        return false;
    if (!QTest::qWaitFor([&] { return desktop.window(kDialog).has_value(); }, kPatienceMs))
        return false;
    // The button works once the cameras are listed; until then a click does nothing.
    return QTest::qWaitFor(
        [&] {
            const auto dialog = desktop.window(kDialog);
            if (dialog)
                desktop.click(dialog->topLeft() + kOpenButton);
            QTest::qWait(200);
            return !desktop.window(kDialog).has_value();
        },
        kPatienceMs);
}

QImage EndToEndTest::imageArea()
{
    const QRect window = desktop.window(kMainWindow).value_or(QRect());
    return desktop.look().copy(window.x() + 40, window.y() + 180, 500, 400);
}

bool EndToEndTest::imageMoves()
{
    const QImage first = imageArea();
    return QTest::qWaitFor([&] { return imageArea() != first; }, kPatienceMs);
}

void EndToEndTest::liveImageUnplugAndExit()
{
    const QTemporaryDir folder;
    const QString fifo = folder.filePath("remote");
    QCOMPARE(mkfifo(fifo.toLocal8Bit().constData(), 0600), 0);
    QProcessEnvironment extra;
    extra.insert("LD_PRELOAD", REMOTE_CONTROL);
    extra.insert("REMOTE_CONTROL", fifo);
    extra.insert("ORVO_SIMULATED_CAMERAS", "1");
    Viewer viewer(extra);
    const auto tell = [&](const QByteArray& line) {
        QFile remote(fifo);
        QVERIFY(remote.open(QIODevice::WriteOnly));
        remote.write(line + '\n');
    };

    QVERIFY(openFirstCamera());
    QVERIFY(clickIcon("Play"));
    QVERIFY(sees("Stop"));
    QVERIFY(imageMoves());
    QVERIFY(imageMoves());

    // Many colours: a picture, not a blank that flickers.
    const QImage shown = imageArea();
    QSet<QRgb> colours;
    for (int y = 0; y < shown.height(); y += 4) {
        for (int x = 0; x < shown.width(); x += 4)
            colours.insert(shown.pixel(x, y));
    }
    QVERIFY2(colours.size() > 50, qPrintable(QString::number(colours.size())));

    tell("SimulationUnplug");
    QVERIFY(sees("Open"));
    QVERIFY(!desktop.find(icon("Stop")));
    QVERIFY(viewer.running());

    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QVERIFY(!viewer.crashed());
    QCOMPARE(viewer.exitCode(), 0);
    QCOMPARE(viewer.errors(), QString());
}

void EndToEndTest::stopAndClose()
{
    QProcessEnvironment extra;
    extra.insert("ORVO_SIMULATED_CAMERAS", "1");
    Viewer viewer(extra);
    QVERIFY(openFirstCamera());
    QVERIFY(clickIcon("Play"));
    QVERIFY(imageMoves());

    QVERIFY(clickIcon("Pause"));
    QTest::qWait(300);
    const QImage paused = imageArea();
    QTest::qWait(500);
    QCOMPARE(imageArea(), paused);

    QVERIFY(clickIcon("Stop"));
    QVERIFY(sees("Play"));
    QVERIFY(clickIcon("Close"));
    QVERIFY(sees("Open"));
    QVERIFY(!desktop.find(icon("Close")));

    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QVERIFY(!viewer.crashed());
    QCOMPARE(viewer.exitCode(), 0);
    QCOMPARE(viewer.errors(), QString());
}

void EndToEndTest::otherLibrariesTakeTheirPlace()
{
    {
        Viewer viewer;
        QVERIFY(sees("Open"));
        QVERIFY(viewer.maps().contains(OWN_LIBRARIES "/libOrvoCamApi_64.so.1"));
        QVERIFY(viewer.maps().contains(OWN_LIBRARIES "/libOrvoCamUtl_64.so.1"));
    }
    QProcessEnvironment extra;
    extra.insert("LD_LIBRARY_PATH", OTHER_LIBRARIES);
    Viewer viewer(extra);
    QVERIFY(openFirstCamera());
    QVERIFY(sees("Play"));
    const QString maps = viewer.maps();
    QVERIFY(maps.contains(OTHER_LIBRARIES "/libOrvoCamApi_64.so.1"));
    QVERIFY(maps.contains(OTHER_LIBRARIES "/libOrvoCamUtl_64.so.1"));
    QVERIFY(!maps.contains(OWN_LIBRARIES "/libOrvoCam"));
    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QCOMPARE(viewer.exitCode(), 0);
}

} // namespace

QTEST_MAIN(EndToEndTest)
#include "EndToEndTest.moc"
