// Starting and stopping the stream.

#include "display/DispThread.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/ShownImages.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

namespace {

/// Image parameters of a camera.
struct Parameters {
    QSize size;
    std::uint32_t format = 0;

    void set() const
    {
        scripted::setImageFormat(static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height()),
                                 format);
    }
};

// All values differ, so that each shows when it was read.
constexpr Parameters kOpened{{64, 48}, scripted::kBayerRG8};
constexpr Parameters kStarted{{32, 16}, scripted::kMono8};
constexpr Parameters kStreamOpened{{80, 60}, 0x02180014};

} // namespace

Q_DECLARE_METATYPE(Parameters)

namespace {

class StreamTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void startCallsInOrder_data();
    void startCallsInOrder();
    void startPassesTheFixedParameters();
    void startEnablesTheStreamActions();
    void startTwiceDoesNothing();
    void startWithoutCameraDoesNothing();
    void startFailureClosesTheCamera_data();
    void startFailureClosesTheCamera();
    void startContinuesWithTheParametersItCouldRead_data();
    void startContinuesWithTheParametersItCouldRead();
    void startWithoutMemory_data();
    void startWithoutMemory();
    void startCreatesANewViewOnlyForANewFormat();
    void sizeChangedByOpeningTheStreamIsUsed();
    void newSizeKeepsTheZoomFactorOfTheWindow();
    void startAfterOpeningKeepsTheView();
    void callbacksWhileStartingAreNotLogged();

    void stopCallsInOrder();
    void stopStopsTheDisplayThreadBeforeTheStream();
    void stopWithFailure();
    void stopWithoutClosing();
    void stopWithoutStream();
    void startAfterStop();
    void callbacksWhileStoppingAreNotLogged();
};

// --- Start ----------------------------------------------------------------------------------------------------------

void StreamTest::startCallsInOrder_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionStart");
    QTest::newRow("menu") << QByteArray("action_Menu_Start");
}

void StreamTest::startCallsInOrder()
{
    QFETCH(const QByteArray, action);
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    driver.trigger(action);
    QCOMPARE(
        recorded::windowOperations(),
        (QStringList{"GetCamWidth", "GetCamHeight", "GetCamPixelFormat", "Strm_OpenSimple", "GetCamWidth",
                     "GetCamHeight", "GetCamPixelFormat", "Strm_SetCallbackImageAcquired", "Strm_SetCallbackImageError",
                     "Strm_SetCallbackBufferBusy", "Strm_Start", "GetCamTriggerMode"}));
    QCOMPARE(driver.log(), QStringList());
}

void StreamTest::startPassesTheFixedParameters()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const auto opened = scripted::calls({"Strm_OpenSimple"});
    QCOMPARE(opened.size(), std::size_t(1));
    const std::vector<std::string> afterCamera(opened[0].arguments.begin() + 1, opened[0].arguments.end());
    QCOMPARE(afterCamera, (std::vector<std::string>{"out", "out", "null", "8", "null"}));
    QCOMPARE(scripted::calls({"Strm_Start"}).at(0).arguments.at(1), std::string("8"));
}

void StreamTest::startEnablesTheStreamActions()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    for (const char* on : {"actionPause", "action_Menu_Pause", "actionStop", "action_Menu_Stop", "actionSnapshot",
                           "action_Menu_Snapshot", "actionClose", "action_Menu_Close", "action_Menu_Start"}) {
        QVERIFY2(driver.enabled(on), on);
    }
    QVERIFY(!driver.enabled("actionStart"));
    QVERIFY(!driver.enabled("actionOpen"));
}

void StreamTest::startTwiceDoesNothing()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.trigger("action_Menu_Start");
    driver.triggerDisabled("actionStart");
    QCOMPARE(recorded::windowOperations(), QStringList());
    QVERIFY(scripted::streaming());
}

void StreamTest::startWithoutCameraDoesNothing()
{
    WindowDriver driver;
    scripted::clearCalls();
    driver.triggerDisabled("actionStart");
    driver.triggerDisabled("action_Menu_Start");
    QCOMPARE(recorded::windowOperations(), QStringList());
    QVERIFY(driver.enabled("actionOpen"));
}

