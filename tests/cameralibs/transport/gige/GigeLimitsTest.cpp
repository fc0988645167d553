// Time limits for a camera that is slow, that sends pending acknowledgements or that does not answer at all.

#include "tests/cameralibs/transport/gige/GigeDeviceFixture.h"

#include <chrono>
#include <functional>
#include <thread>

using namespace Orvo;

namespace {

constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;

/// In milliseconds: beyond every time limit.
constexpr std::int64_t kForEver = 100'000;

/// The margin for a busy machine.
constexpr std::chrono::seconds kMargin{4};

using GigeLimitsTest = GigeDeviceTest;

CAM_API_STATUS read(CAM_HANDLE camera)
{
    std::int64_t width = 0;
    return Nd_GetIntValue(camera, nodeOf(camera, "Width"), &width);
}

// What TestPending means to the camera: pending acknowledgements now and then, or a single one that announces the
// delay.
constexpr std::int64_t kPeriodic = 1;
constexpr std::int64_t kSingle = 2;

void becomeSlow(CAM_HANDLE camera, std::int64_t delay, std::int64_t pending = kPeriodic)
{
    setInt(camera, "TestPending", pending);
    setInt(camera, "TestDelay", delay);
}

void expectWithin(std::chrono::seconds limit, CAM_API_STATUS expected, const std::function<CAM_API_STATUS()>& call)
{
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(call(), expected);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, limit + kMargin);
}

} // namespace

// In parallel, because each takes seconds. The first two cameras leave the queries of other clients unanswered.
TEST_F(GigeLimitsTest, PendingAcknowledgementsExtendAnAccessToTenSeconds)
{
    const OneMoreDevice second(1, {"--answers-to-others", "1"});
    const OneMoreDevice third(2);
    const OneMoreDevice fourth(3);
    list({"--serial", "T1", "--answers-to-others", "1"}, 4);
    std::vector<CAM_HANDLE> cameras(4);
    for (std::uint32_t i = 0; i < cameras.size(); ++i)
        ASSERT_EQ(Cam_Open(i, &cameras[i], 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    becomeSlow(cameras[0], 8'000);
    becomeSlow(cameras[1], 8'000, kSingle);
    becomeSlow(cameras[2], kForEver);
    becomeSlow(cameras[3], kForEver);
    std::vector<std::thread> threads;
    threads.emplace_back([&] { EXPECT_EQ(read(cameras[0]), CAM_API_STS_SUCCESS) << "after 8 s"; });
    threads.emplace_back([&] { EXPECT_EQ(read(cameras[1]), CAM_API_STS_SUCCESS) << "after 8 s"; });
    threads.emplace_back([&] { expectWithin(std::chrono::seconds(10), kGone, [&] { return read(cameras[2]); }); });
    threads.emplace_back([&] {
        CAM_STRM_HANDLE stream = 0;
        expectWithin(std::chrono::seconds(10), kGone,
                     [&] { return Strm_OpenSimple(cameras[3], &stream, nullptr, nullptr, 4, nullptr); });
    });
    for (std::thread& thread : threads)
        thread.join();
    // Aravis sends no heartbeat during an access, but the library still controls the camera.
    for (const CAM_HANDLE camera : {cameras[0], cameras[1]}) {
        setInt(camera, "TestDelay", 0);
        setInt(camera, "Width", 256);
    }
}

TEST_F(GigeLimitsTest, CameraThatAnswersOnlyItsControllerIsNotLost)
{
    open({"--answers-to-others", "1"});
    // Longer than the transport waits before it reports a loss.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    CAM_API_STATUS status = CAM_API_STS_SUCCESS;
    while (status == CAM_API_STS_SUCCESS && std::chrono::steady_clock::now() < end) {
        status = read(m_camera);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_EQ(status, CAM_API_STS_SUCCESS);
}

TEST_F(GigeLimitsTest, SlowCameraOpensAsLongAsItKeepsAnswering)
{
    open({"--delay", "200"});
    EXPECT_EQ(read(m_camera), CAM_API_STS_SUCCESS);
}

TEST_F(GigeLimitsTest, OpeningTimesOutIfTheCameraOnlySendsPendingAcknowledgements)
{
    list({"--delay", std::to_string(kForEver), "--pending", "yes"});
    expectWithin(std::chrono::seconds(3), kGone, [this] { return tryToOpen(); });
}

TEST_F(GigeLimitsTest, OpeningTimesOutAfterTwentySeconds)
{
    list({"--delay", "1500", "--pending", "yes"});
    expectWithin(std::chrono::seconds(20), kGone, [this] { return tryToOpen(); });
}

TEST_F(GigeLimitsTest, StoppingHasTheTimeLimitOfAnAccess)
{
    open();
    openStream();
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    setInt(m_camera, "TestDelay", kForEver);
    expectWithin(std::chrono::seconds(3), CAM_API_STS_SUCCESS, [this] { return Strm_Stop(m_stream); });
    EXPECT_EQ(Strm_Start(m_stream, 8), kGone);
}

// Pending acknowledgements do not extend this limit.
TEST_F(GigeLimitsTest, ClosingTakesAtMostASecond)
{
    const std::function<CAM_API_STATUS()> calls[] = {
        [this] { return Strm_Close(m_stream); },
        [this] { return Cam_Close(m_camera); },
        [] { return Sys_Terminate(); },
    };
    for (const auto& close : calls) {
        ASSERT_NO_FATAL_FAILURE(open());
        ASSERT_NO_FATAL_FAILURE(openStream());
        ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
        becomeSlow(m_camera, kForEver);
        expectWithin(std::chrono::seconds(1), CAM_API_STS_SUCCESS, close);
        (void)Cam_Close(m_camera);
    }
}

TEST_F(GigeLimitsTest, TimeLimitOfClosingAStreamEndsWithIt)
{
    open();
    openStream();
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    becomeSlow(m_camera, 3500);
    EXPECT_EQ(read(m_camera), CAM_API_STS_SUCCESS);
}
