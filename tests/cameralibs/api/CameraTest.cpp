#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/DescribedCamera.h"

#include <cstring>

using namespace Orvo;

namespace {

class TwoCamerasTest : public CameraTest {
protected:
    TwoCamerasTest()
        : CameraTest("2")
    {
    }
};

class NoCameraTest : public SystemTest {
protected:
    NoCameraTest()
        : SystemTest("0")
    {
    }
};

CAM_API_STATUS open(std::uint32_t index, CAM_HANDLE* camera, CAM_SIGNAL_HANDLE signal = 0)
{
    return Cam_Open(index, camera, signal, 1, nullptr, 1);
}

} // namespace

TEST_F(NoCameraTest, NoneIsListed)
{
    EXPECT_EQ(m_cameras, 0U);
    CAM_INFO info = {};
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_INVALID_CAMERA_INDEX);
}

TEST_F(SystemTest, IndicesAreThoseOfTheLastEnumeration)
{
    ASSERT_EQ(m_cameras, 1U);
    CAM_HANDLE camera = 0;
    EXPECT_EQ(open(1, &camera), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(open(0xFFFFFFFF, &camera), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(camera, 0U);
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(open(0, &camera), CAM_API_STS_INVALID_CAMERA_INDEX) << "before the first enumeration";
    EXPECT_EQ(Sys_GetNumOfCameras(nullptr), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(SystemTest, InformationByIndex)
{
    CAM_INFO info = {};
    std::memset(&info, 0xFF, sizeof info);
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.link, CAM_LINK_SIMULATED);
    EXPECT_STREQ(info.vendorName, "Simulated");
    EXPECT_STRNE(info.modelName, "");
    EXPECT_STRNE(info.serialNumber, "");
    EXPECT_EQ(info.cameraIndex, 0U);
    EXPECT_THAT(info.reserved, ::testing::Each(0));
    EXPECT_EQ(Cam_GetInformation(0, 1, &info), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(Cam_GetInformation(0, 1, nullptr), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(Cam_GetInformation(0, 0, nullptr), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(TwoCamerasTest, InformationByHandleIgnoresTheIndex)
{
    CAM_INFO byIndex = {};
    CAM_INFO byHandle = {};
    ASSERT_EQ(Cam_GetInformation(0, 0, &byIndex), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_GetInformation(m_camera, 77, &byHandle), CAM_API_STS_SUCCESS);
    EXPECT_EQ(std::memcmp(&byIndex, &byHandle, sizeof byIndex), 0);
    EXPECT_EQ(Cam_GetInformation(m_camera, 0, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Cam_GetInformation(m_camera + 1000000, 0, &byHandle), CAM_API_STS_INVALID_CAMERA_HANDLE);
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_GetInformation(m_camera, 0, &byHandle), CAM_API_STS_INVALID_CAMERA_HANDLE);
}

TEST_F(TwoCamerasTest, IndexByHandleFollowsTheEnumeration)
{
    CAM_HANDLE second = 0;
    ASSERT_EQ(open(1, &second), CAM_API_STS_SUCCESS);
    unplug();
    ASSERT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
    EXPECT_EQ(m_cameras, 1U) << "an unplugged camera is not listed";
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(second, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.cameraIndex, 0U);
}

TEST_F(TwoCamerasTest, SecondOpenIsRefused)
{
    CAM_HANDLE again = 0;
    EXPECT_EQ(open(0, &again), CAM_API_STS_ALREADY_OPENED);
    EXPECT_EQ(open(0, nullptr, 12345), CAM_API_STS_ALREADY_OPENED) << "before the other arguments";
    EXPECT_EQ(again, 0U);
    EXPECT_EQ(open(1, &again), CAM_API_STS_SUCCESS);
    EXPECT_NE(again, m_camera);
}

TEST_F(CameraTest, ClosedCameraOpensAgainWithANewHandle)
{
    const CAM_HANDLE first = m_camera;
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
    ASSERT_EQ(open(0, &m_camera, m_signal), CAM_API_STS_SUCCESS);
    EXPECT_NE(m_camera, first);
    CAM_NODE_HANDLE root = 0;
    EXPECT_EQ(Nd_GetNode(first, "Root", &root), CAM_API_STS_INVALID_CAMERA_HANDLE);
}

TEST_F(SystemTest, OpenChecksSignalBeforePointer)
{
    EXPECT_EQ(open(0, nullptr, 12345), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(open(0, nullptr), CAM_API_STS_INVALID_PARAMETER);
    CAM_HANDLE camera = 0;
    EXPECT_EQ(open(0, &camera, 12345), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(camera, 0U);
    EXPECT_EQ(open(0, &camera), CAM_API_STS_SUCCESS) << "signal 0 is no notification, and nothing was left open";
    EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
}

TEST_F(CameraTest, OpenClearsTheSignal)
{
    setInt("SimulationReplugAfter", 1);
    unplug();
    ASSERT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    CAM_API_STATUS status = CAM_API_STS_CAMERA_NOT_RESPONDING;
    while (status == CAM_API_STS_CAMERA_NOT_RESPONDING)
        status = open(0, &m_camera, m_signal);
    EXPECT_EQ(status, CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
}

TEST_F(CameraTest, EveryOperationOnAnUnpluggedCameraFailsAtOnce)
{
    const CAM_NODE_HANDLE width = node("Width");
    CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 2, nullptr), CAM_API_STS_SUCCESS);
    unplug();
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
    constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;
    CAM_INFO info = {};
    CAM_HANDLE again = 0;
    EXPECT_EQ(Cam_GetInformation(m_camera, 0, &info), kGone);
    EXPECT_EQ(open(0, &again), kGone);
    EXPECT_EQ(Nd_GetNode(m_camera, "Width", nullptr), kGone) << "before null pointers";
    EXPECT_EQ(Nd_GetIntValue(m_camera, 1, nullptr), kGone) << "before node handles";
    EXPECT_EQ(Nd_SetIntValue(m_camera, width, 64), kGone);
    EXPECT_EQ(textOf(Nd_GetName, m_camera, width), "status 19");
    EXPECT_EQ(Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, 2, nullptr), kGone);
    EXPECT_EQ(Strm_SetCallbackImageAcquired(stream, nullptr, nullptr), kGone);
    EXPECT_EQ(Strm_Start(stream, 8), kGone);
    EXPECT_EQ(Strm_GetCurrentBufferIndex(stream, nullptr), kGone);
    EXPECT_EQ(Strm_LockBuffer(stream, 0, nullptr), kGone);
    // Operations that stop and close still work.
    EXPECT_EQ(Strm_UnlockBuffer(stream, 0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
}

TEST_F(CameraTest, ReconnectedCameraOpensBeforeTheLostHandleIsClosed)
{
    setInt("SimulationReplugAfter", 1);
    const CAM_NODE_HANDLE width = node("Width");
    unplug();
    CAM_HANDLE again = 0;
    CAM_API_STATUS status = CAM_API_STS_CAMERA_NOT_RESPONDING;
    while (status == CAM_API_STS_CAMERA_NOT_RESPONDING)
        status = open(0, &again);
    ASSERT_EQ(status, CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Nd_GetIntValue(again, nodeOf(again, "Width"), &value), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetIntValue(again, nodeOf(again, "Width"), &value), CAM_API_STS_SUCCESS);
}

TEST_F(CameraTest, TerminateClosesEverything)
{
    CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_NOT_INITIALIZED);
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Sys_CloseSignal(m_signal), CAM_API_STS_INVALID_EVENT_HANDLE);
    ASSERT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
    EXPECT_EQ(open(0, &m_camera), CAM_API_STS_SUCCESS) << "the device was let go";
}

TEST_F(CameraTest, UserDefinedNameIsKnownAfterTheCameraWasOpened)
{
    ASSERT_EQ(Nd_SetStrValue(m_camera, node("DeviceUserID"), "left"), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    ASSERT_EQ(open(0, &m_camera, m_signal), CAM_API_STS_SUCCESS);
    const std::string kept = textOf(Nd_GetStrValue, m_camera, node("DeviceUserID"));
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(m_camera, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.userDefinedName, kept);
    ASSERT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.userDefinedName, kept);
}

TEST_F(CameraTest, UserDefinedNameIsTheLastOneWritten)
{
    const auto listedName = [] {
        CAM_INFO info = {};
        EXPECT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
        return std::string(info.userDefinedName);
    };
    ASSERT_EQ(Nd_SetStrValue(m_camera, node("DeviceUserID"), "left"), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(listedName(), "left") << "though the list was made before";
    ASSERT_EQ(open(0, &m_camera, m_signal), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_SetStrValue(m_camera, node("DeviceUserID"), "right"), CAM_API_STS_SUCCESS);
    setInt("SimulationReplugAfter", 1);
    unplug();
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    do {
        ASSERT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
    } while (m_cameras == 0);
    EXPECT_EQ(listedName(), "right") << "a camera that tells its name in the list knows it better";
}

TEST(CameraInformation, IsAsciiAndTruncatedToItsFields)
{
    const std::string model = "K\u00E4mera " + std::string(100, 'm');
    const DescribedCamera camera(descriptionOf(model, "", ""));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    CAM_INFO info = {};
    std::memset(&info, 0xFF, sizeof info);
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.modelName, "K??mera " + std::string(55, 'm'));
    EXPECT_STREQ(info.vendorName, "Simulated");
    EXPECT_STREQ(info.serialNumber, "XML-1");
    EXPECT_STREQ(info.userDefinedName, "");
    EXPECT_THAT(info.userDefinedName, ::testing::Each(0));
    EXPECT_EQ(info.link, CAM_LINK_SIMULATED);
}
