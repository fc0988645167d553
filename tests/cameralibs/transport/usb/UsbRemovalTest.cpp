#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include <functional>
#include <thread>

using namespace Orvo;

using UsbRemovalTest = StreamingUsb;
using UsbRemovalOpenTest = OpenUsb;
using UsbRemovalListedTest = ListedUsb;

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

TEST_F(UsbRemovalOpenTest, AnnouncedRemovalIsNoticedWhileIdle)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    const int before = usb::commands();
    usb::unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, kPatienceMs), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    EXPECT_EQ(Nd_SetIntValue(m_camera, width, 64), kGone);
    EXPECT_EQ(openStream(), kGone);
    EXPECT_EQ(usb::commands(), before) << "a lost camera is not asked";
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    replug();
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

TEST_F(UsbRemovalListedTest, CameraUnpluggedAtEachCommandOfOpening)
{
    CAM_API_STATUS status = kGone;
    int command = 0;
    while (status != CAM_API_STS_SUCCESS) {
        usb::unplugAtCommand(++command);
        CAM_HANDLE camera = 0;
        status = open(&camera);
        usb::unplugAtCommand(0);
        if (status == CAM_API_STS_SUCCESS)
            break;
        EXPECT_EQ(status, kGone) << "command " << command;
        usb::plugIn();
        ASSERT_EQ(enumerate(), 1U) << "command " << command;
        ASSERT_EQ(open(&camera), CAM_API_STS_SUCCESS) << "command " << command;
        ASSERT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
    }
    EXPECT_GT(command, 10);
}
