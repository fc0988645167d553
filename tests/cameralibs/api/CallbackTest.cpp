#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/api/WaitingCall.h"

#include <array>
#include <atomic>
#include <thread>

using namespace Orvo;

namespace {

constexpr std::uint32_t kSlots = 4;

/// Two cameras. The first one streams small images, and the tests use its callbacks.
class CallbackTest : public CameraTest {
public:
    ~CallbackTest() override { (void)Strm_Stop(m_stream); }
    CallbackTest(const CallbackTest&) = delete;
    CallbackTest& operator=(const CallbackTest&) = delete;

protected:
    CallbackTest()
        : CameraTest("2")
    {
        setInt("Width", 64);
        setInt("Height", 64);
        EXPECT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_SUCCESS);
        m_recorder.attachTo(m_stream);
    }

    /// Runs `work` once, inside the first callback.
    template <class Work> void insideFirstImage(Work&& work)
    {
        m_recorder.onImage = [done = false, work](const StreamRecorder::Image&) mutable {
            if (!std::exchange(done, true))
                work();
        };
        ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
        ASSERT_TRUE(m_recorder.waitForImages(2));
        ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    }

    CAM_STRM_HANDLE m_stream = 0;
    StreamRecorder m_recorder;
};

void expectRefusals(CAM_HANDLE camera, CAM_STRM_HANDLE stream)
{
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_Close(stream), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Cam_Close(camera), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_INVALID_PARAMETER);
    // Handles are checked first.
    EXPECT_EQ(Strm_Stop(camera), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Cam_Close(stream), CAM_API_STS_INVALID_CAMERA_HANDLE);
}

} // namespace

TEST_F(CallbackTest, FourOperationsAreRefused)
{
    insideFirstImage([&] { expectRefusals(m_camera, m_stream); });
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS) << "the refused operations had no effect";
}

TEST_F(CallbackTest, FourOperationsAreRefusedInTheOtherCallbacksToo)
{
    struct Context {
        CAM_HANDLE camera;
        CAM_STRM_HANDLE stream;
        std::atomic<int> errors{0};
        std::atomic<int> busy{0};
    } context{m_camera, m_stream};
    const auto onError = [](CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void* data) {
        auto& seen = *static_cast<Context*>(data);
        if (seen.errors == 0)
            expectRefusals(seen.camera, seen.stream);
        ++seen.errors;
    };
    const auto onBusy = [](CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, void* data) {
        auto& seen = *static_cast<Context*>(data);
        if (seen.busy == 0)
            expectRefusals(seen.camera, seen.stream);
        ++seen.busy;
    };
    ASSERT_EQ(Strm_SetCallbackImageError(m_stream, &context, onError), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_SetCallbackBufferBusy(m_stream, &context, onBusy), CAM_API_STS_SUCCESS);
    setInt("SimulationIncompleteEvery", 3);
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    ASSERT_TRUE(m_recorder.waitForImages(1));
    CAM_IMAGE_INFO info = {};
    ASSERT_EQ(Strm_LockBuffer(m_stream, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomes([&] { return context.errors > 0 && context.busy > 0; }));
    ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}

TEST_F(CallbackTest, EveryOtherOperationWorks)
{
    CAM_HANDLE second = 0;
    CAM_STRM_HANDLE secondStream = 0;
    insideFirstImage([&] {
        constexpr CAM_API_STATUS kOk = CAM_API_STS_SUCCESS;
        EXPECT_EQ(Sys_Initialize(65535), CAM_API_STS_ALREADY_INITIALIZED);
        CAM_SYSTEM_INFO systemInfo = {};
        EXPECT_EQ(Sys_GetInformation(&systemInfo), kOk);
        std::uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), kOk);
        EXPECT_EQ(count, 2U);
        CAM_SIGNAL_HANDLE signal = 0;
        EXPECT_EQ(Sys_CreateSignal(&signal), kOk);
        EXPECT_EQ(Sys_WaitForSignal(signal, 1), CAM_API_STS_TIMEOUT);
        CAM_INFO info = {};
        EXPECT_EQ(Cam_GetInformation(m_camera, 0, &info), kOk);
        EXPECT_EQ(Cam_Open(1, &second, signal, 1, nullptr, 1), kOk);
        EXPECT_EQ(Sys_CloseSignal(signal), kOk);
        const char* text = nullptr;
        EXPECT_EQ(Misc_GetLastGenICamError(&text), kOk);

        CAM_STRM_HANDLE stream = 0;
        EXPECT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_ALREADY_OPENED);
        EXPECT_EQ(Strm_OpenSimple(second, &secondStream, nullptr, nullptr, 4, nullptr), kOk);
        EXPECT_EQ(Strm_SetCallbackImageAcquired(secondStream, nullptr, nullptr), kOk);
        EXPECT_EQ(Strm_SetCallbackImageError(secondStream, nullptr, nullptr), kOk);
        EXPECT_EQ(Strm_SetCallbackBufferBusy(secondStream, nullptr, nullptr), kOk);
        EXPECT_EQ(Strm_Start(secondStream, 8), kOk);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_ALREADY_ACTIVATED);
        std::uint32_t index = kSlots;
        EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &index), kOk);
        EXPECT_EQ(index, 0U);
        CAM_IMAGE_INFO image = {};
        EXPECT_EQ(Strm_LockBuffer(m_stream, index, &image), kOk);
        EXPECT_EQ(Strm_UnlockBuffer(m_stream, index), kOk);

        EXPECT_EQ(intOf(m_camera, "Width"), 64);
        EXPECT_EQ(Nd_SetFloatValue(m_camera, node("ExposureTime"), 100.0), kOk);
        EXPECT_EQ(Nd_SetStrValue(m_camera, node("DeviceUserID"), "inside"), kOk);
        EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, node("DeviceUserID")), "inside");
        EXPECT_EQ(Nd_SetEnumStrValue(m_camera, node("TriggerMode"), "Off"), kOk);
        execute("TimestampLatch");
    });
    EXPECT_EQ(Strm_Close(secondStream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(second), CAM_API_STS_SUCCESS);
}

