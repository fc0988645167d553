// One thread closes objects while another one uses them.

#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include "tests/cameralibs/devices/DescriptionText.h"

#include <atomic>
#include <functional>
#include <future>
#include <iterator>
#include <thread>
#include <utility>
#include <vector>

using namespace Orvo;
using ::testing::AnyOf;

namespace {

constexpr int kRounds = 25;
constexpr std::uint32_t kManyBuffers = 1024; ///< opening a stream with so many takes a while

/// A camera that opens fast. Its images are small, but the buffers are large and take time to allocate.
std::string smallCamera()
{
    const std::string size = "<Value>64</Value><Min>64</Min><Max>64</Max>";
    return descriptionOf("Small", "Width Height PayloadSize AcquisitionFrameRate",
                         "<Integer Name=\"Width\">" + size + "</Integer><Integer Name=\"Height\">" + size +
                             "</Integer><Integer Name=\"PayloadSize\"><Value>200000</Value></Integer>"
                             "<Float Name=\"AcquisitionFrameRate\"><Value>200</Value></Float>");
}

class DescribedSystem {
protected:
    const DescriptionFile m_file{smallCamera()};
};

class ClosingTest : private DescribedSystem, public SystemTest {
protected:
    ClosingTest()
        : SystemTest("0," + m_file.path())
    {
    }

    void openCamera() { ASSERT_EQ(Cam_Open(0, &m_camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS); }
    void openStream()
    {
        ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        m_recorder.attachTo(m_stream);
    }

    void initialize()
    {
        ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
    }

    /// Waits until the camera's handle is invalid.
    [[nodiscard]] bool handleDies() const
    {
        CAM_NODE_HANDLE root = 0;
        return becomes([&] { return Nd_GetNode(m_camera, "Root", &root) != CAM_API_STS_SUCCESS; });
    }

    /// Strm_Close on another thread. It has invalidated the stream's handle and waits for a callback, which returns
    /// once the camera's handle is invalid, too.
    [[nodiscard]] std::future<CAM_API_STATUS> startAndCloseStream()
    {
        m_recorder.onImage = [this](const StreamRecorder::Image&) { EXPECT_TRUE(handleDies()); };
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
        const auto answers = [this](CAM_API_STATUS status) {
            std::uint32_t index = 0;
            return Strm_GetCurrentBufferIndex(m_stream, &index) == status;
        };
        EXPECT_TRUE(becomes([&] { return answers(CAM_API_STS_SUCCESS); }));
        auto closing = std::async(std::launch::async, [this] { return Strm_Close(m_stream); });
        EXPECT_TRUE(becomes([&] { return answers(CAM_API_STS_INVALID_STREAM_HANDLE); }));
        return closing;
    }

    CAM_HANDLE m_camera = 0;
    CAM_STRM_HANDLE m_stream = 0;
    StreamRecorder m_recorder;
};

/// Starts both at the same time on two threads and returns their results.
template <class First, class Second> std::pair<CAM_API_STATUS, CAM_API_STATUS> together(First&& first, Second&& second)
{
    std::atomic<int> ready{0};
    const auto meet = [&] {
        ++ready;
        EXPECT_TRUE(becomes([&] { return ready == 2; }));
    };
    auto other = std::async(std::launch::async, [&] {
        meet();
        return first();
    });
    meet();
    const CAM_API_STATUS result = second();
    return {other.get(), result};
}

} // namespace

TEST_F(ClosingTest, TwoThreadsCloseAStreamOnce)
{
    for (int round = 0; round < kRounds; ++round) {
        openCamera();
        openStream();
        auto closing = startAndCloseStream();
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
        EXPECT_EQ(closing.get(), CAM_API_STS_SUCCESS);
    }
}

TEST_F(ClosingTest, AStreamIsClosedDuringTermination)
{
    for (int round = 0; round < kRounds; ++round) {
        openCamera();
        openStream();
        auto closing = startAndCloseStream();
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        EXPECT_EQ(closing.get(), CAM_API_STS_SUCCESS);
        initialize();
    }
}

TEST_F(ClosingTest, TerminationWaitsForTheLastCameraToClose)
{
    openCamera();
    openStream();
    std::atomic<bool> entered{false};
    std::atomic<bool> left{false};
    m_recorder.onImage = [&, done = false](const StreamRecorder::Image&) mutable {
        if (std::exchange(done, true))
            return;
        entered = true;
        std::uint32_t count = 0;
        EXPECT_TRUE(becomes([&] { return Sys_GetNumOfCameras(&count) != CAM_API_STS_SUCCESS; }));
        // Keeps closing for a while, in which termination must not return.
        for (int i = 0; i < 1000; ++i)
            std::this_thread::yield();
        left = true;
    };
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomes([&] { return entered.load(); }));
    auto closing = std::async(std::launch::async, [this] { return Cam_Close(m_camera); });
    EXPECT_TRUE(handleDies());
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(left);
    EXPECT_EQ(closing.get(), CAM_API_STS_SUCCESS);
}

