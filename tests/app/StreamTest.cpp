// Starting and stopping the stream, and the software trigger.

#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QGraphicsItem>

namespace {

constexpr std::uint32_t kBayerRG8 = 0x01080009;
constexpr std::uint32_t kMono8 = 0x01080001;

QStringList names()
{
    QStringList texts;
    for (const std::string& name : scripted::callNames()) {
        if (name.rfind("Nd_", 0) != 0) // the feature browser's business
            texts << QString::fromStdString(name);
    }
    return texts;
}

class StreamTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void startMakesItsCallsInOrder();
    void startPassesTheFixedNumbers();
    void startEnablesWhatAStreamOffers();
    void startTwiceDoesNothing();
    void startWithoutCameraDoesNothing();
    void startFailureClosesTheCamera_data();
    void startFailureClosesTheCamera();
    void startWithUnreadableWidthGoesOn();
    void startWithUnreadableFormatKeepsTheOldOne();
    void startWithoutMemory_data();
    void startWithoutMemory();
    void startMakesANewViewOnlyWhereTheFormatChanged();
    void newSizeKeepsTheZoomFactorOfTheWindow();
    void rememberedFormatOutlivesTheCamera();

    void stopMakesItsCallsInOrder();
    void stopWithFailure();
    void stopWithoutStream();
    void startAfterStop();

    void softwareTriggerIsOfferedInTriggerMode_data();
    void softwareTriggerIsOfferedInTriggerMode();
    void softwareTriggerEndsWithTheStream();
    void softwareTriggerExecutes_data();
    void softwareTriggerExecutes();
    void softwareTriggerFails();
};

// --- Start ----------------------------------------------------------------------------------------------------------

void StreamTest::startMakesItsCallsInOrder()
{
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    driver.start();
    QCOMPARE(names(), (QStringList{"GetCamWidth", "GetCamHeight", "GetCamPixelFormat", "Strm_OpenSimple", "GetCamWidth",
                                   "GetCamHeight", "GetCamPixelFormat", "Strm_SetCallbackImageAcquired",
                                   "Strm_SetCallbackImageError", "Strm_SetCallbackBufferBusy", "Strm_Start",
                                   "GetCamTriggerMode"}));
    QCOMPARE(driver.log(), QStringList());
}

void StreamTest::startPassesTheFixedNumbers()
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

void StreamTest::startEnablesWhatAStreamOffers()
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
    driver.trigger("actionStart");
    QCOMPARE(names(), QStringList());
    QVERIFY(scripted::streaming());
}

void StreamTest::startWithoutCameraDoesNothing()
{
    WindowDriver driver;
    scripted::clearCalls();
    driver.trigger("actionStart");
    QCOMPARE(names(), QStringList());
    QVERIFY(driver.enabled("actionOpen"));
}

void StreamTest::startFailureClosesTheCamera_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("closing");
    const QStringList closed{"Cam_Close", "Sys_CloseSignal"};
    // A stream that is open is stopped, although it never started.
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
    const QStringList made = names();
    QCOMPARE(made.mid(made.indexOf(QTest::currentDataTag()) + 1).filter(QRegularExpression("^(?!GetCam)")), closing);
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("actionClose"));
    QVERIFY(!driver.window().findChild<ImageView*>());

    driver.open();
    driver.start();
    QVERIFY(scripted::streaming());
}

void StreamTest::startWithUnreadableWidthGoesOn()
{
    WindowDriver driver;
    driver.open();
    scripted::failAlways("GetCamWidth", Orvo::CAM_API_STS_TIMEOUT);
    driver.start();
    const QString line = "ERROR: Error image width. [CAM_API_STS_TIMEOUT]";
    QCOMPARE(driver.log(), (QStringList{line, line}));
    QVERIFY(scripted::streaming());

    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
    const auto converted = scripted::calls({"ConvImage"}).at(0).arguments;
    QCOMPARE(converted.at(5), std::string("64"));
    QCOMPARE(converted.at(6), std::string("48"));
}

void StreamTest::startWithUnreadableFormatKeepsTheOldOne()
{
    WindowDriver driver;
    driver.open();
    scripted::setImageFormat(64, 48, kMono8);
    scripted::failAlways("GetCamPixelFormat", Orvo::CAM_API_STS_TIMEOUT);
    driver.start();
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
    QCOMPARE(scripted::calls({"ConvImage"}).at(0).arguments.at(1), std::to_string(kBayerRG8));
}

void StreamTest::startWithoutMemory_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::newRow("no pixels") << 0u << 48u;
    QTest::newRow("product wraps to 0") << 0x8000u << 0x8000u;
    QTest::newRow("product wraps to little") << 0x10000u << 0x4001u;
}

void StreamTest::startWithoutMemory()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    WindowDriver driver;
    driver.open();
    scripted::setImageFormat(width, height, kBayerRG8);
    driver.start();
    QCOMPARE(driver.log(), QStringList{"ERROR: malloc error! [CAM_API_STS_UNSUCCESSFUL]"});
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!scripted::streaming());
}

