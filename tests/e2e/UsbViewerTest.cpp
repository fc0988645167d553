// The real window with the real camera libraries, and an emulated USB3 Vision camera.

#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/Patience.h"
#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <csignal>

#include <dlfcn.h>

namespace {

class UsbViewerTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void wholeSession_data();
    void wholeSession();
    void cameraUnpluggedWhileLive();
    void cameraUnpluggedWhileStopped();
    void transportDiesWhileLive_data();
    void transportDiesWhileLive();
};

void UsbViewerTest::cleanup()
{
    usb::useAsynchronousMode(false);
}

/// Whether each byte of the image is one more than the one before, as the camera sends them.
bool isExact(const QImage& image)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const bool colour = !image.isGrayscale();
    int expected = qRed(rgb.pixel(0, 0));
    for (int y = 0; y < rgb.height(); ++y) {
        for (int x = 0; x < rgb.width(); ++x) {
            const QRgb pixel = rgb.pixel(x, y);
            const int g = expected + (colour ? 1 : 0);
            const int b = expected + (colour ? 2 : 0);
            if (pixel != qRgb(expected & 0xff, g & 0xff, b & 0xff))
                return false;
            expected = (expected + (colour ? 3 : 1)) & 0xff;
        }
    }
    return true;
}

void editEachTypeOfFeature(FeatureHand& hand)
{
    hand.type("Width", "96");
    QCOMPARE(usb::value(usb::kWidth), 96U);
    hand.type("Height", "64");
    QCOMPARE(usb::value(usb::kHeight), 64U);
    hand.type("Gain", "3.5");
    QCOMPARE(usb::value(usb::kGain + 4), 0x400c0000U); // the upper half of the double
    hand.choose("TriggerSource", "Line0");
    QCOMPARE(usb::value(usb::kTriggerSource), 1U);
    hand.choose("ReverseX", "true");
    QCOMPARE(usb::value(usb::kReverseX), 1U);
    hand.type("DeviceUserID", "left");
    QCOMPARE(usb::value(usb::kUserId), 0x7466656cU); // its bytes
    hand.execute("TriggerSoftware");
    QCOMPARE(usb::value(usb::kTriggerSoftware), 1U);
    QVERIFY2(hand.clickValue("UserData") == nullptr, "a register is not edited as a value");
    QVERIFY(hand.names().contains("UserData"));
}

void triggerImages(WindowDriver& driver, FeatureHand& hand, const ShownImages& images)
{
    hand.choose("TriggerSource", "Software");
    hand.choose("TriggerMode", "On");
    driver.start();
    QVERIFY2(!images.waitForMore(1, 300), "an image arrived without a trigger");
    for (int i = 0; i < 3; ++i) {
        driver.trigger("actionSoftwareTrigger");
        QVERIFY2(images.waitForMore(1), qPrintable(driver.log().join('\n')));
        QVERIFY2(!images.waitForMore(1, 100), "one trigger brought two images");
    }
    driver.stop();
}

void UsbViewerTest::wholeSession_data()
{
    QTest::addColumn<bool>("asynchronous");
    QTest::newRow("synchronous transfers") << false;
    QTest::newRow("asynchronous transfers") << true;
}