TEST_F(ClosingTest, NoStreamOutlivesItsCamera)
{
    for (int round = 0; round < kRounds; ++round) {
        openCamera();
        CAM_STRM_HANDLE stream = 0;
        std::atomic<bool> done{false};
        auto opening = std::async(std::launch::async, [&] {
            const CAM_API_STATUS status = Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, kManyBuffers, nullptr);
            done = true;
            return status;
        });
        // As soon as the camera has a stream, the other thread is about to allocate the buffers.
        EXPECT_TRUE(becomes([&] {
            return done ||
                   Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, 1, nullptr) == CAM_API_STS_ALREADY_OPENED;
        }));
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
        const CAM_API_STATUS status = opening.get();
        EXPECT_THAT(status, AnyOf(CAM_API_STS_SUCCESS, CAM_API_STS_INVALID_CAMERA_HANDLE));
        EXPECT_EQ(status == CAM_API_STS_SUCCESS, stream != 0);
        EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_INVALID_STREAM_HANDLE) << "opened with " << status;
    }
}

TEST_F(ClosingTest, ACameraIsClosedWhileItsStreamStarts)
{
    for (int round = 0; round < kRounds; ++round) {
        openCamera();
        openStream();
        const auto [started, closed] =
            together([&] { return Strm_Start(m_stream, 8); }, [&] { return Cam_Close(m_camera); });
        EXPECT_THAT(started,
                    AnyOf(CAM_API_STS_SUCCESS, CAM_API_STS_INVALID_CAMERA_HANDLE, CAM_API_STS_INVALID_STREAM_HANDLE));
        EXPECT_EQ(closed, CAM_API_STS_SUCCESS);
        const std::size_t images = m_recorder.images().size();
        EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_INVALID_STREAM_HANDLE);
        EXPECT_EQ(m_recorder.images().size(), images);
    }
}

TEST_F(ClosingTest, ACameraCountsAsOpenUntilItIsClosed)
{
    openCamera();
    openStream();
    std::atomic<bool> entered{false};
    CAM_API_STATUS again = CAM_API_STS_SUCCESS;
    m_recorder.onImage = [&, done = false](const StreamRecorder::Image&) mutable {
        if (std::exchange(done, true))
            return;
        entered = true;
        // The handle becomes invalid first; closing then waits for this callback.
        EXPECT_TRUE(handleDies());
        CAM_HANDLE camera = 0;
        again = Cam_Open(0, &camera, 0, 1, nullptr, 1);
    };
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(becomes([&] { return entered.load(); }));
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(again, CAM_API_STS_ALREADY_OPENED);
    openCamera();
}

TEST_F(ClosingTest, EveryCallDuringTerminationReturnsNotInitialized)
{
    ASSERT_NO_FATAL_FAILURE(openCamera());
    ASSERT_NO_FATAL_FAILURE(openStream());
    CAM_SIGNAL_HANDLE signal = 0;
    ASSERT_EQ(Sys_CreateSignal(&signal), CAM_API_STS_SUCCESS);
    std::atomic<bool> inCallback{false};
    std::atomic<bool> looked{false};
    // Termination waits for the callback.
    m_recorder.onImage = [&](const StreamRecorder::Image&) {
        inCallback = true;
        EXPECT_TRUE(becomes([&] { return looked.load(); }));
    };
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    ASSERT_TRUE(becomes([&] { return inCallback.load(); }));
    auto terminating = std::async(std::launch::async, [] { return Sys_Terminate(); });
    CAM_SYSTEM_INFO system = {};
    ASSERT_TRUE(becomes([&] { return Sys_GetInformation(&system) == CAM_API_STS_NOT_INITIALIZED; }));

    CAM_NODE_HANDLE node = 0;
    std::uint32_t index = 0;
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Sys_WaitForSignal(signal, 0), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Nd_GetNode(m_camera, "Root", &node), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &index), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_NOT_INITIALIZED);

    looked = true;
    EXPECT_EQ(terminating.get(), CAM_API_STS_SUCCESS);
    ASSERT_NO_FATAL_FAILURE(initialize());
}

TEST_F(ClosingTest, CallsInProgressAtTerminationSucceedOrReturnNotInitialized)
{
    std::atomic<int> wrong{0};
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_NO_FATAL_FAILURE(openCamera());
        ASSERT_NO_FATAL_FAILURE(openStream());
        CAM_SIGNAL_HANDLE signal = 0;
        ASSERT_EQ(Sys_CreateSignal(&signal), CAM_API_STS_SUCCESS);
        CAM_NODE_HANDLE width = 0;
        ASSERT_EQ(Nd_GetNode(m_camera, "Width", &width), CAM_API_STS_SUCCESS);
        std::int64_t value = 0;
        const std::function<CAM_API_STATUS()> calls[] = {
            [&] { return Nd_GetIntValue(m_camera, width, &value); },
            [&] { return Nd_SetIntValue(m_camera, width, 64, true); },
            [&] { return Strm_SetCallbackImageError(m_stream, nullptr, nullptr); },
            [&] {
                const CAM_API_STATUS status = Sys_WaitForSignal(signal, 0);
                return status == CAM_API_STS_TIMEOUT ? CAM_API_STS_SUCCESS : status;
            },
        };
        std::atomic<int> going{0};
        std::vector<std::thread> threads;
        for (const auto& call : calls) {
            threads.emplace_back([&] {
                CAM_API_STATUS status = call();
                ++going;
                while (status == CAM_API_STS_SUCCESS)
                    status = call();
                wrong += status == CAM_API_STS_NOT_INITIALIZED ? 0 : 1;
            });
        }
        EXPECT_TRUE(becomes([&] { return going == static_cast<int>(std::size(calls)); }));
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_NO_FATAL_FAILURE(initialize());
    }
    EXPECT_EQ(wrong, 0);
}
