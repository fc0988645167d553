#include "tests/cameralibs/transport/GigeFixture.h"

#include "tests/cameralibs/api/LockedImage.h"

#include <cstdlib>

using namespace Orvo;

using GigeStreamTest = StreamingGige;

namespace {

class GigeStreamLossyTest : public StreamingGige {
protected:
    GigeStreamLossyTest()
        : StreamingGige({"-r", "20"})
    {
    }
};

/// Turns the diagnostic log on before the library starts, and collects it.
class InfoLog {
protected:
    InfoLog()
    {
        ::setenv("ORVO_CAMERA_LOG", "info", 1); // NOLINT(concurrency-mt-unsafe)
        ::testing::internal::CaptureStderr();
    }
    ~InfoLog()
    {
        ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
        if (m_log.empty())
            readLog();
    }
    InfoLog(const InfoLog&) = delete;
    InfoLog& operator=(const InfoLog&) = delete;

    void readLog() { m_log = ::testing::internal::GetCapturedStderr(); }

    std::string m_log;
};

class GigeStreamLogTest : protected InfoLog, public GigeStreamLossyTest {};

/// The steps from each frame number to the next.
std::vector<std::uint64_t> steps(const std::vector<StreamRecorder::Image>& images)
{
    std::vector<std::uint64_t> result;
    for (std::size_t i = 1; i < images.size(); ++i)
        result.push_back(images[i].info.frameNumber - images[i - 1].info.frameNumber);
    return result;
}

} // namespace

TEST_F(GigeStreamTest, FrameNumbersKeepRisingWhenBlockIdsWrap)
{
    // The fake camera begins shortly before the highest 16-bit block id.
    start();
    ASSERT_TRUE(m_recorder.waitForImages(200));
    stop();
    const auto images = m_recorder.images();
    EXPECT_LT(images.front().info.frameNumber, 65536U);
    EXPECT_GT(images.back().info.frameNumber, 65536U);
    // A busy machine may lose some, never every other one.
    EXPECT_THAT(steps(images), ::testing::Each(::testing::Ge(1U)));
    EXPECT_LT(images.back().info.frameNumber - images.front().info.frameNumber, images.size() * 2);
    std::uint64_t lastTime = 0;
    for (const auto& image : images) {
        EXPECT_EQ(image.info.dataSize, 256U * 256U);
        EXPECT_EQ(image.info.status, 0U);
        EXPECT_GT(image.info.timestampNs, lastTime);
        lastTime = image.info.timestampNs;
    }
}

TEST_F(GigeStreamTest, StreamRestartsManyTimes)
{
    for (int round = 0; round < 5; ++round) {
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForImages(10)) << "round " << round;
        stop();
        const std::size_t atStop = m_recorder.images().size();
        EXPECT_EQ(intOf(m_camera, "Width"), 256);
        EXPECT_EQ(m_recorder.images().size(), atStop);
    }
}

TEST_F(GigeStreamTest, AnotherSizeTakesEffectAtTheNextStart)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    stop();
    for (const int width : {512, 128}) {
        setInt(m_camera, "Width", width);
        m_recorder.clear();
        start();
        ASSERT_TRUE(m_recorder.waitForImages(3));
        stop();
        EXPECT_EQ(m_recorder.images().front().info.dataSize, static_cast<std::uint64_t>(width) * 256U);
    }
}

TEST_F(GigeStreamTest, LockedBufferKeepsItsBytes)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(5));
    {
        const LockedImage image(m_stream);
        // More than there are buffers, so that each of the others is filled anew.
        ASSERT_TRUE(m_recorder.waitForBusy(30));
        EXPECT_THAT(m_recorder.busy(), ::testing::Each(image.slot()));
        EXPECT_EQ(image.bytes(), image.lockedBytes());
    }
    const std::size_t images = m_recorder.images().size();
    ASSERT_TRUE(m_recorder.waitForImages(images + 4));
}

TEST_F(GigeStreamTest, SoftwareTriggerBringsOneImage)
{
    setEntry(m_camera, "TriggerMode", "On");
    setEntry(m_camera, "TriggerSource", "Software");
    start();
    for (std::size_t i = 1; i <= 3; ++i) {
        execute(m_camera, "TriggerSoftware");
        ASSERT_TRUE(m_recorder.waitForImages(i));
        EXPECT_EQ(m_recorder.images().size(), i);
    }
}

TEST_F(GigeStreamLossyTest, IncompleteImagesAreErrorsAndNeverShown)
{
    start();
    ASSERT_TRUE(m_recorder.waitForErrors(5));
    ASSERT_TRUE(m_recorder.waitForImages(20));
    stop();
    EXPECT_THAT(m_recorder.errors(), ::testing::Each(CAM_API_STS_MISSING_PACKETS));
    EXPECT_THAT(steps(m_recorder.images()), ::testing::Each(::testing::Ge(1U)));
    EXPECT_THAT(steps(m_recorder.images()), ::testing::Contains(::testing::Gt(1U))) << "lost images count";
    for (const auto& image : m_recorder.images())
        EXPECT_EQ(image.info.dataSize, 256U * 256U);
}

TEST_F(GigeStreamLogTest, LogContainsPacketSizeAndLosses)
{
    start();
    ASSERT_TRUE(m_recorder.waitForErrors(2));
    ASSERT_TRUE(m_recorder.waitForImages(2));
    stop();
    // Lines of the transport come on a thread of their own; closing waits for the last of them.
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    readLog();
    EXPECT_THAT(m_log, ::testing::HasSubstr("info: Fake GV01: Packet size: 1400 bytes"));
    EXPECT_THAT(m_log, ::testing::ContainsRegex("warning: Fake GV01: At most [1-9][0-9]* packets are missing"));
    EXPECT_THAT(m_log, ::testing::ContainsRegex("warning: Fake GV01: stream stopped; .* [1-9][0-9]* failed"));
    EXPECT_THAT(m_log, ::testing::Not(::testing::HasSubstr("CRITICAL"))) << "what a library says of its misuse";
}