void StreamTest::startFailureClosesTheCamera_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("closing");
    const QStringList closed{"Cam_Close", "Sys_CloseSignal"};
    // An open stream is stopped, even if it never started.
    const QStringList stopped = QStringList{"Strm_Stop", "Strm_Close"} + closed;
    QTest::newRow("Strm_OpenSimple") << "ERROR: Strm_OpenSimple() [CAM_API_STS_NO_MEMORY]" << closed;
    QTest::newRow("Strm_SetCallbackImageAcquired")
        << "ERROR: Strm_SetCallbackImageAcquired() [CAM_API_STS_NO_MEMORY]" << stopped;
    QTest::newRow("Strm_SetCallbackImageError")
        << "ERROR: Strm_SetCallbackImageError() [CAM_API_STS_NO_MEMORY]" << stopped;
    QTest::newRow("Strm_SetCallbackBufferBusy")
        << "ERROR: Strm_SetCallbackBufferBusy() [CAM_API_STS_NO_MEMORY]" << stopped;
    QTest::newRow("Strm_Start") << "ERROR: Error stream start. [CAM_API_STS_NO_MEMORY]" << stopped;
}

void StreamTest::startFailureClosesTheCamera()
{
    QFETCH(QString, line);
    QFETCH(QStringList, closing);
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    scripted::failCall(QTest::currentDataTag(), Orvo::CAM_API_STS_NO_MEMORY);
    driver.start();
    QCOMPARE(driver.log(), QStringList{line});
    const QStringList made = recorded::windowOperations();
    QCOMPARE(made.mid(made.indexOf(QTest::currentDataTag()) + 1).filter(QRegularExpression("^(?!GetCam)")), closing);
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("actionClose"));
    QVERIFY(!driver.window().findChild<ImageView*>());

    driver.open();
    driver.start();
    QVERIFY(scripted::streaming());
}

void StreamTest::startContinuesWithTheParametersItCouldRead_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("what");
    QTest::addColumn<QVector<int>>("failing");
    QTest::addColumn<Parameters>("converted");
    QTest::addColumn<QSize>("viewed");
    const auto row = [](const char* operation, const QString& what, const QVector<int>& failing,
                        const Parameters& converted, QSize viewed) {
        const char* const which = failing.size() == 2 ? "twice" : failing.first() == 1 ? "first" : "second";
        QTest::addRow("%s %s", operation, which) << operation << what << failing << converted << viewed;
    };

    // The parameters are read before and after the stream is opened.
    const QVector<int> first{1};
    const QVector<int> second{2};
    const QVector<int> twice{1, 2};

    // A failing read skips those after it; a new view is created only if all reads succeeded.
    row("GetCamWidth", "width", first, kStreamOpened, kStreamOpened.size);
    row("GetCamWidth", "width", second, kStarted, kStarted.size);
    row("GetCamWidth", "width", twice, kOpened, kOpened.size);

    const int newWidth = kStreamOpened.size.width();
    const Parameters laterWidth{QSize(newWidth, kStarted.size.height()), kStarted.format};
    const Parameters onlyWidth{QSize(newWidth, kOpened.size.height()), kOpened.format};
    row("GetCamHeight", "height", first, kStreamOpened, kStreamOpened.size);
    row("GetCamHeight", "height", second, laterWidth, kStarted.size);
    row("GetCamHeight", "height", twice, onlyWidth, kOpened.size);

    row("GetCamPixelFormat", "pixel format", first, kStreamOpened, kStreamOpened.size);
    row("GetCamPixelFormat", "pixel format", second, {kStreamOpened.size, kStarted.format}, kStarted.size);
    row("GetCamPixelFormat", "pixel format", twice, {kStreamOpened.size, kOpened.format}, kOpened.size);
}

