#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/api/WaitingCall.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace Orvo;

namespace {

constexpr std::uint32_t kSlots = 4;

/// A small image at a high rate, with the callbacks recorded.
class StreamTest : public CameraTest {
public:
    ~StreamTest() override { (void)Strm_Stop(m_stream); }
    StreamTest(const StreamTest&) = delete;
    StreamTest& operator=(const StreamTest&) = delete;

protected:
    StreamTest()
    {
        setInt("Width", 64);
        setInt("Height", 64);
        EXPECT_EQ(Strm_OpenSimple(m_camera, &m_stream, &m_maxSize, nullptr, kSlots, nullptr), CAM_API_STS_SUCCESS);
        m_recorder.attachTo(m_stream);
    }

    void start() { ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS); }
    void stop() { ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS); }

    CAM_STRM_HANDLE m_stream = 0;
    std::uint32_t m_maxSize = 0;
    StreamRecorder m_recorder;
};

std::vector<std::uint8_t> bytesOf(const CAM_IMAGE_INFO& info)
{
    const auto* data = static_cast<const std::uint8_t*>(info.data);
    return {data, data + info.dataSize};
}

} // namespace

TEST_F(StreamTest, OpenReturnsThePayloadAndOnlyOneStreamCanBeOpen)
{
    EXPECT_EQ(m_maxSize, 64U * 64U);
    CAM_STRM_HANDLE second = 0;
    EXPECT_EQ(Strm_OpenSimple(m_camera, &second, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_ALREADY_OPENED);
    EXPECT_EQ(Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_ALREADY_OPENED);
    EXPECT_EQ(second, 0U);
    ASSERT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_OpenSimple(m_camera, &second, nullptr, nullptr, 0, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_OpenSimple(m_camera, &second, nullptr, nullptr, 0xFFFFFFFF, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_OpenSimple(m_camera, &second, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_SUCCESS);
    EXPECT_NE(second, m_stream);
}

TEST_F(StreamTest, ClosingTheCameraClosesItsStream)
{
    start();
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_INVALID_STREAM_HANDLE);
}

TEST_F(StreamTest, ImagesArriveWithTheirInformation)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(10));
    stop();
    std::uint64_t lastNumber = 0;
    std::uint64_t lastTime = 0;
    std::uint32_t expectedSlot = 0;
    for (const auto& image : m_recorder.images()) {
        EXPECT_EQ(image.camera, m_camera);
        EXPECT_EQ(image.stream, m_stream);
        EXPECT_EQ(image.info.frameNumber, lastNumber + 1) << "simulated cameras begin at 1 and lose nothing unasked";
        EXPECT_GT(image.info.timestampNs, lastTime);
        EXPECT_EQ(image.info.dataSize, 64U * 64U);
        EXPECT_EQ(image.info.status, 0U);
        EXPECT_NE(image.info.data, nullptr);
        EXPECT_THAT(image.info.reserved0, ::testing::Each(0));
        EXPECT_THAT(image.info.reserved16, ::testing::Each(0));
        EXPECT_THAT(image.info.reserved56, ::testing::Each(0));
        EXPECT_THAT(image.info.reserved68, ::testing::Each(0));
        EXPECT_EQ(image.slot, expectedSlot);
        expectedSlot = (expectedSlot + 1) % kSlots;
        lastNumber = image.info.frameNumber;
        lastTime = image.info.timestampNs;
    }
    EXPECT_EQ(m_recorder.overlaps(), 0);
}

TEST_F(StreamTest, SecondStartIsRefusedAndSecondStopIsNot)
{
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS) << "never started";
    start();
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_ALREADY_ACTIVATED);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    start();
}

TEST_F(StreamTest, NoCallbackAfterStopReturned)
{
    for (int round = 0; round < 20; ++round) {
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForImages(2));
        stop();
        const std::size_t atStop = m_recorder.images().size();
        EXPECT_EQ(getInt("TLParamsLocked"), 0);
        EXPECT_EQ(m_recorder.images().size(), atStop);
    }
}