TEST_F(CallbackTest, StopDoesNotWaitForACallbackThatWaitsForIt)
{
    // Operations in a callback must not wait for another thread's Strm_Stop.
    std::atomic<bool> entered{false};
    std::atomic<bool> stopWaits{false};
    m_recorder.onImage = [&, done = false](const StreamRecorder::Image&) mutable {
        if (std::exchange(done, true))
            return;
        entered = true;
        EXPECT_TRUE(becomes([&] { return stopWaits.load(); }));
        EXPECT_EQ(intOf(m_camera, "Width"), 64);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_ALREADY_ACTIVATED);
        EXPECT_EQ(Strm_SetCallbackBufferBusy(m_stream, nullptr, nullptr), CAM_API_STS_SUCCESS);
        CAM_STRM_HANDLE stream = 0;
        EXPECT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_ALREADY_OPENED);
    };
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomes([&] { return entered.load(); }));
    WaitingCall stop([stream = m_stream] { return Strm_Stop(stream); });
    stopWaits = true;
    EXPECT_EQ(stop.result(), CAM_API_STS_SUCCESS);
}

TEST_F(CallbackTest, CloseAndTerminateWaitForCallbacksThatCallTheLibrary)
{
    for (const bool terminate : {false, true}) {
        std::atomic<bool> entered{false};
        std::atomic<bool> left{false};
        m_recorder.onImage = [&, done = false](const StreamRecorder::Image&) mutable {
            if (std::exchange(done, true))
                return;
            entered = true;
            for (int i = 0; i < 50; ++i) {
                // Any status is fine, but no call may block.
                std::int64_t value = 0;
                CAM_NODE_HANDLE handle = 0;
                std::uint32_t count = 0;
                (void)Nd_GetNode(m_camera, "Width", &handle);
                (void)Nd_GetIntValue(m_camera, handle, &value);
                (void)Sys_GetNumOfCameras(&count);
                (void)Sys_Initialize(CAM_LAYER_SIMULATED);
            }
            left = true;
        };
        ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(becomes([&] { return entered.load(); }));
        EXPECT_EQ(terminate ? Sys_Terminate() : Cam_Close(m_camera), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(left);
        if (!terminate) {
            m_recorder.onImage = nullptr;
            ASSERT_EQ(Cam_Open(0, &m_camera, m_signal, 1, nullptr, 1), CAM_API_STS_SUCCESS);
            ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, kSlots, nullptr), CAM_API_STS_SUCCESS);
            m_recorder.attachTo(m_stream);
        }
    }
}

TEST_F(CallbackTest, CameraIsUnpluggedInACallback)
{
    m_recorder.onImage = [&](const StreamRecorder::Image&) { (void)Nd_CmdExecute(m_camera, node("SimulationUnplug")); };
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_WaitForSignal(m_signal, 60000), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}

TEST_F(CallbackTest, ManyThreadsStartAndStop)
{
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int round = 0; round < 25; ++round) {
                const CAM_API_STATUS started = Strm_Start(m_stream, 8);
                EXPECT_TRUE(started == CAM_API_STS_SUCCESS || started == CAM_API_STS_ALREADY_ACTIVATED) << started;
                EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    m_recorder.clear();
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(m_recorder.waitForImages(3));
    EXPECT_EQ(m_recorder.overlaps(), 0);
}