void StreamTest::startContinuesWithTheParametersItCouldRead()
{
    QFETCH(const QString, operation);
    QFETCH(const QString, what);
    QFETCH(const QVector<int>, failing);
    QFETCH(const Parameters, converted);
    QFETCH(const QSize, viewed);
    WindowDriver driver;
    kOpened.set();
    driver.open();
    const QPointer<QWidget> viewOfOpening = driver.window().centralWidget();

    kStarted.set();
    scripted::onCall("Strm_OpenSimple", [] { kStreamOpened.set(); });
    for (const int reading : failing)
        scripted::failCall(operation.toStdString(), Orvo::CAM_API_STS_TIMEOUT, reading);
    driver.start();
    const QString line = "ERROR: Error image " + what + ". [CAM_API_STS_TIMEOUT]";
    QCOMPARE(driver.log(), QVector<QString>(failing.size(), line).toList());
    QVERIFY(scripted::streaming());
    QCOMPARE(viewOfOpening != nullptr, viewed == kOpened.size);
    QCOMPARE(driver.imageArea(), QRectF(QPointF(0, 0), viewed));

    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
    const auto arguments = scripted::calls({"ConvImage"}).at(0).arguments;
    QCOMPARE(arguments.at(1), std::to_string(converted.format));
    QCOMPARE(arguments.at(5), std::to_string(converted.size.width()));
    QCOMPARE(arguments.at(6), std::to_string(converted.size.height()));
}

void StreamTest::startWithoutMemory_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::newRow("no pixels") << 0u << 48u;
    QTest::newRow("product wraps to 0") << 0x8000u << 0x8000u;
    QTest::newRow("product wraps to a small size") << 0x10000u << 0x4001u;
}

void StreamTest::startWithoutMemory()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    WindowDriver driver;
    driver.open();
    scripted::setImageFormat(width, height, scripted::kBayerRG8);
    driver.start();
    QCOMPARE(driver.log(), QStringList{"ERROR: malloc error! [CAM_API_STS_UNSUCCESSFUL]"});
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!scripted::streaming());
    const QStringList made = recorded::windowOperations();
    QCOMPARE(made.mid(made.indexOf("Strm_OpenSimple")),
             (QStringList{"Strm_OpenSimple", "GetCamWidth", "GetCamHeight", "GetCamPixelFormat", "Strm_Stop",
                          "Strm_Close", "Cam_Close", "Sys_CloseSignal"}));
}

void StreamTest::startCreatesANewViewOnlyForANewFormat()
{
    WindowDriver driver;
    driver.open();
    driver.start(); // stores the format
    driver.stop();
    const QPointer<QWidget> view = driver.window().centralWidget();
    driver.start();
    QCOMPARE(driver.window().centralWidget(), view.data());
    driver.stop();

    scripted::setImageFormat(32, 16, scripted::kBayerRG8);
    driver.start();
    QVERIFY(!view);
    QCOMPARE(driver.imageArea(), QRectF(0, 0, 32, 16));

    driver.stop();
    scripted::setImageFormat(32, 16, scripted::kMono8);
    const QPointer<QWidget> ofOtherFormat = driver.imageView();
    driver.start();
    QVERIFY(!ofOtherFormat);
}

void StreamTest::sizeChangedByOpeningTheStreamIsUsed()
{
    WindowDriver driver;
    driver.open();
    const ShownImages shown(driver.window(), ShownImages::Keep::Last);
    scripted::onCall("Strm_OpenSimple", [] { scripted::setImageFormat(80, 60, scripted::kBayerRG8); });
    driver.start();
    QCOMPARE(driver.imageArea(), QRectF(0, 0, 80, 60));

    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(shown.count(), 1);
    QCOMPARE(shown.last().size(), QSize(80, 60));
    const auto converted = scripted::calls({"ConvImage"}).at(0).arguments;
    QCOMPARE(converted.at(5), std::string("80"));
    QCOMPARE(converted.at(6), std::string("60"));
}

void StreamTest::newSizeKeepsTheZoomFactorOfTheWindow()
{
    WindowDriver driver;
    driver.open();
    driver.trigger("actionZoomIn");
    scripted::setImageFormat(33, 17, scripted::kBayerRG8);
    driver.start();
    QCOMPARE(driver.imageView()->view()->transform().m11(), 1.0);
    QVERIFY(driver.enabled("actionNormalSize")); // the window still has a factor of 2.0
}

