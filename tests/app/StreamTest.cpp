// Starting and stopping the stream.

#include "display/DispThread.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QGraphicsItem>

namespace {

class StreamTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void startMakesItsCallsInOrder_data();
    void startMakesItsCallsInOrder();
    void startPassesTheFixedNumbers();
    void startEnablesWhatAStreamOffers();
    void startTwiceDoesNothing();
    void startWithoutCameraDoesNothing();
    void startFailureClosesTheCamera_data();
    void startFailureClosesTheCamera();
    void startWithUnreadableWidthGoesOn();
    void startWithUnreadableHeightTakesTheWidth();
    void startWithUnreadableFormatKeepsTheOldOne();
    void startWithoutMemory_data();
    void startWithoutMemory();
    void startMakesANewViewOnlyWhereTheFormatChanged();
    void sizeThatChangesWithTheOpeningIsTaken();
    void newSizeKeepsTheZoomFactorOfTheWindow();
    void startAfterOpeningKeepsTheView();
    void callbacksWhileStartingAreNotLogged();

    void stopMakesItsCallsInOrder();
    void stopEndsTheDisplayThreadBeforeTheStream();
    void stopWithFailure();
    void stopWithoutClosing();
    void stopWithoutStream();
    void startAfterStop();
    void callbacksWhileStoppingAreNotLogged();
};

// --- Start ----------------------------------------------------------------------------------------------------------

void StreamTest::startMakesItsCallsInOrder_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionStart");
    QTest::newRow("menu") << QByteArray("action_Menu_Start");
}

void StreamTest::startMakesItsCallsInOrder()
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
    const QStringList made = recorded::windowOperations();
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

void StreamTest::startWithUnreadableHeightTakesTheWidth()
{
    WindowDriver driver;
    driver.open();
    const QPointer<QWidget> view = driver.window().centralWidget();
    scripted::setImageFormat(32, 16, scripted::bayerRG8);
    scripted::failAlways("GetCamHeight", Orvo::CAM_API_STS_TIMEOUT);
    driver.start();
    const QString line = "ERROR: Error image height. [CAM_API_STS_TIMEOUT]";
    QCOMPARE(driver.log(), (QStringList{line, line}));
    QVERIFY(view);
    QCOMPARE(driver.window().centralWidget(), view.data());

    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
    const auto converted = scripted::calls({"ConvImage"}).at(0).arguments;
    QCOMPARE(converted.at(5), std::string("32"));
    QCOMPARE(converted.at(6), std::string("48"));
}

void StreamTest::startWithUnreadableFormatKeepsTheOldOne()
{
    WindowDriver driver;
    driver.open();
    scripted::setImageFormat(64, 48, scripted::mono8);
    scripted::failAlways("GetCamPixelFormat", Orvo::CAM_API_STS_TIMEOUT);
    driver.start();
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
    QCOMPARE(scripted::calls({"ConvImage"}).at(0).arguments.at(1), std::to_string(scripted::bayerRG8));
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
    scripted::setImageFormat(width, height, scripted::bayerRG8);
    driver.start();
    QCOMPARE(driver.log(), QStringList{"ERROR: malloc error! [CAM_API_STS_UNSUCCESSFUL]"});
    QVERIFY(driver.enabled("actionOpen"));
    QVERIFY(!scripted::streaming());
    const QStringList made = recorded::windowOperations();
    QCOMPARE(made.mid(made.indexOf("Strm_OpenSimple")),
             (QStringList{"Strm_OpenSimple", "GetCamWidth", "GetCamHeight", "GetCamPixelFormat", "Strm_Stop",
                          "Strm_Close", "Cam_Close", "Sys_CloseSignal"}));
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

    scripted::setImageFormat(32, 16, scripted::bayerRG8);
    driver.start();
    QVERIFY(!view);
    auto* const newView = qobject_cast<ImageView*>(driver.window().centralWidget());
    QVERIFY(newView);
    QCOMPARE(newView->view()->scene()->items().first()->boundingRect(), QRectF(0, 0, 32, 16));

    driver.stop();
    scripted::setImageFormat(32, 16, scripted::mono8);
    const QPointer<QWidget> ofOtherFormat = newView;
    driver.start();
    QVERIFY(!ofOtherFormat);
}

void StreamTest::sizeThatChangesWithTheOpeningIsTaken()
{
    QVector<QSize> shown;
    WindowDriver driver;
    driver.open();
    connect(&driver.window(), &MainWindow::Update_Image, &driver.window(),
            [&](const QImage& image) { shown << image.size(); });
    scripted::onCall("Strm_OpenSimple", [] { scripted::setImageFormat(80, 60, scripted::bayerRG8); });
    driver.start();
    auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget());
    QVERIFY(view);
    QCOMPARE(view->view()->scene()->items().first()->boundingRect(), QRectF(0, 0, 80, 60));

    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(shown, QVector<QSize>{QSize(80, 60)});
    const auto converted = scripted::calls({"ConvImage"}).at(0).arguments;
    QCOMPARE(converted.at(5), std::string("80"));
    QCOMPARE(converted.at(6), std::string("60"));
}

void StreamTest::newSizeKeepsTheZoomFactorOfTheWindow()
{
    WindowDriver driver;
    driver.open();
    driver.trigger("actionZoomIn");
    scripted::setImageFormat(33, 17, scripted::bayerRG8);
    driver.start();
    const auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget());
    QCOMPARE(const_cast<ImageView*>(view)->view()->transform().m11(), 1.0);
    QVERIFY(driver.enabled("actionNormalSize")); // the window still counts 2.0
}

void StreamTest::startAfterOpeningKeepsTheView()
{
    WindowDriver driver;
    scripted::setImageFormat(40, 30, scripted::bayerRG8);
    driver.open();
    driver.close();
    scripted::setImageFormat(41, 30, scripted::bayerRG8);
    driver.open(); // remembers 41
    const QPointer<QWidget> view = driver.window().centralWidget();
    driver.start();
    QCOMPARE(driver.window().centralWidget(), view.data());
}

/// Writes a line that comes behind what the callbacks have queued, and gives the log with it.
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
    scripted::onCall("Nd_GetIntValue", callBack); // while the features are read anew
    driver.start();
    QVERIFY(delivered > 1);
    QCOMPARE(logUpTo(driver, "started"), QStringList{"started"});
}

// --- Stop -----------------------------------------------------------------------------------------------------------

void StreamTest::stopMakesItsCallsInOrder()
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
    QVERIFY(driver.enabled("actionSnapshot")); // the image is still there
    QCOMPARE(driver.log(), QStringList());
}

void StreamTest::stopEndsTheDisplayThreadBeforeTheStream()
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
    // The stream is gone before it is closed.
    scripted::onCall("Strm_Close", [] {
        scripted::onCall("Strm_Close", nullptr);
        QCOMPARE(Orvo::Strm_Close(3001), Orvo::CAM_API_STS_SUCCESS);
    });
    driver.stop();
    QVERIFY(scripted::calls({"Strm_Close"}).at(0).result != Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(driver.log(), QStringList());
    scripted::clearCalls();
    driver.trigger("action_Menu_Stop");
    QCOMPARE(recorded::windowOperations(), QStringList()); // it counts as closed
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

QTEST_MAIN(StreamTest)
#include "StreamTest.moc"
