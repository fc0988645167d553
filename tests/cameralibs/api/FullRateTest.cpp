#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include <numeric>
#include <thread>

using namespace Orvo;

namespace {

constexpr std::uint32_t kSlots = 3;

/// Images at the full size and rate of the first camera, all different.
class FullRateTest : public CameraTest {
protected:
    FullRateTest()
    {
        EXPECT_EQ(Nd_SetEnumStrValue(m_camera, node("TestPattern"), "GreyHorizontalRampMoving"), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Nd_SetFloatValue(m_camera, node("ExposureTime"), 100.0), CAM_API_STS_SUCCESS);
        double rate = 0;
        EXPECT_EQ(Nd_GetFloatMax(m_camera, node("AcquisitionFrameRate"), &rate), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Nd_SetFloatValue(m_camera, node("AcquisitionFrameRate"), rate), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_SUCCESS);
        m_recorder.attachTo(m_stream);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(m_recorder.waitForImages(kSlots));
    }
    ~FullRateTest() override { (void)Strm_Stop(m_stream); }

    CAM_STRM_HANDLE m_stream = 0;
    StreamRecorder m_recorder;
};

std::uint64_t sumOf(const CAM_IMAGE_INFO& info)
{
    const auto* data = static_cast<const std::uint8_t*>(info.data);
    // The position is part of the sum, so that moved bytes are detected.
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < info.dataSize; ++i)
        sum = sum * 31 + data[i];
    return sum;
}

} // namespace

TEST_F(FullRateTest, BytesUnderALockDoNotChange)
{
    for (int round = 0; round < 20; ++round) {
        std::uint32_t slot = 0;
        ASSERT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), CAM_API_STS_SUCCESS);
        CAM_IMAGE_INFO info = {};
        ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
        const std::uint64_t atLock = sumOf(info);
        // Once round the ring, up to the locked slot, where a few images are dropped.
        ASSERT_TRUE(m_recorder.waitForBusy(m_recorder.busy().size() + 3));
        EXPECT_EQ(sumOf(info), atLock) << "round " << round;
        ASSERT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
        ASSERT_TRUE(m_recorder.waitForImages(m_recorder.images().size() + 2));
    }
    const auto images = m_recorder.images();
    for (std::size_t i = 1; i < images.size(); ++i)
        ASSERT_GT(images[i].info.frameNumber, images[i - 1].info.frameNumber);
    EXPECT_EQ(m_recorder.overlaps(), 0);
    EXPECT_TRUE(m_recorder.errors().empty());
}

TEST_F(FullRateTest, SlotsLockedFromSeveralThreadsStayApart)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 15; ++round) {
                std::uint32_t slot = 0;
                CAM_IMAGE_INFO info = {};
                ASSERT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), CAM_API_STS_SUCCESS);
                ASSERT_EQ(Strm_LockBuffer(m_stream, slot, &info), CAM_API_STS_SUCCESS);
                const std::uint64_t atLock = sumOf(info);
                // The camera continues with the other slots, or drops images while all are locked.
                const auto delivered = [&] { return m_recorder.imageCount() + m_recorder.busy().size(); };
                EXPECT_TRUE(becomes([&, before = delivered()] { return delivered() > before + 1; }));
                EXPECT_EQ(sumOf(info), atLock);
                ASSERT_EQ(Strm_UnlockBuffer(m_stream, slot), CAM_API_STS_SUCCESS);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(m_recorder.waitForImages(m_recorder.images().size() + kSlots)) << "no slot stays locked";
}
