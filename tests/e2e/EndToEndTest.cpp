// The real executable with shared camera libraries in a real X server, tested through the pixels on screen.

#include "tests/support/Desktop.h"
#include "tests/support/Patience.h"

#include <QtTest>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <sys/stat.h>

namespace {

const QString kMainWindow = "OrvoCamLinuxViewer";
const QString kDialog = "Select a Camera";
// In the dialog: the list, and the centre of the button "Open".
constexpr QRect kList{20, 20, 610, 161};
constexpr QPoint kOpenButton{270 + 91 / 2, 230 + 31 / 2};
// The built-in cameras, in the order of the list.
enum Camera { Monochrome, Colour, LargeColour };

QImage icon(const char* name)
{
    return QImage(QString(ICON_FOLDER "/%1.png").arg(name)).convertToFormat(QImage::Format_ARGB32);
}

/// The viewer as a separate process, with only the simulated cameras.
class Viewer {
public:
    explicit Viewer(const QProcessEnvironment& extra = {})
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LD_PRELOAD", SIMULATED_ONLY);
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

    [[nodiscard]] QString output() { return QString::fromLocal8Bit(m_process.readAllStandardOutput()); }

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
    void libraryPathSelectsOtherLibraries();
    void geometryScalesWithTheTextAtHighResolution_data();
    void geometryScalesWithTheTextAtHighResolution();
    void windowHasItsIcon();
    void operationLogGoesToStandardOutput();

private:
    [[nodiscard]] bool clickIcon(const char* name);
    [[nodiscard]] bool open(Camera camera);
    [[nodiscard]] bool sees(const char* iconName);
    [[nodiscard]] bool seesNoMore(const char* iconName);
    /// Waits until the row of the dialog's list is drawn as selected; false on timeout.
    [[nodiscard]] bool selects(Camera row);
    /// A part of the image view, including the frame number that makes every image different.
    [[nodiscard]] QImage imageArea();
    [[nodiscard]] bool imageMoves();
    [[nodiscard]] bool imageStops();

    Desktop desktop;
};

bool EndToEndTest::sees(const char* iconName)
{
    return QTest::qWaitFor([&] { return desktop.find(icon(iconName)).has_value(); }, kPatienceMs);
}

bool EndToEndTest::seesNoMore(const char* iconName)
{
    return QTest::qWaitFor([&] { return !desktop.find(icon(iconName)).has_value(); }, kPatienceMs);
}

bool EndToEndTest::clickIcon(const char* name)
{
    // A disabled action shows a greyed icon, so it is not found until it is enabled.
    std::optional<QRect> found;
    if (!QTest::qWaitFor([&] { return (found = desktop.find(icon(name))).has_value(); }, kPatienceMs))
        return false;
    desktop.click(found->center());
    return true;
}

/// The rectangle of a row in a list like that of the dialog.
QRect placeOfRow(int row)
{
    QTreeWidget like;
    like.setAttribute(Qt::WA_DontShowOnScreen);
    like.resize(kList.size());
    for (int i = 0; i <= row; ++i)
        like.addTopLevelItem(new QTreeWidgetItem({"Camera"}));
    like.show();
    const QRect place = like.visualItemRect(like.topLevelItem(row));
    return place.translated(like.viewport()->mapTo(&like, QPoint()));
}

bool EndToEndTest::open(Camera camera)
{
    if (!clickIcon("Open"))
        return false;
    // The first camera is selected as soon as the list is filled; until then clicks have no effect.
    if (!selects(Monochrome))
        return false;
    const QPoint dialog = desktop.window(kDialog)->topLeft();
    desktop.click(dialog + kList.topLeft() + placeOfRow(camera).center());
    if (!selects(camera))
        return false;
    desktop.click(dialog + kOpenButton);
    return QTest::qWaitFor([&] { return !desktop.window(kDialog).has_value(); }, kPatienceMs);
}

bool EndToEndTest::selects(Camera row)
{
    constexpr int kClearOfTheText = 10;
    const QRect place = placeOfRow(row);
    const QPoint end = kList.topLeft() + QPoint(place.right() - kClearOfTheText, place.center().y());
    return QTest::qWaitFor(
        [&] {
            const auto dialog = desktop.window(kDialog);
            return dialog && desktop.look().pixelColor(dialog->topLeft() + end) ==
                                 QGuiApplication::palette().color(QPalette::Highlight);
        },
        kPatienceMs);
}

QImage EndToEndTest::imageArea()
{
    const QRect window = desktop.window(kMainWindow).value_or(QRect());
    return desktop.look().copy(window.x() + 40, window.y() + 130, 500, 450);
}

bool EndToEndTest::imageMoves()
{
    const QImage first = imageArea();
    return QTest::qWaitFor([&] { return imageArea() != first; }, kPatienceMs);
}

bool EndToEndTest::imageStops()
{
    constexpr int kObservedMs = 500; // only time can show that no image follows; too little of it cannot fail the test
    return QTest::qWaitFor(
        [&] {
            const QImage before = imageArea();
            QTest::qWait(kObservedMs);
            return imageArea() == before;
        },
        kPatienceMs);
}

void EndToEndTest::liveImageUnplugAndExit()
{
    const QTemporaryDir folder;
    const QString fifo = folder.filePath("remote");
    QCOMPARE(mkfifo(fifo.toLocal8Bit().constData(), 0600), 0);
    QProcessEnvironment extra;
    extra.insert("LD_PRELOAD", SIMULATED_ONLY ":" REMOTE_CONTROL);
    extra.insert("REMOTE_CONTROL", fifo);
    Viewer viewer(extra);
    const auto send = [&](const QByteArray& line) {
        QFile remote(fifo);
        QVERIFY(remote.open(QIODevice::WriteOnly));
        remote.write(line + '\n');
    };

    QVERIFY(open(Colour));
    QVERIFY(clickIcon("Play"));
    QVERIFY(sees("Stop"));
    QVERIFY(imageMoves());
    QVERIFY(imageMoves());

    // The image is coloured, not a flickering blank.
    const QImage shown = imageArea();
    QSet<int> strongHues;
    for (int y = 0; y < shown.height(); y += 4) {
        for (int x = 0; x < shown.width(); x += 4) {
            const QColor colour = shown.pixelColor(x, y);
            if (colour.saturation() > 100 && colour.value() > 100)
                strongHues.insert(colour.hue() / 30);
        }
    }
    QVERIFY2(strongHues.size() >= 4, qPrintable(QString::number(strongHues.size())));

    send("SimulationUnplug");
    QVERIFY(sees("Open"));
    QVERIFY(seesNoMore("Stop"));
    QVERIFY(viewer.running());

    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QVERIFY(!viewer.crashed());
    QCOMPARE(viewer.exitCode(), 0);
    QCOMPARE(viewer.errors(), QString());
}

void EndToEndTest::stopAndClose()
{
    Viewer viewer;
    QVERIFY(open(Monochrome));
    QVERIFY(clickIcon("Play"));
    QVERIFY(imageMoves());

    QVERIFY(clickIcon("Pause"));
    QVERIFY(imageStops());

    QVERIFY(clickIcon("Stop"));
    QVERIFY(sees("Play"));
    QVERIFY(clickIcon("Close"));
    QVERIFY(sees("Open"));
    QVERIFY(seesNoMore("Close"));

    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QVERIFY(!viewer.crashed());
    QCOMPARE(viewer.exitCode(), 0);
    QCOMPARE(viewer.errors(), QString());
}

void EndToEndTest::libraryPathSelectsOtherLibraries()
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
    QVERIFY(open(Monochrome)); // the first camera in the list
    QVERIFY(sees("Play"));
    const QString maps = viewer.maps();
    QVERIFY(maps.contains(OTHER_LIBRARIES "/libOrvoCamApi_64.so.1"));
    QVERIFY(maps.contains(OTHER_LIBRARIES "/libOrvoCamUtl_64.so.1"));
    QVERIFY(!maps.contains(OWN_LIBRARIES "/libOrvoCam"));
    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QCOMPARE(viewer.exitCode(), 0);
}

