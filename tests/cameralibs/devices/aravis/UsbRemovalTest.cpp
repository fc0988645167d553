#include "HeldUpNews.h"
#include "UsbFixture.h"

#include <chrono>
#include <ctime>
#include <functional>
#include <thread>

using namespace Orvo;

using UsbRemovalTest = StreamingUsb;
using UsbRemovalOpenTest = OpenUsb;

namespace {

constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;
constexpr std::uint32_t kPatienceMs = 30000;

/// The ways in which a program leaves a camera that is gone.
struct Leaving {
    const char* name;
    std::function<void(CAM_HANDLE, CAM_STRM_HANDLE)> leave;
};

const Leaving kLeavings[] = {
    {"camera", [](CAM_HANDLE camera, CAM_STRM_HANDLE) { EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS); }},
    {"step by step",
     [](CAM_HANDLE camera, CAM_STRM_HANDLE stream) {
         EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
         EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
         EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
     }},
    {"as a viewer does",
     [](CAM_HANDLE camera, CAM_STRM_HANDLE stream) {
         std::uint32_t slot = 0;
         EXPECT_EQ(Strm_GetCurrentBufferIndex(stream, &slot), kGone);
         EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
         EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
         EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
         EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
     }},
};

/// The share of a processor that the process takes while it has nothing to do.
double idleLoad()
{
    const std::clock_t begin = std::clock();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC / 0.5;
}

/// Far above what waiting takes, far below what is left on a busy machine for a thread that spins.
constexpr double kIdle = 0.1;

/// A thread that spins may take a moment until it is ended.
bool becomesIdle()
{
    return becomes([] { return idleLoad() < kIdle; });
}

} // namespace

TEST_F(UsbRemovalTest, CameraUnpluggedWhileStreaming)
{
    for (int round = 0; round < 30; ++round) {
        const Leaving& leaving = kLeavings[static_cast<std::size_t>(round) % std::size(kLeavings)];
        SCOPED_TRACE(leaving.name);
        start();
        ASSERT_TRUE(m_recorder.waitForImages(3));
        usb::unplug();
        ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
        std::thread([&] { leaving.leave(m_camera, m_stream); }).join();
        EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(replug());
    }
}

// The thread that tells of it is the device's own: it must neither find the device gone nor be the last to hold it.
TEST_F(UsbRemovalOpenTest, ClosedAtAnyMomentOfTheNews)
{
    bool held = true;
    int moment = 0;
    while (held) {
        HeldUpNews news(++moment);
        usb::unplug();
        held = news.waitForMoment();
        std::thread closing([&] { EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS); });
        // Enough for closing, or to come to where it waits for the news.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        news.goOn();
        closing.join();
        news.waitUntilTold();
        ASSERT_NO_FATAL_FAILURE(replug());
    }
    EXPECT_GT(moment, 2);
}

TEST_F(UsbRemovalOpenTest, NewsOfACameraThatWasFoundGoneIsNotTakenForAnothers)
{
    bool held = true;
    for (int moment = 1; held; ++moment) {
        HeldUpNews news(moment);
        const CAM_HANDLE gone = m_camera;
        const CAM_NODE_HANDLE width = nodeOf(gone, "Width");
        usb::unplug();
        held = news.waitForMoment();
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(gone, width, &value), kGone);
        EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(replug());
        news.goOn();
        news.waitUntilTold();
        EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT) << moment;
        EXPECT_EQ(Cam_Close(gone), CAM_API_STS_SUCCESS);
    }
}

TEST_F(UsbRemovalTest, EveryOperationTellsThatTheCameraIsGone)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    EXPECT_EQ(Nd_SetIntValue(m_camera, width, 64), kGone);
    std::uint32_t slot = 0;
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &slot), kGone);
    EXPECT_EQ(Strm_Start(m_stream, 8), kGone);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(m_stream, 8), kGone);
}

TEST_F(UsbRemovalTest, TransferFindsOutThatTheCameraIsGone)
{
    usb::announceRemoval(false);
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::unplug();
    EXPECT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
}

TEST_F(UsbRemovalOpenTest, RegisterAccessFindsOutThatTheCameraIsGone)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    usb::announceRemoval(false);
    usb::unplug();
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS) << "set before the status is given";
}

TEST_F(UsbRemovalTest, UnpluggedBeforeItStartedKeepsNobodyBusy)
{
    usb::unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}

TEST_F(UsbRemovalTest, UnpluggedWhileStoppedKeepsNobodyBusy)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    stop();
    usb::unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}

TEST_F(UsbRemovalTest, UnpluggedWhileStreamingKeepsNobodyBusy)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomesIdle());
}

TEST_F(UsbRemovalTest, CameraThatIsBackOpensBesideTheLostOne)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
    const CAM_HANDLE lost = m_camera;
    ASSERT_NO_FATAL_FAILURE(replug());
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    start();
    EXPECT_TRUE(m_recorder.waitForImages(3));
    EXPECT_EQ(Cam_Close(lost), CAM_API_STS_SUCCESS);
    const std::size_t images = m_recorder.images().size();
    EXPECT_TRUE(m_recorder.waitForImages(images + 3));
}

// What a stream is made of is computed from registers. Where nobody can read them any more, none is made; only the
// camera's own is switched off, as far as that goes.
TEST_F(UsbRemovalTest, CameraThatFellSilentIsAskedForNothingMore)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::answerCommands(false);
    std::int64_t value = 0;
    int before = usb::commands();
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    const int attempts = usb::commands() - before;
    before = usb::commands();
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_LE(usb::commands() - before, 3 * attempts);
}

TEST_F(UsbRemovalTest, CameraUnpluggedAtAnyMomentOfAStart)
{
    CAM_API_STATUS status = kGone;
    int moments = 0;
    while (status == kGone) {
        usb::unplugAtCommand(++moments);
        // A thread of its own, where nothing lies about of earlier calls.
        std::thread([&] { status = Strm_Start(m_stream, 8); }).join();
        if (status == kGone) {
            EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS) << moments;
            EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
            ASSERT_NO_FATAL_FAILURE(replug());
        }
    }
    EXPECT_EQ(status, CAM_API_STS_SUCCESS);
    EXPECT_GT(moments, 10);
}
