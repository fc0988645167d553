#include "tests/cameralibs/transport/GigeFixture.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

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

/// A copy of a file, in a folder of its own.
class Copy {
public:
    explicit Copy(const std::filesystem::path& file)
    {
        std::string folder = (std::filesystem::temp_directory_path() / "copy-XXXXXX").string();
        EXPECT_NE(::mkdtemp(folder.data()), nullptr);
        std::filesystem::permissions(folder, std::filesystem::perms(0755));
        m_path = folder / file.filename();
        std::filesystem::copy_file(file, m_path);
    }
    ~Copy() { std::filesystem::remove_all(m_path.parent_path()); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

constexpr const char* kTransportOfTheSystem = "/usr/libexec/orvocam-transport";

} // namespace

TEST_F(GigeCameraTest, InformationIdentifiesTheCamera)
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

TEST_F(GigeCameraTest, OtherLayersDoNotListIt)
{
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    // There may be a USB camera at this machine.
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_INFO info = {};
        ASSERT_EQ(Cam_GetInformation(0, i, &info), CAM_API_STS_SUCCESS);
        EXPECT_NE(info.link, CAM_LINK_GIGE_VISION);
    }
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

TEST_F(GigeCameraTest, CameraWorksIfAravisBypassesTheHooks)
{
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_CAMERA_TRANSPORT", TRANSPORT_WITHOUT_HOOKS, 1); // NOLINT(concurrency-mt-unsafe)
    ::setenv("ORVO_CAMERA_LOG", "warning", 1);                     // NOLINT(concurrency-mt-unsafe)
    ::testing::internal::CaptureStderr();
    CAM_HANDLE camera = 0;
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_GIGE_VISION), CAM_API_STS_SUCCESS);
    enumerateUntil(1);
    EXPECT_EQ(open(0, &camera), CAM_API_STS_SUCCESS);
    EXPECT_EQ(intOf(camera, "Width"), 512);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, ::testing::HasSubstr("This version of Aravis searches in an unknown way"));
    EXPECT_THAT(log, ::testing::HasSubstr("This version of Aravis receives answers in an unknown way"));
    for (const char* variable : {"ORVO_CAMERA_TRANSPORT", "ORVO_CAMERA_LOG"})
        ::unsetenv(variable); // NOLINT(concurrency-mt-unsafe)
}

// The loader knows the library by a path that leads nowhere after the change.
TEST_F(GigeCameraTest, ProgramMayChangeItsFolder)
{
    const std::string folder = std::filesystem::path(CAMERA_LIBRARY).parent_path();
    ChildProcess other({"env", "-C", folder, "LD_LIBRARY_PATH=.", CAMERA_HOLDER});
    EXPECT_EQ(other.readLine(), "0");
}

TEST_F(GigeCameraTest, LibraryWithNoTransportBesideItUsesTheInstalledOne)
{
    if (std::filesystem::exists(kTransportOfTheSystem))
        GTEST_SKIP() << "one is installed";
    const Copy library(CAMERA_LIBRARY);
    const std::string folder = library.path().parent_path();
    ChildProcess other(
        {"env", "LD_LIBRARY_PATH=" + folder, "ORVO_CAMERA_LOG=warning", "sh", "-c", "exec \"$0\" 2>&1", CAMERA_HOLDER});
    EXPECT_THAT(other.readLine(), ::testing::HasSubstr(std::string(kTransportOfTheSystem) + " cannot be started"));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which do not run with raised privileges
TEST_F(GigeCameraTest, ProgramWithRaisedPrivilegesIgnoresTheVariable)
{
    constexpr uid_t kNobody = 65534;
    const Copy holder(CAMERA_HOLDER);
    const std::vector<std::string> command = {"env", "ORVO_CAMERA_TRANSPORT=/nowhere", holder.path()};
    EXPECT_NE(ChildProcess(command).readLine(), "0") << "with the privileges of the user";
    if (::chown(holder.path().c_str(), kNobody, kNobody) != 0)
        GTEST_SKIP() << "only root can make a program that runs as another user";
    ASSERT_EQ(::chmod(holder.path().c_str(), 04755), 0);
    EXPECT_EQ(ChildProcess(command).readLine(), "0");
}
#endif

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
