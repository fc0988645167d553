// The transport of a GigE Vision camera is killed, crashes or hangs in each step of a session. The program sees a
// camera that was unplugged, and can use it again as soon as the camera has missed the heartbeat.

#include "tests/cameralibs/transport/gige/GigeDeviceFixture.h"

#include "tests/cameralibs/api/WaitingCall.h"
#include "tests/cameralibs/devices/transport/Transports.h"

#include <array>
#include <csignal>
#include <deque>

using namespace Orvo;

namespace {

constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;

/// Longer than the signal takes to be sent, and shorter than anything waits for the camera.
constexpr std::int64_t kDelayMs = 4000;

struct Step {
    const char* name;
    bool streams; ///< the stream is started
    CAM_API_STATUS status;
    CAM_API_STATUS (*call)(CAM_HANDLE camera, CAM_STRM_HANDLE stream);
};

const Step kSteps[] = {
    {"reading", false, kGone,
     [](CAM_HANDLE camera, CAM_STRM_HANDLE) {
         std::int64_t width = 0;
         return Nd_GetIntValue(camera, nodeOf(camera, "Width"), &width);
     }},
    {"writing", false, kGone,
     [](CAM_HANDLE camera, CAM_STRM_HANDLE) { return Nd_SetIntValue(camera, nodeOf(camera, "Width"), 64, false); }},
    {"starting", false, kGone, [](CAM_HANDLE, CAM_STRM_HANDLE stream) { return Strm_Start(stream, 4); }},
    {"receiving images", true, CAM_API_STS_SUCCESS, nullptr},
    {"stopping", true, CAM_API_STS_SUCCESS, [](CAM_HANDLE, CAM_STRM_HANDLE stream) { return Strm_Stop(stream); }},
    {"closing the stream", true, CAM_API_STS_SUCCESS,
     [](CAM_HANDLE, CAM_STRM_HANDLE stream) { return Strm_Close(stream); }},
    {"closing the camera", true, CAM_API_STS_SUCCESS,
     [](CAM_HANDLE camera, CAM_STRM_HANDLE) { return Cam_Close(camera); }},
};
constexpr std::uint32_t kCount = std::size(kSteps);

/// A camera in one of the steps.
struct Used {
    CAM_SIGNAL_HANDLE signal = 0;
    CAM_HANDLE camera = 0;
    CAM_STRM_HANDLE stream = 0;
    StreamRecorder recorder;
    std::unique_ptr<WaitingCall> call;
};

class GigeTransportDeathTest : public GigeDeviceTest, public ::testing::WithParamInterface<int> {
protected:
    static void signalTransports()
    {
        for (const pid_t transport : transports())
            ::kill(transport, GetParam());
    }

    static void expectImages(Used& used, std::uint32_t index)
    {
        ASSERT_TRUE(
            becomes([&] { return Cam_Open(index, &used.camera, used.signal, 1, nullptr, 1) == CAM_API_STS_SUCCESS; }));
        EXPECT_EQ(intOf(used.camera, "TLParamsLocked"), 0);
        ASSERT_EQ(Strm_OpenSimple(used.camera, &used.stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        used.recorder.attachTo(used.stream);
        used.recorder.clear();
        ASSERT_EQ(Strm_Start(used.stream, 4), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(used.recorder.waitForImages(2));
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    By, GigeTransportDeathTest, ::testing::Values(SIGKILL, SIGSEGV, SIGSTOP), [](const auto& signal) {
        return std::string(signal.param == SIGKILL ? "Kill" : signal.param == SIGSEGV ? "Crash" : "Stop");
    });

TEST_P(GigeTransportDeathTest, WhileListing)
{
    list();
    std::uint32_t count = 1;
    WaitingCall listing([&] { return Sys_GetNumOfCameras(&count); });
    ASSERT_TRUE(becomes([] { return !transports().empty(); }));
    signalTransports();
    EXPECT_EQ(listing.result(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(count, 0U);
    ASSERT_TRUE(becomes([&] { return Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count == 1; }));
    EXPECT_EQ(tryToOpen(), CAM_API_STS_SUCCESS);
}

TEST_P(GigeTransportDeathTest, WhileOpening)
{
    list({"--delay", "100"});
    WaitingCall opening([this] { return tryToOpen(); });
    ASSERT_TRUE(becomes([] { return !transports().empty(); }));
    signalTransports();
    EXPECT_EQ(opening.result(), kGone);
    EXPECT_TRUE(becomes([this] { return tryToOpen() == CAM_API_STS_SUCCESS; }));
}

// One camera for each step, side by side.
TEST_P(GigeTransportDeathTest, OnceTheCameraIsOpen)
{
    std::deque<OneMoreDevice> devices;
    for (std::uint32_t i = 1; i < kCount; ++i)
        devices.emplace_back(i);
    list({"--serial", "T1"}, kCount);
    std::array<Used, kCount> all;
    for (std::uint32_t i = 0; i < kCount; ++i) {
        Used& used = all[i];
        ASSERT_EQ(Sys_CreateSignal(&used.signal), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Cam_Open(i, &used.camera, used.signal, 1, nullptr, 1), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Strm_OpenSimple(used.camera, &used.stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        used.recorder.attachTo(used.stream);
        if (!kSteps[i].streams)
            continue;
        ASSERT_EQ(Strm_Start(used.stream, 4), CAM_API_STS_SUCCESS);
        ASSERT_TRUE(used.recorder.waitForImages(2));
    }
    for (std::uint32_t i = 0; i < kCount; ++i) {
        if (kSteps[i].call == nullptr)
            continue;
        setInt(all[i].camera, "TestDelay", kDelayMs);
        all[i].call = std::make_unique<WaitingCall>(
            [&step = kSteps[i], &used = all[i]] { return step.call(used.camera, used.stream); });
    }
    signalTransports();
    for (std::uint32_t i = 0; i < kCount; ++i) {
        SCOPED_TRACE(kSteps[i].name);
        Used& used = all[i];
        if (used.call != nullptr) {
            EXPECT_EQ(used.call->result(), kSteps[i].status);
        }
        if (kSteps[i].call == nullptr || kSteps[i].status == kGone) {
            EXPECT_EQ(Sys_WaitForSignal(used.signal, 30'000), CAM_API_STS_SUCCESS);
            std::int64_t value = 0;
            EXPECT_EQ(Nd_GetIntValue(used.camera, 1, &value), kGone);
        }
        (void)Cam_Close(used.camera);
    }
    for (std::uint32_t i = 0; i < kCount; ++i) {
        SCOPED_TRACE(kSteps[i].name);
        ASSERT_NO_FATAL_FAILURE(expectImages(all[i], i));
    }
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(transports().empty());
}
