#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/WaitingCall.h"

#include <array>
#include <future>

using namespace Orvo;

namespace {

constexpr std::uint32_t kForever = 0xFFFFFFFF;

class TwoCamerasSignalTest : public CameraTest {
protected:
    TwoCamerasSignalTest()
        : CameraTest("2")
    {
    }
};

} // namespace

TEST_F(SystemTest, WaitingForAClearSignalTimesOut)
{
    CAM_SIGNAL_HANDLE signal = 0;
    ASSERT_EQ(Sys_CreateSignal(&signal), CAM_API_STS_SUCCESS);
    EXPECT_NE(signal, 0U);
    EXPECT_EQ(Sys_WaitForSignal(signal, 0), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(Sys_WaitForSignal(signal, 20), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(Sys_CloseSignal(signal), CAM_API_STS_SUCCESS);
}

TEST_F(SystemTest, UnknownAndClosedSignalsAreRefused)
{
    CAM_SIGNAL_HANDLE signal = 0;
    ASSERT_EQ(Sys_CreateSignal(&signal), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_CloseSignal(signal), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_CloseSignal(signal), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(Sys_WaitForSignal(signal, 0), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(Sys_WaitForSignal(0, 0), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(Sys_CloseSignal(0), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(Sys_CreateSignal(nullptr), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(SystemTest, HandlesAreNotReusedAfterTerminate)
{
    CAM_SIGNAL_HANDLE first = 0;
    ASSERT_EQ(Sys_CreateSignal(&first), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    CAM_SIGNAL_HANDLE second = 0;
    ASSERT_EQ(Sys_CreateSignal(&second), CAM_API_STS_SUCCESS);
    EXPECT_NE(first, second);
    EXPECT_EQ(Sys_WaitForSignal(first, 0), CAM_API_STS_INVALID_EVENT_HANDLE);
}

TEST_F(SystemTest, ClosingASignalEndsAWait)
{
    CAM_SIGNAL_HANDLE signal = 0;
    ASSERT_EQ(Sys_CreateSignal(&signal), CAM_API_STS_SUCCESS);
    WaitingCall waiting([signal] { return Sys_WaitForSignal(signal, kForever); });
    ASSERT_EQ(Sys_CloseSignal(signal), CAM_API_STS_SUCCESS);
    EXPECT_EQ(waiting.result(), CAM_API_STS_INVALID_EVENT_HANDLE);
}

TEST_F(SystemTest, TerminateEndsAWait)
{
    CAM_SIGNAL_HANDLE signal = 0;
    ASSERT_EQ(Sys_CreateSignal(&signal), CAM_API_STS_SUCCESS);
    WaitingCall waiting([signal] { return Sys_WaitForSignal(signal, kForever); });
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(waiting.result(), CAM_API_STS_NOT_INITIALIZED);
}

TEST_F(CameraTest, RemovalEndsAWaitAndTheSignalStaysSet)
{
    WaitingCall waiting([signal = m_signal] { return Sys_WaitForSignal(signal, kForever); });
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    unplug();
    EXPECT_EQ(waiting.result(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
}

TEST_F(CameraTest, SignalOfAnOpenCameraMayBeClosed)
{
    EXPECT_EQ(Sys_CloseSignal(m_signal), CAM_API_STS_SUCCESS);
    const CAM_NODE_HANDLE width = node("Width");
    unplug();
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), CAM_API_STS_CAMERA_NOT_RESPONDING);
}

TEST_F(CameraTest, SignalIsSetBeforeAnyOperationReportsTheRemoval)
{
    const CAM_NODE_HANDLE width = node("Width");
    std::array<std::future<CAM_API_STATUS>, 4> readers;
    for (auto& reader : readers) {
        reader = std::async(std::launch::async, [&] {
            std::int64_t value = 0;
            EXPECT_TRUE(
                becomes([&] { return Nd_GetIntValue(m_camera, width, &value) == CAM_API_STS_CAMERA_NOT_RESPONDING; }));
            return Sys_WaitForSignal(m_signal, 0);
        });
    }
    unplug();
    for (auto& reader : readers)
        EXPECT_EQ(reader.get(), CAM_API_STS_SUCCESS);
}

TEST_F(TwoCamerasSignalTest, SharedSignalIsClearedWhenTheOtherCameraOpens)
{
    const CAM_NODE_HANDLE width = node("Width");
    unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
    CAM_HANDLE other = 0;
    ASSERT_EQ(Cam_Open(1, &other, m_signal, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), CAM_API_STS_CAMERA_NOT_RESPONDING) << "still removed";
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    ::execute(other, "SimulationUnplug");
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
}