TEST_F(StreamTest, StopWaitsForACallbackInProgress)
{
    std::atomic<bool> inside{false};
    std::atomic<bool> stopWaits{false};
    const auto left = std::make_shared<std::atomic<bool>>(false);
    const auto leftBeforeTheEnd = std::make_shared<std::atomic<bool>>(false);
    m_recorder.onImage = [&, done = false](const StreamRecorder::Image&) mutable {
        if (std::exchange(done, true))
            return;
        inside = true;
        EXPECT_TRUE(becomes([&] { return stopWaits.load(); }));
        *left = true;
    };
    start();
    EXPECT_TRUE(becomes([&] { return inside.load(); }));
    WaitingCall stopping([stream = m_stream, left, leftBeforeTheEnd] {
        const CAM_API_STATUS status = Strm_Stop(stream);
        *leftBeforeTheEnd = left->load();
        return status;
    });
    stopWaits = true;
    EXPECT_EQ(stopping.result(), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(*leftBeforeTheEnd);
}

TEST_F(StreamTest, CurrentBufferNeedsAnImageSinceTheStart)
{
    std::uint32_t index = 77;
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &index), CAM_API_STS_NOT_READY);
    EXPECT_EQ(index, 77U);
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, nullptr), CAM_API_STS_INVALID_PARAMETER);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(1));
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &index), CAM_API_STS_SUCCESS);
    EXPECT_LT(index, kSlots);
    stop();
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera, node("TriggerMode"), "On"), CAM_API_STS_SUCCESS);
    start();
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &index), CAM_API_STS_NOT_READY);
}

TEST_F(StreamTest, LocksCountAndNeedAFilledSlot)
{
    CAM_IMAGE_INFO info = {};
    EXPECT_EQ(Strm_LockBuffer(m_stream, 0, &info), CAM_API_STS_NOT_READY);
    EXPECT_EQ(Strm_LockBuffer(m_stream, kSlots, &info), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_LockBuffer(m_stream, 0, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, 0), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, kSlots), CAM_API_STS_INVALID_PARAMETER);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(1));
    stop();
    // Also after the stop.
    EXPECT_EQ(Strm_LockBuffer(m_stream, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.dataSize, 64U * 64U);
    EXPECT_EQ(Strm_LockBuffer(m_stream, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, 0), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(StreamTest, LockedBufferIsNotOverwrittenAndReportedAsBusy)
{
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera, node("TestPattern"), "GreyHorizontalRampMoving"), CAM_API_STS_SUCCESS);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(kSlots + 1));
    std::uint32_t slot = 0;
    ASSERT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), CAM_API_STS_SUCCESS);
    CAM_IMAGE_INFO info = {};
    ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
    const std::vector<std::uint8_t> before = bytesOf(info);
    ASSERT_TRUE(m_recorder.waitForBusy(5));
    EXPECT_THAT(m_recorder.busy(), ::testing::Each(slot));
    EXPECT_EQ(bytesOf(info), before);
    // Dropped images do not change the current buffer.
    std::uint32_t current = kSlots;
    ASSERT_EQ(Strm_GetCurrentBufferIndex(m_stream, &current), CAM_API_STS_SUCCESS);
    EXPECT_EQ(current, (slot + kSlots - 1) % kSlots);
    const std::size_t images = m_recorder.images().size();
    ASSERT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
    ASSERT_TRUE(m_recorder.waitForImages(images + 2));
    stop();
    const auto all = m_recorder.images();
    EXPECT_EQ(all[images].slot, slot) << "the slot that was locked comes next";
    EXPECT_EQ(all[images].info.frameNumber - all[images - 1].info.frameNumber, m_recorder.busy().size() + 1)
        << "dropped images are numbered, too";
}

TEST_F(StreamTest, LockSurvivesARestart)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(1));
    stop();
    CAM_IMAGE_INFO info = {};
    ASSERT_EQ(Strm_LockBuffer(m_stream, 0, &info), CAM_API_STS_SUCCESS);
    const std::vector<std::uint8_t> before = bytesOf(info);
    // Larger images need larger buffers, twice; the locked one does not change.
    for (const std::uint64_t size : {256U, 512U}) {
        setInt("Width", static_cast<std::int64_t>(size));
        setInt("Height", static_cast<std::int64_t>(size));
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForBusy(1));
        EXPECT_FALSE(m_recorder.images().empty() && size == 256) << "three slots are free";
        for (const auto& image : m_recorder.images())
            EXPECT_EQ(image.info.dataSize, size * size);
        EXPECT_EQ(bytesOf(info), before);
        if (size != 512)
            stop();
    }
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, 0), CAM_API_STS_SUCCESS);
    const std::size_t images = m_recorder.images().size();
    ASSERT_TRUE(m_recorder.waitForImages(images + std::size_t{2} * kSlots));
    EXPECT_EQ(m_recorder.images().back().info.dataSize, 512U * 512U);
}

TEST_F(StreamTest, MemoryOfSmallerImagesLivesAsLongAsTheyAreLocked)
{
    // The kernel names each memory after its purpose.
    const auto memories = [] {
        std::ifstream file("/proc/self/maps");
        int count = 0;
        for (std::string line; std::getline(file, line);)
            count += line.find("/memfd:images") == std::string::npos ? 0 : 1;
        return count;
    };
    start();
    ASSERT_TRUE(m_recorder.waitForImages(kSlots));
    stop();
    std::vector<CAM_IMAGE_INFO> locked(kSlots);
    std::vector<std::vector<std::uint8_t>> before;
    for (std::uint32_t slot = 0; slot < kSlots; ++slot) {
        ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &locked[slot]), CAM_API_STS_SUCCESS);
        before.push_back(bytesOf(locked[slot]));
    }
    EXPECT_EQ(memories(), 1);
    setInt("Width", 512);
    setInt("Height", 512);
    start();
    ASSERT_TRUE(m_recorder.waitForBusy(1));
    ASSERT_EQ(memories(), 2);
    for (std::uint32_t slot = 0; slot < kSlots; ++slot) {
        EXPECT_EQ(bytesOf(locked[slot]), before[slot]) << slot;
        EXPECT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
    }
    EXPECT_EQ(memories(), 1);
}