void StreamTest::startAfterOpeningKeepsTheView()
{
    WindowDriver driver;
    scripted::setImageFormat(40, 30, scripted::kBayerRG8);
    driver.open();
    driver.close();
    scripted::setImageFormat(41, 30, scripted::kBayerRG8);
    driver.open(); // stores a width of 41
    const QPointer<QWidget> view = driver.window().centralWidget();
    driver.start();
    QCOMPARE(driver.window().centralWidget(), view.data());
}

/// Queues a line behind those of the callbacks and returns the log once it contains that line.
QStringList logUpTo(WindowDriver& driver, const QString& line)
{
    QMetaObject::invokeMethod(&driver.window(), "write_log", Qt::QueuedConnection, Q_ARG(QString, line));
    static_cast<void>(QTest::qWaitFor([&] { return driver.log().contains(line); }));
    return driver.log();
}

void StreamTest::callbacksWhileStartingAreNotLogged()
{
    int delivered = 0;
    WindowDriver driver;
    driver.open();
    const auto callBack = [&delivered] {
        if (scripted::deliverError(1) && scripted::deliverBusy(1))
            ++delivered;
    };
    scripted::onCall("GetCamTriggerMode", callBack);
    scripted::onCall("Nd_GetIntValue", callBack); // while the features are updated
    driver.start();
    QVERIFY(delivered > 1);
    QCOMPARE(logUpTo(driver, "started"), QStringList{"started"});
}

// --- Stop -----------------------------------------------------------------------------------------------------------

void StreamTest::stopCallsInOrder()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.stop();
    QCOMPARE(recorded::windowOperations(), (QStringList{"Strm_Stop", "Strm_Close"}));
    QVERIFY(driver.enabled("actionStart"));
    QVERIFY(!driver.enabled("actionStop"));
    QVERIFY(driver.enabled("action_Menu_Stop"));
    QVERIFY(driver.enabled("actionSnapshot")); // the image remains
    QCOMPARE(driver.log(), QStringList());
}

void StreamTest::stopStopsTheDisplayThreadBeforeTheStream()
{
    bool gone = false;
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::onCall("Strm_Close", [&] { gone = !driver.window().findChild<DispThread*>(); });
    driver.stop();
    QVERIFY(gone);
}

void StreamTest::stopWithFailure()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::failCall("Strm_Stop", Orvo::CAM_API_STS_TIMEOUT);
    driver.trigger("action_Menu_Stop");
    QCOMPARE(driver.log(), QStringList{"ERROR: Error stop acquisition. [CAM_API_STS_TIMEOUT]"});
    QCOMPARE(scripted::count("Strm_Close"), 1);
    QVERIFY(driver.enabled("actionStart"));
}

void StreamTest::stopWithoutClosing()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    // The stream has been closed elsewhere before the window closes it.
    scripted::onCall("Strm_Close", [] {
        scripted::onCall("Strm_Close", nullptr);
        QCOMPARE(Orvo::Strm_Close(3001), Orvo::CAM_API_STS_SUCCESS);
    });
    driver.stop();
    QVERIFY(scripted::calls({"Strm_Close"}).at(0).result != Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(driver.log(), QStringList());
    scripted::clearCalls();
    driver.trigger("action_Menu_Stop");
    QCOMPARE(recorded::windowOperations(), QStringList()); // the window considers it closed
    driver.start();
    QVERIFY(scripted::streaming());
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
}

void StreamTest::stopWithoutStream()
{
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    driver.trigger("action_Menu_Stop");
    QCOMPARE(recorded::windowOperations(), QStringList());
    QVERIFY(driver.enabled("actionStart"));
}

void StreamTest::startAfterStop()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    driver.stop();
    driver.start();
    QVERIFY(scripted::streaming());
    QCOMPARE(scripted::count("Strm_OpenSimple"), 2);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
}

void StreamTest::callbacksWhileStoppingAreNotLogged()
{
    bool delivered = false;
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::onCall("Strm_Stop", [&] { delivered = scripted::deliverError(1) && scripted::deliverBusy(1); });
    driver.stop();
    QVERIFY(delivered);
    QCOMPARE(logUpTo(driver, "stopped"), QStringList{"stopped"});
}

} // namespace

ORVO_TEST_CLASS(StreamTest)
#include "StreamTest.moc"
