// Starting and stopping the stream, software trigger, callbacks, and what the window does with images and rates.

#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QGraphicsItem>

namespace {

const QString kNoRates = "[Disp =           fps] , [Cap =           fps]";
constexpr std::uint32_t kBayerRG8 = 0x01080009;
constexpr std::uint32_t kMono8 = 0x01080001;

QStringList names()
{
    QStringList texts;
    for (const std::string& name : scripted::callNames()) {
        if (name.rfind("Nd_", 0) != 0)
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

    void errorCallbackIsLogged();
    void busyCallbackIsLogged();
    void callbacksAfterStopAreNotLogged();
    void callbackLineIsWrittenOncePerOpening();

    void imagesReachTheView();
    void imagesAreCopied();
    void imagesAfterStopAreNotShown();
    void pausedShowsNoImages_data();
    void pausedShowsNoImages();
    void pauseActionsKeepTheirMarks();
    void firstRateReportIsNotShown();
    void firstRateReportOfEveryStartIsNotShown();
    void ratesAreShownOnlyWhileAcquiring();
    void lostImagesCountAsCaptured();

    void removalWhileAcquiring();
    void removalWhileOpenedIsNotNoticed();

    void zoomLimits();
    void zoomMenuTwins();
    void zoomResendsTheImage();
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

// --- Callbacks ------------------------------------------------------------------------------------------------------

void StreamTest::errorCallbackIsLogged()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverError(Orvo::CAM_API_STS_MISSING_PACKETS));
    QVERIFY(scripted::deliverError(0xabcdef));
    QTRY_COMPARE(driver.log(),
                 (QStringList{"CallBackErrorImage. (status = 0x100A)", "CallBackErrorImage. (status = 0xABCDEF)"}));
}

void StreamTest::busyCallbackIsLogged()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverBusy(3));
    QTRY_COMPARE(driver.log(), QStringList{"CallbackBufferBusy. (uiBufferIndex = 3)"});
}

void StreamTest::callbacksAfterStopAreNotLogged()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    driver.stop();
    scripted::lateError(1);
    scripted::lateBusy(1);
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Qt::QueuedConnection,
                                      Q_ARG(QString, QString("after them"))));
    QTRY_COMPARE(driver.log(), QStringList{"after them"});
}

void StreamTest::callbackLineIsWrittenOncePerOpening()
{
    WindowDriver driver;
    driver.open();
    driver.close();
    driver.open();
    driver.close();
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverBusy(0));
    const QString line = "CallbackBufferBusy. (uiBufferIndex = 0)";
    QTRY_COMPARE(driver.log(), (QStringList{line, line, line}));
}

// --- Images and rates -----------------------------------------------------------------------------------------------

void StreamTest::imagesReachTheView()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVector<QImage> shown;
    connect(&driver.window(), &MainWindow::Update_Image, this, [&](const QImage& image) { shown << image; });
    QVERIFY(scripted::deliverImage(1, 0x40));
    QTRY_COMPARE(shown.size(), 1);
    QCOMPARE(shown[0].size(), QSize(64, 48));
    QCOMPARE(shown[0].pixel(63, 47), qRgb(0x40, 0x40, 0x40));
    QVERIFY(scripted::deliverImage(2, 0x80));
    QTRY_COMPARE(shown.size(), 2);
    QCOMPARE(shown[1].pixel(0, 0), qRgb(0x80, 0x80, 0x80));
    disconnect(&driver.window(), &MainWindow::Update_Image, this, nullptr);
}

void StreamTest::imagesAreCopied()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVector<QImage> shown;
    connect(&driver.window(), &MainWindow::Update_Image, this, [&](const QImage& image) { shown << image; });
    for (int frame = 1; frame <= 5; ++frame) {
        QVERIFY(scripted::deliverImage(std::uint64_t(frame), std::uint8_t(frame)));
        QTRY_COMPARE(shown.size(), frame);
    }
    for (int frame = 1; frame <= 5; ++frame)
        QCOMPARE(shown[frame - 1].pixel(5, 5), qRgb(frame, frame, frame));
    disconnect(&driver.window(), &MainWindow::Update_Image, this, nullptr);
}

