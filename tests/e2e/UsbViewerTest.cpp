// The real window with the real camera libraries, and a USB3 Vision camera that is unplugged.

#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/support/Patience.h"
#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <csignal>

namespace {

class UsbViewerTest : public QObject {
    Q_OBJECT

private slots:
    void cameraUnpluggedWhileLive();
    void cameraUnpluggedWhileStopped();
    void transportDiesWhileLive_data();
    void transportDiesWhileLive();
};

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