void UsbViewerTest::wholeSession()
{
    QFETCH(bool, asynchronous);
    if (asynchronous && ::dlsym(RTLD_DEFAULT, "arv_uv_device_set_usb_mode") == nullptr)
        QSKIP("this version of Aravis has no asynchronous mode");
    usb::unplug();
    usb::plugIn();
    usb::useAsynchronousMode(asynchronous);
    const int transfersBefore = usb::asynchronousTransfers();

    WindowDriver driver;
    driver.window().show();
    QVERIFY(QTest::qWaitForWindowActive(&driver.window(), kPatienceMs));
    ShownImages images(driver.window(), ShownImages::Keep::Last);
    driver.open();
    QVERIFY2(driver.enabled("actionStart"), qPrintable(driver.log().join('\n')));
    FeatureHand hand(driver.window());
    editEachTypeOfFeature(hand);
    if (QTest::currentTestFailed())
        return;

    // The camera waits until its images are fetched, so that a busy machine does not make it lose any.
    driver.clearLog();
    driver.start();
    const auto sent = [] { return usb::imagesSent() >= 1000; };
    while (!sent()) {
        QVERIFY(images.waitForMore(1));
        QCOMPARE(images.last().size(), QSize(96, 64));
        QVERIFY(isExact(images.last()));
    }
    driver.stop();
    QVERIFY2(!driver.log().join('\n').contains("error", Qt::CaseInsensitive), qPrintable(driver.log().join('\n')));

    hand.choose("PixelFormat", "RGB8");
    QCOMPARE(usb::value(usb::kPixelFormat), 0x02180014U);
    driver.start();
    QVERIFY(images.waitForMore(3));
    QVERIFY(!images.last().isGrayscale());
    QVERIFY(isExact(images.last()));
    driver.stop();

    triggerImages(driver, hand, images);
    if (QTest::currentTestFailed())
        return;
    hand.choose("TriggerMode", "Off");
    driver.start();
    QVERIFY(images.waitForMore(3));
    usb::unplug();
    QVERIFY(QTest::qWaitFor([&] { return driver.log().contains("A camera has been Removed."); }, kPatienceMs));
    QVERIFY(QTest::qWaitFor([&] { return driver.enabled("actionOpen"); }, kPatienceMs));
    usb::plugIn();
    driver.open();
    driver.start();
    QVERIFY(images.waitForMore(3));
    QCOMPARE(images.last().size(), QSize(320, 240));
    QCOMPARE(usb::asynchronousTransfers() > transfersBefore, asynchronous);
}

void UsbViewerTest::cameraUnpluggedWhileLive()
{
    WindowDriver driver;
    ShownImages images(driver.window(), ShownImages::Keep::Last);
    for (int round = 0; round < 8; ++round) {
        driver.open();
        QVERIFY2(driver.enabled("actionStart"), qPrintable(driver.log().join('\n')));
        driver.start();
        QVERIFY(images.waitForMore(3));
        QCOMPARE(images.last().size(), QSize(320, 240));
        usb::unplug();
        QVERIFY(QTest::qWaitFor([&] { return driver.log().contains("A camera has been Removed."); }, kPatienceMs));
        QVERIFY(QTest::qWaitFor([&] { return driver.enabled("actionOpen"); }, kPatienceMs));
        QVERIFY(!driver.enabled("actionStop"));
        driver.clearLog();
        usb::plugIn();
    }
}

// Without a display thread nothing polls for the removal; the next operation reports it.
void UsbViewerTest::cameraUnpluggedWhileStopped()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    driver.stop();
    usb::unplug();
    driver.start();
    QVERIFY2(driver.log().join('\n').contains("[CAM_API_STS_CAMERA_NOT_RESPONDING]"),
             qPrintable(driver.log().join('\n')));
    QVERIFY(driver.enabled("actionOpen"));
    usb::plugIn();
}

void UsbViewerTest::transportDiesWhileLive_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("killed") << SIGKILL;
    QTest::newRow("crashed") << SIGSEGV;
    QTest::newRow("stopped") << SIGSTOP;
}

// The window treats this like an unplugged camera.
void UsbViewerTest::transportDiesWhileLive()
{
    QFETCH(int, signal);
    WindowDriver driver;
    ShownImages images(driver.window());
    driver.open();
    driver.start();
    QVERIFY(images.waitForMore(3));
    usb::signalAt(usb::Moment::packet, 1, signal);
    QVERIFY(QTest::qWaitFor([&] { return driver.log().contains("A camera has been Removed."); }, kPatienceMs));
    QVERIFY(QTest::qWaitFor([&] { return driver.enabled("actionOpen"); }, kPatienceMs));
    driver.open();
    driver.start();
    QVERIFY(images.waitForMore(3));
}

} // namespace

QTEST_MAIN(UsbViewerTest)
#include "UsbViewerTest.moc"