void StreamTest::imagesAfterStopAreNotShown()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    int shown = 0;
    connect(&driver.window(), &MainWindow::Update_Image, this, [&] { ++shown; });
    driver.stop();
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "disp_image",
                                      Q_ARG(QImage, QImage(64, 48, QImage::Format_ARGB32))));
    QCOMPARE(shown, 0);
    disconnect(&driver.window(), &MainWindow::Update_Image, this, nullptr);
}

void StreamTest::pausedShowsNoImages_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionPause");
    QTest::newRow("menu") << QByteArray("action_Menu_Pause");
}

void StreamTest::pausedShowsNoImages()
{
    QFETCH(QByteArray, action);
    WindowDriver driver;
    driver.open();
    driver.start();
    int shown = 0;
    connect(&driver.window(), &MainWindow::Update_Image, this, [&] { ++shown; });
    driver.trigger(action);
    QVERIFY(driver.action(action)->isChecked());
    // One image may have been on its way; from here on there is none.
    QVERIFY(scripted::deliverImage(1));
    QTest::qWait(100);
    QCOMPARE(shown, 0);
    driver.trigger(action);
    QTRY_COMPARE(shown, 1);
    disconnect(&driver.window(), &MainWindow::Update_Image, this, nullptr);
}

void StreamTest::pauseActionsKeepTheirMarks()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    driver.trigger("actionPause");
    QVERIFY(driver.action("actionPause")->isChecked());
    QVERIFY(!driver.action("action_Menu_Pause")->isChecked());
}

void StreamTest::firstRateReportIsNotShown()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const auto report = [&](double capFps, double dispFps) {
        QVERIFY(QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, capFps), Q_ARG(double, dispFps)));
    };
    report(4000000000.0, 12.0);
    QCOMPARE(driver.rates(), kNoRates);
    report(60.004, 36.996);
    QCOMPARE(driver.rates(), QString("[Disp =  37.00 fps] , [Cap =  60.00 fps]"));
    report(0, 0);
    QCOMPARE(driver.rates(), QString("[Disp =   0.00 fps] , [Cap =   0.00 fps]"));
    report(1234.5, 100);
    QCOMPARE(driver.rates(), QString("[Disp = 100.00 fps] , [Cap = 1234.50 fps]"));
}

void StreamTest::firstRateReportOfEveryStartIsNotShown()
{
    WindowDriver driver;
    driver.open();
    for (int round = 0; round < 2; ++round) {
        driver.start();
        const QString before = driver.rates();
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 1.0), Q_ARG(double, 1.0));
        QCOMPARE(driver.rates(), before);
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 2.0 + round), Q_ARG(double, 1.0));
        QVERIFY(driver.rates() != before);
        driver.stop();
    }
}

void StreamTest::ratesAreShownOnlyWhileAcquiring()
{
    WindowDriver driver;
    driver.open();
    for (int report = 0; report < 3; ++report)
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 60.0), Q_ARG(double, 30.0));
    QCOMPARE(driver.rates(), kNoRates);
}

void StreamTest::lostImagesCountAsCaptured()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    // The first report is dropped; the second covers what is delivered after it.
    QVERIFY(scripted::deliverImage(10));
    QSignalSpy reports(driver.window().findChild<QThread*>(), SIGNAL(dispFps(double, double)));
    QVERIFY(reports.wait(4000));
    QVERIFY(scripted::deliverImage(11));
    QVERIFY(scripted::deliverImage(111)); // 99 images lost between
    QVERIFY(reports.wait(4000));
    const double captured = reports.at(1).at(0).toDouble() * 2.0; // over a little more than two seconds
    QVERIFY2(captured > 90 && captured <= 101, qPrintable(QString::number(captured)));
}

// --- Removal --------------------------------------------------------------------------------------------------------

