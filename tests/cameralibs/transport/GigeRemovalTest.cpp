#include "tests/cameralibs/transport/GigeFixture.h"

#include "tests/cameralibs/api/WaitingCall.h"
#include "tests/cameralibs/devices/transport/Transports.h"

#include <chrono>
#include <csignal>
#include <thread>

using namespace Orvo;

using GigeRemovalTest = ListedGige;
using GigeRemovalOpenTest = OpenGige;
using GigeRemovalStreamingTest = StreamingGige;

namespace {

constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;

/// Above the second that closing may take; a camera that does not answer is asked for 2500 ms.
constexpr std::chrono::milliseconds kAtOnce{2000};

template <class Work> void expectWithin(std::chrono::milliseconds limit, const char* what, Work&& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, limit) << what;
}

template <class Work> void expectAtOnce(const char* what, Work&& work)
{
    expectWithin(kAtOnce, what, work);
}

} // namespace

TEST_F(GigeRemovalTest, CameraThatDiedSinceItWasListedDoesNotOpen)
{
    m_fakes.front()->kill();
    CAM_HANDLE camera = 0;
    EXPECT_EQ(open(0, &camera), kGone);
    EXPECT_EQ(camera, 0U);
    ASSERT_EQ(Sys_GetNumOfCameras(&m_count), CAM_API_STS_SUCCESS);
    EXPECT_EQ(m_count, 0U);
}

TEST_F(GigeRemovalStreamingTest, CameraLostWhileStreaming)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    m_fakes.front()->kill();
    // Nobody touches a register meanwhile. Aravis' own heartbeat takes at least 5500 ms.
    expectWithin(std::chrono::milliseconds(5000), "removal",
                 [&] { ASSERT_EQ(Sys_WaitForSignal(m_signal, 30000), CAM_API_STS_SUCCESS); });
    expectAtOnce("node", [&] {
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(m_camera, 1, &value), kGone);
    });
    std::uint32_t slot = 0;
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), kGone);
    expectAtOnce("stop", [&] { EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS); });
    expectAtOnce("close stream", [&] { EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS); });
    expectAtOnce("close camera", [&] { EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS); });
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
    expectAtOnce("terminate", [&] { EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS); });
}

TEST_F(GigeRemovalStreamingTest, CameraThatHangsForAMomentIsNotLost)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    m_fakes.front()->stop();
    // The moment itself: long enough for several unanswered questions, too short for a loss.
    std::this_thread::sleep_for(std::chrono::milliseconds(1600));
    m_fakes.front()->resume();
    m_recorder.clear();
    ASSERT_TRUE(m_recorder.waitForImages(20));
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
}

TEST_F(GigeRemovalStreamingTest, SilenceIsNoRemoval)
{
    setEntry(m_camera, "TriggerMode", "On");
    setEntry(m_camera, "TriggerSource", "Software");
    start();
    // Longer than a camera is asked that does not answer.
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 5000), CAM_API_STS_TIMEOUT);
    execute(m_camera, "TriggerSoftware");
    EXPECT_TRUE(m_recorder.waitForImages(1));
}

TEST_F(GigeRemovalStreamingTest, CameraThatHangsIsClosedAtOnce)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    m_fakes.front()->stop();
    expectAtOnce("close camera", [&] { EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS); });
}

TEST_F(GigeRemovalOpenTest, ClosingEndsAnAccessThatWaitsForTheCamera)
{
    m_fakes.front()->stop();
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    WaitingCall access([camera = m_camera, width] {
        std::int64_t value = 0;
        return Nd_GetIntValue(camera, width, &value);
    });
    expectAtOnce("close camera", [&] { EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS); });
    EXPECT_EQ(access.result(), kGone);
}

TEST_F(GigeRemovalOpenTest, SeveralCamerasThatHangAreTerminatedAtOnce)
{
    addCamera({"-i", "127.0.0.2", "-s", "B"});
    CAM_HANDLE other = 0;
    ASSERT_EQ(open(0, &other), CAM_API_STS_SUCCESS) << "the first by its serial number";
    for (const auto& fake : m_fakes)
        fake->stop();
    expectAtOnce("terminate", [&] { EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS); });
}

TEST_F(GigeRemovalTest, TerminatingEndsAnOpeningThatWaitsForTheCamera)
{
    m_fakes.front()->stop();
    WaitingCall opening([] {
        CAM_HANDLE camera = 0;
        return open(0, &camera);
    });
    expectAtOnce("terminate", [&] { EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS); });
    EXPECT_NE(opening.result(), CAM_API_STS_SUCCESS);
}

TEST_F(GigeRemovalOpenTest, RegisterAccessDetectsTheLoss)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    m_fakes.front()->kill();
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS) << "set before the status is given";
    expectAtOnce("read", [&] { EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone); });
    expectAtOnce("write", [&] { EXPECT_EQ(Nd_SetIntValue(m_camera, width, 64), kGone); });
    expectAtOnce("close", [&] { EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS); });
}

TEST_F(GigeRemovalOpenTest, ReconnectedCameraOpensAgain)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    m_fakes.clear();
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    addCamera({"-i", "127.0.0.1"});
    CAM_HANDLE again = 0;
    ASSERT_EQ(open(0, &again, m_signal), CAM_API_STS_SUCCESS) << "while the lost one is not closed yet";
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(intOf(again, "Width"), 512);
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(intOf(again, "Width"), 512);
}

// The camera has not been told to stop, and until it misses the heartbeat it refuses other programs.
TEST_F(GigeRemovalStreamingTest, KilledTransportLeavesACameraThatStreamsAgain)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    for (const pid_t transport : transports())
        ::kill(transport, SIGKILL);
    ASSERT_EQ(Sys_WaitForSignal(m_signal, 30000), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    ASSERT_TRUE(becomes([this] { return open(0, &m_camera, m_signal) == CAM_API_STS_SUCCESS; }));
    ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    m_recorder.attachTo(m_stream);
    m_recorder.clear();
    start();
    EXPECT_TRUE(m_recorder.waitForImages(3));
}
