// What the window does with callbacks, images, frame rates, a removal and zoom while a stream runs.

#include "display/DispThread.h"
#include "display/GraphicsView.h"
#include "display/ImageView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

namespace {

const QString kNoRates = "[Disp =           fps] , [Cap =           fps]";

class LiveImageTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

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

// --- Callbacks ------------------------------------------------------------------------------------------------------

void LiveImageTest::errorCallbackIsLogged()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverError(Orvo::CAM_API_STS_MISSING_PACKETS));
    QVERIFY(scripted::deliverError(0xabcdef));
    QTRY_COMPARE(driver.log(),
                 (QStringList{"CallBackErrorImage. (status = 0x100A)", "CallBackErrorImage. (status = 0xABCDEF)"}));
}

void LiveImageTest::busyCallbackIsLogged()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverBusy(3));
    QTRY_COMPARE(driver.log(), QStringList{"CallbackBufferBusy. (uiBufferIndex = 3)"});
}

void LiveImageTest::callbacksAfterStopAreNotLogged()
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

void LiveImageTest::callbackLineIsWrittenOncePerOpening()
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

void LiveImageTest::imagesReachTheView()
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

void LiveImageTest::imagesAreCopied()
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

void LiveImageTest::imagesAfterStopAreNotShown()
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

void LiveImageTest::pausedShowsNoImages_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionPause");
    QTest::newRow("menu") << QByteArray("action_Menu_Pause");
}

void LiveImageTest::pausedShowsNoImages()
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

void LiveImageTest::pauseActionsKeepTheirMarks()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    driver.trigger("actionPause");
    QVERIFY(driver.action("actionPause")->isChecked());
    QVERIFY(!driver.action("action_Menu_Pause")->isChecked());
}

void LiveImageTest::firstRateReportIsNotShown()
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

void LiveImageTest::firstRateReportOfEveryStartIsNotShown()
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

void LiveImageTest::ratesAreShownOnlyWhileAcquiring()
{
    WindowDriver driver;
    driver.open();
    for (int report = 0; report < 3; ++report)
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 60.0), Q_ARG(double, 30.0));
    QCOMPARE(driver.rates(), kNoRates);
}

void LiveImageTest::lostImagesCountAsCaptured()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVector<QPair<double, double>> reports;
    int shown = 0;
    connect(driver.window().findChild<DispThread*>(), &DispThread::dispFps, &driver.window(),
            [&](double capFps, double dispFps) {
                reports.append({capFps, dispFps});
            });
    connect(&driver.window(), &MainWindow::Update_Image, &driver.window(), [&] { ++shown; });
    QVERIFY(scripted::deliverImage(10));
    QTRY_COMPARE(reports.size(), 1);
    QVERIFY(scripted::deliverImage(11));
    QTRY_COMPARE(shown, 2);
    QVERIFY(scripted::deliverImage(111)); // 99 images lost between
    QTRY_COMPARE(shown, 3);
    QTRY_COMPARE(reports.size(), 2);
    // 101 images, two of them shown, within the same time.
    QCOMPARE(reports[0].first, reports[0].second);
    QCOMPARE(reports[1].first / reports[1].second, 101 / 2.0);
}

// --- Removal --------------------------------------------------------------------------------------------------------

void LiveImageTest::removalWhileAcquiring()
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

void LiveImageTest::removalWhileOpenedIsNotNoticed()
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

void LiveImageTest::zoomLimits()
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

void LiveImageTest::zoomMenuTwins()
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

void LiveImageTest::zoomResendsTheImage()
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

QTEST_MAIN(LiveImageTest)
#include "LiveImageTest.moc"
