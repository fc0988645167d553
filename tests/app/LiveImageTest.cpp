// Callbacks, images, pausing and camera removal while a stream runs.

#include "discovery/DiscoveryDlg.h"
#include "display/DispThread.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/ShownImages.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

namespace {

class LiveImageTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void errorCallbackIsLogged();
    void busyCallbackIsLogged();
    void callbacksAfterStopAreNotLogged();
    void callbackLinesAreLoggedByTheEventLoop();
    void callbackLineIsLoggedOncePerOpening();

    void imagesReachTheView();
    void imagesAreCopied();
    void imagesAfterStopAreNotShown();

    void pausedShowsNoImages_data();
    void pausedShowsNoImages();
    void pauseActionsKeepTheirMarks();
    void lastPauseActionWins();
    void pauseSurvivesStreamAndCamera();

    void removalWhileAcquiring();
    void removalWithoutAStreamIsNotDetected();
    void removalOfAClosedCameraLeavesTheNextOneOpen();
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

void LiveImageTest::callbackLinesAreLoggedByTheEventLoop()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverError(1));
    QVERIFY(scripted::deliverBusy(1));
    QCOMPARE(driver.log(), QStringList());
    QTRY_COMPARE(driver.log().size(), 2);
}

void LiveImageTest::callbackLineIsLoggedOncePerOpening()
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

// --- Images ---------------------------------------------------------------------------------------------------------

void LiveImageTest::imagesReachTheView()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const ShownImages shown(driver.window(), ShownImages::Keep::All);
    QVERIFY(scripted::deliverImage(1, 0x40));
    QTRY_COMPARE(shown.count(), 1);
    QCOMPARE(shown.images()[0].size(), QSize(64, 48));
    QCOMPARE(shown.images()[0].pixel(63, 47), qRgb(0x40, 0x40, 0x40));
    QVERIFY(scripted::deliverImage(2, 0x80));
    QTRY_COMPARE(shown.count(), 2);
    QCOMPARE(shown.images()[1].pixel(0, 0), qRgb(0x80, 0x80, 0x80));
}

void LiveImageTest::imagesAreCopied()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const ShownImages shown(driver.window(), ShownImages::Keep::All);
    for (int frame = 1; frame <= 5; ++frame) {
        QVERIFY(scripted::deliverImage(std::uint64_t(frame), std::uint8_t(frame)));
        QTRY_COMPARE(shown.count(), frame);
    }
    for (int frame = 1; frame <= 5; ++frame)
        QCOMPARE(shown.images()[frame - 1].pixel(5, 5), qRgb(frame, frame, frame));
}

void LiveImageTest::imagesAfterStopAreNotShown()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const ShownImages shown(driver.window());
    driver.stop();
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "disp_image",
                                      Q_ARG(QImage, QImage(64, 48, QImage::Format_ARGB32))));
    QCOMPARE(shown.count(), 0);
}

// --- Pause ----------------------------------------------------------------------------------------------------------

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
    const ShownImages shown(driver.window());
    driver.trigger(action);
    QVERIFY(driver.action(action)->isChecked());
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(recorded::waitRounds());
    QCOMPARE(shown.count(), 0);
    driver.trigger(action);
    QTRY_COMPARE(shown.count(), 1);
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

void LiveImageTest::lastPauseActionWins()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const ShownImages shown(driver.window());
    driver.trigger("actionPause");
    driver.trigger("action_Menu_Pause");
    driver.trigger("actionPause"); // resumes, although the menu action is still checked
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(shown.count(), 1);
    driver.trigger("actionPause");
    driver.trigger("action_Menu_Pause");
    QVERIFY(driver.action("actionPause")->isChecked());
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(shown.count(), 2);
}

void LiveImageTest::pauseSurvivesStreamAndCamera()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
    driver.trigger("actionPause");
    scripted::clearCalls();
    driver.stop();
    driver.start();
    QVERIFY(scripted::deliverImage(2));
    QVERIFY(recorded::waitRounds());
    driver.close();
    driver.open();
    driver.start();
    QVERIFY(scripted::deliverImage(3));
    QVERIFY(recorded::waitRounds());
    QCOMPARE(scripted::count("ConvImage"), 0);
    QVERIFY(driver.action("actionPause")->isChecked());
    driver.trigger("actionPause");
    QTRY_COMPARE(scripted::count("ConvImage"), 1);
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
    // Later lines are logged again.
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, QString("more"))));
    QCOMPARE(driver.log().size(), 2);
}

void LiveImageTest::removalWithoutAStreamIsNotDetected()
{
    WindowDriver driver;
    driver.open();
    scripted::unplug();
    QVERIFY(!driver.window().findChild<DispThread*>()); // nothing polls the signal
    QVERIFY(driver.enabled("actionClose"));
    driver.close();
    QVERIFY(driver.enabled("actionOpen"));
    QCOMPARE(driver.log(), QStringList());
}

void LiveImageTest::removalOfAClosedCameraLeavesTheNextOneOpen()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    // The display thread has reported the removal, but the user closes the camera before the window handles the report.
    scripted::unplug();
    QVERIFY(driver.window().findChild<DispThread*>()->wait(kPatienceMs));
    driver.close();
    scripted::plugIn();

    bool offeredMeanwhile = true;
    driver.open([&](DiscoveryDlg& dialog) {
        offeredMeanwhile = driver.enabled("actionOpen");
        dialog.open_camera();
    });
    QVERIFY(!offeredMeanwhile);
    QVERIFY(driver.enabled("actionStart"));
    QVERIFY(!driver.enabled("actionOpen"));
    QVERIFY(!driver.enabled("action_Menu_Open"));
    QVERIFY(driver.imageView());
    // The removal is still logged.
    QVERIFY(driver.log().contains("A camera has been Removed."));
}

} // namespace

ORVO_TEST_CLASS(LiveImageTest)
#include "LiveImageTest.moc"