void StreamTest::removalWhileAcquiring()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    scripted::failAlways("Strm_Stop", Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING);
    scripted::unplug();
    QTRY_VERIFY(driver.enabled("actionOpen"));
    QCOMPARE(driver.log(), QStringList{"A camera has been Removed."});
    QVERIFY(!driver.enabled("actionStop"));
    QCOMPARE(scripted::count("Cam_Close"), 1);
    // The log speaks again.
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString("more"))));
    QCOMPARE(driver.log().size(), 2);
}

void StreamTest::removalWhileOpenedIsNotNoticed()
{
    WindowDriver driver;
    driver.open();
    scripted::unplug();
    QTest::qWait(50);
    QVERIFY(driver.enabled("actionClose"));
    driver.close();
    QVERIFY(driver.enabled("actionOpen"));
    QCOMPARE(driver.log(), QStringList());
}

// --- Zoom -----------------------------------------------------------------------------------------------------------

void StreamTest::zoomLimits()
{
    WindowDriver driver;
    driver.open();
    QVERIFY(driver.enabled("actionZoomIn"));
    QVERIFY(driver.enabled("actionZoomOut"));
    QVERIFY(driver.enabled("action_Menu_Zoom_Out"));
    QVERIFY(!driver.enabled("actionNormalSize"));

    driver.trigger("actionZoomIn"); // 2.0
    QVERIFY(driver.enabled("actionZoomIn") && driver.enabled("action_Menu_Zoom_In"));
    QVERIFY(driver.enabled("actionNormalSize"));
    driver.trigger("actionZoomIn"); // 4.0
    QVERIFY(driver.enabled("actionZoomIn") && driver.enabled("action_Menu_Zoom_In"));
    driver.start(); // a change of state allows less
    QVERIFY(!driver.enabled("actionZoomIn") && !driver.enabled("action_Menu_Zoom_In"));
    driver.trigger("actionZoomIn"); // 8.0
    QVERIFY(!driver.enabled("actionZoomIn") && !driver.enabled("action_Menu_Zoom_In"));
    auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget());
    QCOMPARE(view->view()->transform().m11(), 8.0);

    driver.trigger("actionNormalSize");
    QCOMPARE(view->view()->transform().m11(), 1.0);
    QVERIFY(driver.enabled("actionZoomOut"));
    QVERIFY(!driver.enabled("action_Menu_Zoom_Out")); // off at 1.0, unlike the tool bar's
    QVERIFY(!driver.enabled("actionNormalSize"));

    driver.trigger("actionZoomOut"); // 0.5
    QVERIFY(driver.enabled("actionZoomOut") && driver.enabled("action_Menu_Zoom_Out"));
    driver.trigger("actionZoomOut"); // 0.25
    QVERIFY(!driver.enabled("actionZoomOut"));
    QVERIFY(driver.enabled("action_Menu_Zoom_Out"));
    QVERIFY(driver.enabled("actionNormalSize"));
    QCOMPARE(view->view()->transform().m11(), 0.25);
}

void StreamTest::zoomMenuTwins()
{
    WindowDriver driver;
    driver.open();
    auto* const view = qobject_cast<ImageView*>(driver.window().centralWidget())->view();
    driver.trigger("action_Menu_Zoom_In");
    QCOMPARE(view->transform().m11(), 2.0);
    driver.trigger("action_Menu_Normal_Size");
    QCOMPARE(view->transform().m11(), 1.0);
    driver.start(); // enables the menu's Zoom Out again
    driver.trigger("action_Menu_Zoom_Out");
    QCOMPARE(view->transform().m11(), 0.5);
}

void StreamTest::zoomResendsTheImage()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVector<QImage> shown;
    connect(&driver.window(), &MainWindow::Update_Image, this, [&](const QImage& image) { shown << image; });
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.size(), 0); // nothing to send yet
    QVERIFY(scripted::deliverImage(1, 7));
    QTRY_COMPARE(shown.size(), 1);
    driver.trigger("actionZoomIn");
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown[1], shown[0]);
    disconnect(&driver.window(), &MainWindow::Update_Image, this, nullptr);
}

} // namespace

QTEST_MAIN(StreamTest)
#include "StreamTest.moc"