void StreamTest::startMakesANewViewOnlyWhereTheFormatChanged()
{
    WindowDriver driver;
    driver.open();
    driver.start(); // remembers
    driver.stop();
    const QPointer<QWidget> view = driver.window().centralWidget();
    driver.start();
    QCOMPARE(driver.window().centralWidget(), view.data());
    driver.stop();

    scripted::setImageFormat(32, 16, kBayerRG8);
    driver.start();
    QVERIFY(!view);
    auto* const newView = qobject_cast<ImageView*>(driver.window().centralWidget());
    QVERIFY(newView);
    QCOMPARE(newView->view()->scene()->items().first()->boundingRect(), QRectF(0, 0, 32, 16));

    driver.stop();
    scripted::setImageFormat(32, 16, kMono8);
    const QPointer<QWidget> ofOtherFormat = newView;
    driver.start();
    QVERIFY(!ofOtherFormat);
}

void StreamTest::newSizeKeepsTheZoomFactorOfTheWindow()
{
    WindowDriver driver;
    driver.open();
    driver.trigger("actionZoomIn");
    scripted::setImageFormat(33, 17, kBayerRG8);
    driver.start();
    const auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget());
    QCOMPARE(const_cast<ImageView*>(view)->view()->transform().m11(), 1.0);
    QVERIFY(driver.enabled("actionNormalSize")); // the window still counts 2.0
}

void StreamTest::rememberedFormatOutlivesTheCamera()
{
    WindowDriver driver;
    scripted::setImageFormat(40, 30, kBayerRG8);
    driver.open();
    driver.close();
    scripted::setImageFormat(41, 30, kBayerRG8);
    driver.open(); // remembers 41
    const QPointer<QWidget> view = driver.window().centralWidget();
    driver.start();
    QCOMPARE(driver.window().centralWidget(), view.data());
}

// --- Stop -----------------------------------------------------------------------------------------------------------

void StreamTest::stopMakesItsCallsInOrder()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::clearCalls();
    driver.stop();
    QCOMPARE(names(), (QStringList{"Strm_Stop", "Strm_Close"}));
    QVERIFY(driver.enabled("actionStart"));
    QVERIFY(!driver.enabled("actionStop"));
    QVERIFY(driver.enabled("action_Menu_Stop"));
    QVERIFY(driver.enabled("actionSnapshot")); // the image is still there
    QCOMPARE(driver.log(), QStringList());
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

void StreamTest::stopWithoutStream()
{
    WindowDriver driver;
    driver.open();
    scripted::clearCalls();
    driver.trigger("action_Menu_Stop");
    QCOMPARE(names(), QStringList());
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

// --- Software trigger -----------------------------------------------------------------------------------------------

void StreamTest::softwareTriggerIsOfferedInTriggerMode_data()
{
    QTest::addColumn<bool>("mode");
    QTest::addColumn<quint32>("source");
    QTest::addColumn<QString>("failing");
    QTest::addColumn<bool>("offered");
    QTest::newRow("software") << true << 64u << "" << true;
    QTest::newRow("another source") << true << 1u << "" << false;
    QTest::newRow("mode off") << false << 64u << "" << false;
    QTest::newRow("mode unreadable") << true << 64u << "GetCamTriggerMode" << false;
    QTest::newRow("source unreadable") << true << 64u << "GetCamTriggerSource" << false;
}

void StreamTest::softwareTriggerIsOfferedInTriggerMode()
{
    QFETCH(bool, mode);
    QFETCH(quint32, source);
    QFETCH(QString, failing);
    QFETCH(bool, offered);
    WindowDriver driver;
    scripted::setTrigger(mode, source);
    if (!failing.isEmpty())
        scripted::failAlways(failing.toStdString(), Orvo::CAM_API_STS_TIMEOUT);
    driver.open();
    QVERIFY(!driver.enabled("actionSoftwareTrigger"));
    QVERIFY(!driver.enabled("action_Menu_One_Shot"));
    driver.start();
    QCOMPARE(driver.enabled("actionSoftwareTrigger"), offered);
    QCOMPARE(driver.enabled("action_Menu_One_Shot"), offered);
    QCOMPARE(driver.log(), QStringList());
}

void StreamTest::softwareTriggerEndsWithTheStream()
{
    WindowDriver driver;
    scripted::setTrigger(true, 64);
    driver.open();
    driver.start();
    driver.stop();
    QVERIFY(!driver.enabled("actionSoftwareTrigger"));
    QVERIFY(!driver.enabled("action_Menu_One_Shot"));
}

void StreamTest::softwareTriggerExecutes_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionSoftwareTrigger");
    QTest::newRow("menu") << QByteArray("action_Menu_One_Shot");
}

void StreamTest::softwareTriggerExecutes()
{
    QFETCH(QByteArray, action);
    WindowDriver driver;
    driver.trigger(action);
    QCOMPARE(scripted::count("ExecuteCamSoftwareTrigger"), 0); // no camera
    scripted::setTrigger(true, 64);
    driver.open();
    driver.start();
    driver.trigger(action);
    QCOMPARE(scripted::count("ExecuteCamSoftwareTrigger"), 1);
}

void StreamTest::softwareTriggerFails()
{
    WindowDriver driver;
    scripted::setTrigger(true, 64);
    driver.open();
    driver.start();
    scripted::failCall("ExecuteCamSoftwareTrigger", Orvo::CAM_API_STS_NOT_WRITABLE);
    driver.trigger("actionSoftwareTrigger");
    QCOMPARE(driver.log(), QStringList{"ERROR: Error execute S/W trigger. [CAM_API_STS_NOT_WRITABLE]"});
}

} // namespace

QTEST_MAIN(StreamTest)
#include "StreamTest.moc"
