#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include "tests/cameralibs/api/LockedImage.h"

#include <algorithm>
#include <atomic>

#include <dlfcn.h>

using namespace Orvo;

using UsbStreamTest = StreamingUsb;

TEST_F(UsbStreamTest, ImagesArriveAsSent)
{
    const WrongImages wrong(m_recorder);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(50));
    stop();
    EXPECT_EQ(wrong.count(), 0);
    EXPECT_THAT(m_recorder.errors(), ::testing::IsEmpty());
    std::int64_t last = -1;
    for (const auto& image : m_recorder.images()) {
        EXPECT_EQ(image.info.status, 0U);
        EXPECT_EQ(image.info.dataSize, 320U * 240U);
        EXPECT_GT(static_cast<std::int64_t>(image.info.frameNumber), last);
        EXPECT_EQ(image.info.timestampNs, (image.info.frameNumber + 1) * 1'000'000);
        last = static_cast<std::int64_t>(image.info.frameNumber);
    }
}

TEST_F(UsbStreamTest, ImageOfSeveralTransfers)
{
    setInt(m_camera, "Width", 1280);
    setInt(m_camera, "Height", 1024);
    const WrongImages wrong(m_recorder);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(5));
    stop();
    EXPECT_EQ(m_recorder.images().back().info.dataSize, 1280U * 1024U);
    EXPECT_EQ(wrong.count(), 0);
}

TEST_F(UsbStreamTest, StartsAnewAsOftenAsAsked)
{
    for (int round = 0; round < 10; ++round) {
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForImages(5)) << "round " << round;
        stop();
        EXPECT_LT(m_recorder.images().front().info.frameNumber, 3U) << "the camera counts anew";
    }
    EXPECT_THAT(m_recorder.errors(), ::testing::IsEmpty());
}

// By little, so that the rest of a larger buffer would be smaller than the packet that ends an image.
TEST_F(UsbStreamTest, AnotherSizeTakesEffectAtTheNextStart)
{
    ASSERT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    setInt(m_camera, "Height", 1);
    setInt(m_camera, "Width", 1000);
    ASSERT_EQ(openStream(), CAM_API_STS_SUCCESS);
    for (const int width : {1000, 990, 1200, 1190}) {
        setInt(m_camera, "Width", width);
        m_recorder.clear();
        const WrongImages wrong(m_recorder);
        start();
        ASSERT_TRUE(m_recorder.waitForImages(10)) << width;
        stop();
        EXPECT_THAT(m_recorder.errors(), ::testing::IsEmpty());
        EXPECT_EQ(m_recorder.images().back().info.dataSize, static_cast<std::uint64_t>(width));
        EXPECT_EQ(wrong.count(), 0);
    }
}

TEST_F(UsbStreamTest, CameraSendsBetweenStartAndStopOnly)
{
    EXPECT_EQ(usb::value(usb::kStreamControl), 0U);
    for (int round = 0; round < 2; ++round) {
        start();
        EXPECT_EQ(usb::value(usb::kStreamControl), 1U);
        EXPECT_EQ(usb::value(usb::kTransportLayerLocked), 1U);
        stop();
        EXPECT_EQ(usb::value(usb::kStreamControl), 0U);
        EXPECT_EQ(usb::value(usb::kTransportLayerLocked), 0U);
    }
}

TEST_F(UsbStreamTest, LockedBufferKeepsItsBytes)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    const LockedImage image(m_stream);
    ASSERT_TRUE(m_recorder.waitForBusy(30));
    stop();
    start();
    ASSERT_TRUE(m_recorder.waitForBusy(60));
    EXPECT_EQ(image.bytes(), image.lockedBytes());
}

TEST_F(UsbStreamTest, StreamOfImpossibleSizesIsRefused)
{
    usb::setValue(usb::kStreamPayload, 0);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_GENICAM_ERR);
    usb::setValue(usb::kStreamPayload, 320 * 240);
    for (const std::uint32_t power : {21U, 255U}) {
        usb::setValue(usb::kStreamInfo, power << 24);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_GENICAM_ERR) << power;
    }
    usb::setValue(usb::kStreamInfo, 20U << 24);
    start();
    EXPECT_TRUE(m_recorder.waitForImages(3));
}

// A program that reads an image by its width and height finds zeros in what the camera does not send.
TEST_F(UsbStreamTest, ImageHasRoomForAllItsPixels)
{
    constexpr std::size_t kPixels = 320UL * 240;
    std::atomic<int> wrong{0};
    std::atomic<std::size_t> sent{kPixels};
    m_recorder.onImage = [&](const StreamRecorder::Image& image) {
        const auto* data = static_cast<const std::uint8_t*>(image.info.data);
        wrong += image.info.dataSize == sent ? 0 : 1;
        wrong += std::all_of(data + sent, data + kPixels, [](std::uint8_t byte) { return byte == 0; }) ? 0 : 1;
    };
    for (const std::size_t size : {kPixels, kPixels / 2, kPixels / 4, kPixels}) {
        sent = size;
        usb::setValue(usb::kPayloadSize, static_cast<std::uint32_t>(size));
        usb::setValue(usb::kStreamPayload, static_cast<std::uint32_t>(size));
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForImages(30)) << size;
        stop();
        EXPECT_EQ(wrong, 0) << size;
    }
}

