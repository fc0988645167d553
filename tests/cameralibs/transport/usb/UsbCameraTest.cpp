#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include "tests/cameralibs/api/MemoryLimit.h"

#include <cstdlib>

using namespace Orvo;

using UsbCameraTest = ListedUsb;
using UsbCameraOpenTest = OpenUsb;

TEST_F(UsbCameraTest, InformationTellsTheCamera)
{
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.link, CAM_LINK_USB3_VISION);
    EXPECT_STREQ(info.vendorName, "Fake Maker");
    EXPECT_STREQ(info.modelName, "U3V-Fake");
    EXPECT_STREQ(info.serialNumber, "U01");
}

TEST_F(UsbCameraTest, UnpluggedCameraIsNotListed)
{
    usb::unplug();
    EXPECT_EQ(enumerate(), 0U);
    usb::plugIn();
    EXPECT_EQ(enumerate(), 1U);
}

TEST_F(UsbCameraTest, CameraThatIsGoneSinceItWasListedDoesNotOpen)
{
    usb::unplug();
    CAM_HANDLE camera = 0;
    EXPECT_EQ(open(&camera), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(camera, 0U);
}

TEST_F(UsbCameraOpenTest, NodesAreThoseOfTheCamerasDescription)
{
    EXPECT_THAT(featuresOf(m_camera, "ImageFormatControl"),
                ::testing::IsSupersetOf({"Width", "Height", "PixelFormat"}));
    setInt(m_camera, "Width", 100);
    EXPECT_EQ(intOf(m_camera, "Width"), 100);
    EXPECT_EQ(intOf(m_camera, "PayloadSize"), 100 * intOf(m_camera, "Height"));
}

TEST_F(UsbCameraOpenTest, ClosedCameraOpensAgain)
{
    CAM_HANDLE again = 0;
    EXPECT_EQ(open(&again), CAM_API_STS_ALREADY_OPENED);
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    ASSERT_EQ(open(&again), CAM_API_STS_SUCCESS);
    EXPECT_EQ(intOf(again, "Width"), 320);
}

TEST_F(UsbCameraTest, IsListedOnlyWhereUsbCamerasAreAskedFor)
{
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_SIMULATED_CAMERAS", "2", 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(enumerate(), 2U);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED | CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    EXPECT_EQ(enumerate(), 3U);
    ::unsetenv("ORVO_SIMULATED_CAMERAS"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(UsbCameraTest, LogTellsOfTheCameraWhatAravisSays)
{
    if (!MemoryLimit::kPossible)
        GTEST_SKIP() << "with sanitizers, transports write to standard error by themselves";
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_CAMERA_LOG", "debug", 1); // NOLINT(concurrency-mt-unsafe)
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    EXPECT_EQ(enumerate(), 1U);
    CAM_HANDLE camera = 0;
    EXPECT_EQ(open(&camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, ::testing::ContainsRegex(
                         "OrvoCamera-Message: [0-9:.]+: info: U3V-Fake U01: device> .*GUID .* FA4E00000001"));
}
