#include "GigeFixture.h"

#include <cstdlib>

using namespace Orvo;

using GigeCameraTest = ListedGige;
using GigeCameraOpenTest = OpenGige;

namespace {

std::vector<std::string> serialNumbers(std::uint32_t count)
{
    std::vector<std::string> serials;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_INFO info = {};
        EXPECT_EQ(Cam_GetInformation(0, i, &info), CAM_API_STS_SUCCESS);
        serials.emplace_back(info.serialNumber);
    }
    return serials;
}

} // namespace

TEST_F(GigeCameraTest, InformationTellsTheCamera)
{
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.link, CAM_LINK_GIGE_VISION);
    EXPECT_STREQ(info.vendorName, "Aravis");
    EXPECT_STREQ(info.modelName, "Fake");
    EXPECT_STREQ(info.serialNumber, "GV01");
    EXPECT_EQ(info.cameraIndex, 0U);
}

TEST_F(GigeCameraTest, CamerasStandInAFixedOrder)
{
    addCamera({"-i", "127.0.0.2", "-s", "A99"});
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(serialNumbers(2), ::testing::ElementsAre("A99", "GV01"));
        ASSERT_NO_FATAL_FAILURE(enumerateUntil(2));
    }
    CAM_HANDLE first = 0;
    CAM_HANDLE second = 0;
    ASSERT_EQ(open(0, &first), CAM_API_STS_SUCCESS);
    ASSERT_EQ(open(1, &second), CAM_API_STS_SUCCESS);
    EXPECT_EQ(textOf(Nd_GetStrValue, first, nodeOf(first, "DeviceID")), "A99");
    EXPECT_EQ(textOf(Nd_GetStrValue, second, nodeOf(second, "DeviceID")), "GV01");
}

TEST_F(GigeCameraTest, SimulatedCamerasComeLast)
{
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_SIMULATED_CAMERAS", "1", 1); // NOLINT(concurrency-mt-unsafe)
    ASSERT_EQ(Sys_Initialize(65535), CAM_API_STS_SUCCESS);
    ASSERT_NO_FATAL_FAILURE(enumerateUntil(2));
    CAM_INFO info = {};
    ASSERT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.link, CAM_LINK_GIGE_VISION);
    ASSERT_EQ(Cam_GetInformation(0, 1, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(info.link, CAM_LINK_SIMULATED);
}

TEST_F(GigeCameraTest, CameraOfAnotherProgramIsDenied)
{
    ChildProcess other({CAMERA_HOLDER});
    ASSERT_EQ(other.readLine(), "0");
    CAM_HANDLE camera = 0;
    EXPECT_EQ(open(0, &camera), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(open(0, nullptr, 12345), CAM_API_STS_ACCESS_DENIED) << "before signal and pointer";
    EXPECT_EQ(camera, 0U);
}

TEST_F(GigeCameraOpenTest, NodesAreThoseOfTheCamerasDescription)
{
    EXPECT_THAT(featuresOf(m_camera, "Root"),
                ::testing::IsSupersetOf({"DeviceControl", "ImageFormatControl", "AcquisitionControl"}));
    EXPECT_THAT(entriesOf(m_camera, "PixelFormat"),
                ::testing::ElementsAre("BayerBG8", "BayerGB8", "BayerGR8", "BayerRG8", "Mono8", "RGB8", "Mono16"));
    setInt(m_camera, "Width", 320);
    EXPECT_EQ(intOf(m_camera, "Width"), 320);
    EXPECT_EQ(intOf(m_camera, "PayloadSize"), 320 * intOf(m_camera, "Height"));
    EXPECT_EQ(Nd_SetIntValue(m_camera, nodeOf(m_camera, "Width"), 100000), CAM_API_STS_INVALID_PARAMETER);
    // Aravis adds features of its own to the cameras it opens.
    CAM_NODE_HANDLE own = 0;
    EXPECT_EQ(Nd_GetNode(m_camera, "ArvGevDeviceModelName", &own), CAM_API_STS_NOT_FOUND);
}

TEST_F(GigeCameraOpenTest, ClosedCameraOpensAgain)
{
    CAM_HANDLE again = 0;
    EXPECT_EQ(open(0, &again), CAM_API_STS_ALREADY_OPENED);
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    ASSERT_EQ(open(0, &again), CAM_API_STS_SUCCESS);
    EXPECT_EQ(intOf(again, "SensorWidth"), 2048);
}