void EndToEndTest::geometryScalesWithTheTextAtHighResolution_data()
{
    QTest::addColumn<QString>("dpi");
    QTest::addColumn<QSize>("size");
    // One and a half times must not double a window that fits a full-HD screen.
    QTest::newRow("one and a half times") << "144" << QSize(1200, 880);
    QTest::newRow("twice") << "192" << QSize(2400, 1760);
}

void EndToEndTest::geometryScalesWithTheTextAtHighResolution()
{
    QFETCH(const QString, dpi);
    QFETCH(const QSize, size);
    QProcessEnvironment extra;
    extra.insert("QT_FONT_DPI", dpi);
    const Viewer viewer(extra);
    QTRY_VERIFY_WITH_TIMEOUT(desktop.window(kMainWindow), kPatienceMs);
    QCOMPARE(desktop.window(kMainWindow)->size(), size);
}

void EndToEndTest::windowHasItsIcon()
{
    const Viewer viewer;
    QTRY_VERIFY_WITH_TIMEOUT(desktop.window(kMainWindow), kPatienceMs);
    const QImage expected(ICON_FOLDER "/Viewer_Main_icon_2.ico");
    QVERIFY(!expected.isNull());
    QCOMPARE(desktop.icon(kMainWindow), expected.convertToFormat(QImage::Format_ARGB32));
}

void EndToEndTest::operationLogGoesToStandardOutput()
{
    QProcessEnvironment extra;
    extra.insert("ORVO_OPERATION_LOG", "-");
    Viewer viewer(extra);
    QVERIFY(open(Monochrome));
    QString output;
    QTRY_VERIFY_WITH_TIMEOUT((output += viewer.output()).endsWith("Orvo::CAM_NODE_HANDLE hNode = NULL;\n"),
                             kPatienceMs);
    QVERIFY2(output.startsWith("Orvo::CAM_API_STATUS status"), qPrintable(output));

    desktop.closeWindow(kMainWindow);
    QVERIFY(viewer.ended());
    QCOMPARE(viewer.exitCode(), 0);
    QCOMPARE(viewer.errors(), QString());
}

} // namespace

QTEST_MAIN(EndToEndTest)
#include "EndToEndTest.moc"