TEST_F(UsbStreamTest, MorePixelsWithTheSamePayloadHaveRoom)
{
    constexpr std::size_t kPixels = 2000UL * 2000;
    constexpr std::size_t kSent = 320UL * 240;
    usb::setValue(usb::kWidth, 2000);
    usb::setValue(usb::kHeight, 2000);
    std::atomic<int> wrong{0};
    m_recorder.onImage = [&](const StreamRecorder::Image& image) {
        const auto* data = static_cast<const std::uint8_t*>(image.info.data);
        wrong += std::all_of(data + kSent, data + kPixels, [](std::uint8_t byte) { return byte == 0; }) ? 0 : 1;
    };
    start();
    ASSERT_TRUE(m_recorder.waitForImages(30));
    stop();
    EXPECT_EQ(wrong, 0);
}

// As cameras send them that count width x height x bits.
TEST_F(UsbStreamTest, RowsThatEndWithinAGroupHaveRoomForAllOfIt)
{
    constexpr std::size_t kSent = 641UL * 481 * 2;
    constexpr std::size_t kRead = 321UL * 4 * 481;
    usb::setValue(usb::kPixelFormat, 0x02100032); // YUV422_8
    usb::setValue(usb::kWidth, 641);
    usb::setValue(usb::kHeight, 481);
    usb::setValue(usb::kPayloadSize, kSent);
    usb::setValue(usb::kStreamPayload, kSent);
    std::atomic<int> wrong{0};
    m_recorder.onImage = [&](const StreamRecorder::Image& image) {
        const auto* data = static_cast<const std::uint8_t*>(image.info.data);
        wrong += image.info.dataSize == kSent ? 0 : 1;
        wrong += std::all_of(data + kSent, data + kRead, [](std::uint8_t byte) { return byte == 0; }) ? 0 : 1;
    };
    start();
    ASSERT_TRUE(m_recorder.waitForImages(30));
    stop();
    EXPECT_EQ(wrong, 0);
}

TEST_F(UsbStreamTest, ImageOfTooManyPixelsIsRefused)
{
    usb::setValue(usb::kWidth, 0xffffffff);
    usb::setValue(usb::kHeight, 0xffffffff);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_INVALID_PARAMETER);
    usb::setValue(usb::kHeight, 1);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_INVALID_PARAMETER);
    // Without one of them there is nothing to go by.
    usb::setValue(usb::kWidth, 0);
    start();
    EXPECT_TRUE(m_recorder.waitForImages(3));
}

namespace {

class UsbModeTest : public UsbStreamTest, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override
    {
        if (GetParam() && ::dlsym(RTLD_DEFAULT, "arv_uv_device_set_usb_mode") == nullptr)
            GTEST_SKIP() << "this version of Aravis has no asynchronous mode";
        usb::useAsynchronousMode(GetParam());
        m_transfers = usb::asynchronousTransfers();
    }

    void TearDown() override
    {
        usb::useAsynchronousMode(false);
        if (!IsSkipped()) {
            EXPECT_EQ(usb::asynchronousTransfers() > m_transfers, GetParam());
        }
    }

    int m_transfers = 0;
};

/// How many images at most came one after the other without one missing.
std::size_t longestRun(const std::vector<std::uint64_t>& numbers)
{
    std::size_t longest = 0;
    std::size_t run = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        run = i != 0 && numbers[i] == numbers[i - 1] + 1 ? run + 1 : 1;
        longest = std::max(longest, run);
    }
    return longest;
}

} // namespace

// The camera sends 200 a second. A machine that is too busy for them gets several attempts; a stream that loses one of
// a thousand by itself has none that succeeds.
TEST_P(UsbModeTest, ThousandImagesComeWithoutALoss)
{
    setInt(m_camera, "Width", 64);
    setInt(m_camera, "Height", 48);
    const WrongImages wrong(m_recorder);
    start();
    std::size_t wanted = 1000;
    do {
        ASSERT_TRUE(m_recorder.waitForImages(wanted));
        wanted += 500;
    } while (longestRun(m_recorder.numbers()) < 1000 && wanted <= 5000);
    stop();
    EXPECT_GE(longestRun(m_recorder.numbers()), 1000U);
    EXPECT_EQ(wrong.count(), 0);
}

TEST_P(UsbModeTest, StreamStartsAnew)
{
    for (int round = 0; round < 3; ++round) {
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForImages(5)) << "round " << round;
        stop();
    }
}

TEST_P(UsbModeTest, UnpluggedCameraIsLost)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::unplug();
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 30000), CAM_API_STS_SUCCESS);
    ASSERT_NO_FATAL_FAILURE(replug());
    start();
    EXPECT_TRUE(m_recorder.waitForImages(3));
}

INSTANTIATE_TEST_SUITE_P(UsbStream, UsbModeTest, ::testing::Bool(),
                         [](const auto& mode) { return mode.param ? "Asynchronous" : "Synchronous"; });
