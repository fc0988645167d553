// What the library does on threads of its own when there is no memory: it goes on, or it tells; it never ends the
// program. Only allocations of C++ fail here. GLib, which writes the lines of the diagnostic log, ends the process
// where it gets no memory itself.

#include "tests/cameralibs/devices/transport/Transports.h"

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/FailingAllocations.h"
#include "tests/cameralibs/transport/usb/FakeUsb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>

using namespace Orvo;

namespace {

/// With the diagnostic log and without.
class MemoryShortageTest : public ::testing::TestWithParam<const char*> {
public:
    ~MemoryShortageTest() override
    {
        (void)Sys_Terminate();
        ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
        EXPECT_THAT(transports(), ::testing::IsEmpty());
    }
    MemoryShortageTest(const MemoryShortageTest&) = delete;
    MemoryShortageTest& operator=(const MemoryShortageTest&) = delete;

protected:
    MemoryShortageTest()
    {
        ::setenv("ORVO_CAMERA_LOG", GetParam(), 1); // NOLINT(concurrency-mt-unsafe)
        ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
        usb::unplug();
        usb::plugIn();
    }

    void openStream(CAM_LAYER layer)
    {
        std::uint32_t count = 0;
        ASSERT_EQ(Sys_Initialize(layer), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        ASSERT_EQ(count, 1U);
        ASSERT_EQ(Sys_CreateSignal(&m_signal), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Cam_Open(0, &m_camera, m_signal, 1, nullptr, 1), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Strm_SetCallbackImageAcquired(m_stream, this, countImage), CAM_API_STS_SUCCESS);
        ASSERT_EQ(Strm_SetCallbackImageError(m_stream, this, countError), CAM_API_STS_SUCCESS);
    }

    void start() { ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS); }

    [[nodiscard]] bool moreImages()
    {
        const int before = m_images;
        return becomes([&] { return m_images > before + 3; });
    }

    CAM_SIGNAL_HANDLE m_signal = 0;
    CAM_HANDLE m_camera = 0;
    CAM_STRM_HANDLE m_stream = 0;
    std::atomic<int> m_images{0};
    std::atomic<int> m_errors{0};
    std::atomic<CAM_API_STATUS> m_lastError{0};

private:
    // The callbacks have no memory either.

    static void countImage(CAM_HANDLE, CAM_STRM_HANDLE, CAM_IMAGE_INFO*, std::uint32_t, void* self)
    {
        ++static_cast<MemoryShortageTest*>(self)->m_images;
    }
    static void countError(CAM_HANDLE, CAM_STRM_HANDLE, CAM_API_STATUS status, std::uint32_t, void* self)
    {
        static_cast<MemoryShortageTest*>(self)->m_lastError = status;
        ++static_cast<MemoryShortageTest*>(self)->m_errors;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Log, MemoryShortageTest, ::testing::Values("", "debug"),
                         [](const auto& level) { return std::string(*level.param == '\0' ? "Off" : "On"); });

TEST_P(MemoryShortageTest, ASimulatedCameraFailsItsImages)
{
    ASSERT_NO_FATAL_FAILURE(openStream(CAM_LAYER_SIMULATED));
    {
        const FailingAllocations failing;
        start();
        EXPECT_TRUE(becomes([&] { return m_errors > 3; }));
        EXPECT_EQ(m_lastError, CAM_API_STS_NO_MEMORY);
        EXPECT_GT(FailingAllocations::count(), 0);
    }
    EXPECT_TRUE(moreImages()) << "once there is memory again";
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}

TEST_P(MemoryShortageTest, ImagesOfARealCameraNeedNoMemory)
{
    ASSERT_NO_FATAL_FAILURE(openStream(CAM_LAYER_USB3_VISION));
    const FailingAllocations failing;
    start();
    EXPECT_TRUE(moreImages());
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}

TEST_P(MemoryShortageTest, TheLossOfARealCameraIsReported)
{
    ASSERT_NO_FATAL_FAILURE(openStream(CAM_LAYER_USB3_VISION));
    start();
    EXPECT_TRUE(moreImages());
    const FailingAllocations failing;
    usb::unplug();
    EXPECT_EQ(Sys_WaitForSignal(m_signal, static_cast<std::uint32_t>(std::chrono::milliseconds(kPatience).count())),
              CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}

TEST_P(MemoryShortageTest, TheEndOfATransportIsReported)
{
    ASSERT_NO_FATAL_FAILURE(openStream(CAM_LAYER_USB3_VISION));
    start();
    EXPECT_TRUE(moreImages());
    const FailingAllocations failing;
    for (const pid_t transport : transports())
        EXPECT_EQ(::kill(transport, SIGKILL), 0);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, static_cast<std::uint32_t>(std::chrono::milliseconds(kPatience).count())),
              CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}