TEST_F(StreamTest, RemovedImageCallbackIsNotCalled)
{
    ASSERT_EQ(Strm_SetCallbackImageAcquired(m_stream, nullptr, nullptr), CAM_API_STS_SUCCESS);
    start();
    std::uint32_t index = 0;
    ASSERT_TRUE(becomes([&] { return Strm_GetCurrentBufferIndex(m_stream, &index) == CAM_API_STS_SUCCESS; }));
    stop();
    EXPECT_TRUE(m_recorder.images().empty());
}

TEST_F(StreamTest, RemovedErrorCallbackIsNotCalled)
{
    setInt("SimulationIncompleteEvery", 2);
    ASSERT_EQ(Strm_SetCallbackImageError(m_stream, nullptr, nullptr), CAM_API_STS_SUCCESS);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(5));
    stop();
    EXPECT_TRUE(m_recorder.errors().empty());
}

TEST_F(StreamTest, RemovedBusyCallbackIsNotCalled)
{
    setInt("SimulationIncompleteEvery", 2);
    ASSERT_EQ(Strm_SetCallbackBufferBusy(m_stream, nullptr, nullptr), CAM_API_STS_SUCCESS);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(kSlots));
    CAM_IMAGE_INFO info = {};
    for (std::uint32_t slot = 0; slot < kSlots; ++slot)
        ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
    // Between two errors there is an image, for which no slot is free.
    ASSERT_TRUE(m_recorder.waitForErrors(m_recorder.errors().size() + 5));
    stop();
    EXPECT_TRUE(m_recorder.busy().empty());
}

TEST_F(StreamTest, LostAndIncompleteImagesDoNotUseASlot)
{
    setInt("SimulationLoseEvery", 3);
    setInt("SimulationIncompleteEvery", 2);
    start();
    ASSERT_TRUE(m_recorder.waitForErrors(6));
    stop();
    // Of images 1 to 6, 1 and 5 arrive, 3 and 6 are lost, 2 and 4 are incomplete.
    const auto images = m_recorder.images();
    for (std::size_t i = 0; i < images.size(); ++i) {
        EXPECT_EQ(images[i].info.frameNumber, i / 2 * 6 + (i % 2 == 0 ? 1 : 5));
        EXPECT_EQ(images[i].slot, i % kSlots);
    }
    const auto slots = m_recorder.errorSlots();
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], (i / 2 * 2 + 1) % kSlots) << "the slot of the image that would have been next";
    EXPECT_THAT(m_recorder.errors(), ::testing::Each(CAM_API_STS_MISSING_PACKETS));
}

TEST_F(StreamTest, ImagesLargerThanTheirBuffersAreErrors)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(1));
    setInt("TLParamsLocked", 0);
    setInt("Width", 128);
    ASSERT_TRUE(m_recorder.waitForErrors(1));
    const std::size_t images = m_recorder.images().size();
    ASSERT_TRUE(m_recorder.waitForErrors(10));
    EXPECT_EQ(m_recorder.images().size(), images);
    EXPECT_THAT(m_recorder.errors(), ::testing::Each(CAM_API_STS_BUFFER_FULL));
    for (const auto& image : m_recorder.images())
        EXPECT_EQ(image.info.dataSize, 64U * 64U);
    setInt("Width", 64);
    EXPECT_TRUE(m_recorder.waitForImages(images + 5));
}

TEST_F(StreamTest, UnpluggedWhileStreaming)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(2));
    std::uint32_t slot = 0;
    CAM_IMAGE_INFO info = {};
    ASSERT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
    unplug();
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    const std::size_t images = m_recorder.images().size();
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(m_recorder.images().size(), images);
}

TEST_F(StreamTest, HandlesOfOtherKindsAreRefused)
{
    EXPECT_EQ(Strm_Start(m_camera, 8), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_Stop(m_signal), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_Close(0), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Cam_Close(m_stream), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Sys_CloseSignal(m_camera), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(Strm_OpenSimple(m_stream, nullptr, nullptr, nullptr, 8, nullptr), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Strm_LockBuffer(m_camera, 99, nullptr), CAM_API_STS_INVALID_STREAM_HANDLE);
}
