#include "tests/cameralibs/transport/gige/GigeDeviceFixture.h"

using namespace Orvo;

namespace {

std::vector<std::string> commandFor(std::uint32_t number, const std::vector<std::string>& options)
{
    const std::string digits = std::to_string(number);
    std::vector<std::string> command = {GIGE_CAMERA,
                                        "--address",
                                        "127.0.1." + digits,
                                        "--foreign-address",
                                        "127.0.2." + digits,
                                        "--serial",
                                        "T" + std::to_string(number + 1)};
    command.insert(command.end(), options.begin(), options.end());
    return command;
}

} // namespace

OneMoreDevice::OneMoreDevice(std::uint32_t number, const std::vector<std::string>& options)
    : m_device(commandFor(number, options))
{
    (void)m_device.readLine();
}

GigeDeviceTest::GigeDeviceTest()
{
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_GIGE_VISION), CAM_API_STS_SUCCESS);
}

GigeDeviceTest::~GigeDeviceTest()
{
    (void)Sys_Terminate();
}

void GigeDeviceTest::list(const std::vector<std::string>& options, std::uint32_t cameras)
{
    std::vector<std::string> command = {GIGE_CAMERA};
    command.insert(command.end(), options.begin(), options.end());
    m_device = std::make_unique<ChildProcess>(command);
    ASSERT_EQ(m_device->readLine(), "honest");
    // A busy machine may miss the answer.
    ASSERT_TRUE(becomes([cameras] {
        std::uint32_t count = 0;
        return Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count == cameras;
    }));
}

CAM_API_STATUS GigeDeviceTest::tryToOpen()
{
    return Cam_Open(0, &m_camera, 0, 1, nullptr, 1);
}

void GigeDeviceTest::open(const std::vector<std::string>& options)
{
    list(options);
    ASSERT_EQ(tryToOpen(), CAM_API_STS_SUCCESS);
}

void GigeDeviceTest::openStream()
{
    ASSERT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    m_recorder.attachTo(m_stream);
}

void GigeDeviceTest::expectImages(std::size_t count)
{
    m_recorder.clear();
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(m_recorder.waitForImages(count));
    ASSERT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}
