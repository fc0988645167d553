// The real window with the real camera libraries, and an emulated USB3 Vision camera.

#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/Patience.h"
#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include <dlfcn.h>

namespace {

/// What the camera library delivers to the window.
struct Delivery {
    std::atomic<Orvo::CAM_IMAGE_ACQUIRED_CALLBACK> callback{nullptr}; ///< the window's
    std::atomic<std::uint64_t> locked{0};                             ///< frame number of the image locked last

    std::mutex mutex;                   ///< guards the members below
    std::vector<std::uint64_t> numbers; ///< of all images of a stream
    int wrong = 0;                      ///< images that are not what the camera sends under their number
};
Delivery delivery;

template <class Function> Function* original(Function* /*type*/, const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void noteImage(Orvo::CAM_HANDLE camera, CAM_STRM_HANDLE stream, Orvo::CAM_IMAGE_INFO* info, std::uint32_t buffer,
               void* context)
{
    const auto* const data = static_cast<const std::uint8_t*>(info->data);
    bool exact = true;
    for (std::uint64_t i = 0; i < info->dataSize; ++i)
        exact = exact && data[i] == static_cast<std::uint8_t>(info->frameNumber + i);
    {
        const std::lock_guard lock(delivery.mutex);
        delivery.numbers.push_back(info->frameNumber);
        delivery.wrong += exact ? 0 : 1;
    }
    delivery.callback.load()(camera, stream, info, buffer, context);
}

} // namespace

// The window's calls of these functions of the camera library arrive here.
namespace Orvo {
extern "C" {

CAM_API_STATUS Strm_SetCallbackImageAcquired(CAM_STRM_HANDLE stream, void* context,
                                             CAM_IMAGE_ACQUIRED_CALLBACK callback)
{
    static auto* const set = original(&Strm_SetCallbackImageAcquired, "Strm_SetCallbackImageAcquired");
    delivery.callback = callback;
    return set(stream, context, callback == nullptr ? nullptr : noteImage);
}

CAM_API_STATUS Strm_LockBuffer(CAM_STRM_HANDLE stream, std::uint32_t buffer, CAM_IMAGE_INFO* info)
{
    static auto* const lock = original(&Strm_LockBuffer, "Strm_LockBuffer");
    const CAM_API_STATUS status = lock(stream, buffer, info);
    if (status == CAM_API_STS_SUCCESS)
        delivery.locked = info->frameNumber;
    return status;
}

} // extern "C"
} // namespace Orvo

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

/// Whether the image is what the camera sends under this frame number.
bool isExact(const QImage& image, std::uint64_t frameNumber)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const bool colour = !image.isGrayscale();
    int expected = static_cast<int>(frameNumber & 0xff);
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

/// Compares each image that the window shows with what the camera sends under its frame number. The display thread
/// locks the next image only after the window has returned this one.
class ShownPixels {
public:
    explicit ShownPixels(MainWindow& window)
    {
        QObject::connect(&window, &MainWindow::Update_Image, &m_receiver, [this](const QImage& image) {
            ++m_count;
            m_wrong += isExact(image, delivery.locked) ? 0 : 1;
        });
    }
    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] int wrong() const { return m_wrong; }

private:
    int m_count = 0;
    int m_wrong = 0;
    QObject m_receiver; // last member: destroyed first
};

/// The largest number of images that came one after the other without a loss. Negative if a frame number came twice or
/// an image was wrong.
int longestRun()
{
    const std::lock_guard lock(delivery.mutex);
    const std::vector<std::uint64_t>& numbers = delivery.numbers;
    if (delivery.wrong != 0 ||
        std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<>()) != numbers.end())
        return -1;
    int longest = 0;
    int run = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        run = i != 0 && numbers[i] == numbers[i - 1] + 1 ? run + 1 : 1;
        longest = std::max(longest, run);
    }
    return longest;
}

void startRecording()
{
    const std::lock_guard lock(delivery.mutex);
    delivery.numbers.clear();
    delivery.wrong = 0;
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
        QVERIFY(isExact(images.last(), static_cast<std::uint64_t>(i)));
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

    // The camera sends 200 images a second. On a machine that is too busy for them the stream goes on until 1,000 came
    // without a loss; a stream that loses one of 1,000 by itself never gets there.
    driver.clearLog();
    startRecording();
    const ShownPixels shown(driver.window());
    driver.start();
    while (longestRun() >= 0 && longestRun() < 1000 && usb::imagesSent() < 10000)
        QVERIFY(images.waitForMore(1));
    driver.stop();
    QVERIFY(longestRun() >= 1000);
    QCOMPARE(images.last().size(), QSize(96, 64));
    QVERIFY(shown.count() > 10);
    QCOMPARE(shown.wrong(), 0);
    QVERIFY2(!driver.log().join('\n').contains("error", Qt::CaseInsensitive), qPrintable(driver.log().join('\n')));

    hand.choose("PixelFormat", "RGB8");
    QCOMPARE(usb::value(usb::kPixelFormat), 0x02180014U);
    const int before = shown.count();
    driver.start();
    QVERIFY(images.waitForMore(3));
    QVERIFY(!images.last().isGrayscale());
    driver.stop();
    QVERIFY(shown.count() >= before + 3);
    QCOMPARE(shown.wrong(), 0);

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
