#include "tests/cameralibs/transport/GigeFixture.h"

using namespace Orvo;

ListedGige::ListedGige(const std::vector<std::string>& cameraArguments)
{
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_GIGE_VISION), CAM_API_STS_SUCCESS);
    std::vector<std::string> arguments = {"-i", "127.0.0.1"};
    arguments.insert(arguments.end(), cameraArguments.begin(), cameraArguments.end());
    addCamera(arguments);
}

ListedGige::~ListedGige()
{
    (void)Sys_Terminate();
}

void ListedGige::addCamera(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command = {"arv-fake-gv-camera-0.8"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    m_fakes.push_back(std::make_unique<ChildProcess>(command));
    enumerateUntil(static_cast<std::uint32_t>(m_fakes.size()));
}

void ListedGige::enumerateUntil(std::uint32_t count)
{
    // Each takes a second, so this is patient enough.
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(Sys_GetNumOfCameras(&m_count), CAM_API_STS_SUCCESS);
        if (m_count == count)
            return;
    }
    FAIL() << m_count << " cameras instead of " << count;
}

CAM_API_STATUS ListedGige::open(std::uint32_t index, CAM_HANDLE* camera, CAM_SIGNAL_HANDLE signal)
{
    return Cam_Open(index, camera, signal, 1, nullptr, 1);
}

OpenGige::OpenGige(const std::vector<std::string>& cameraArguments)
    : ListedGige(cameraArguments)
{
    EXPECT_EQ(Sys_CreateSignal(&m_signal), CAM_API_STS_SUCCESS);
    EXPECT_EQ(open(0, &m_camera, m_signal), CAM_API_STS_SUCCESS);
}

StreamingGige::StreamingGige(const std::vector<std::string>& cameraArguments)
    : OpenGige(cameraArguments)
{
    setInt(m_camera, "Width", 256);
    setInt(m_camera, "Height", 256);
    EXPECT_EQ(Nd_SetFloatValue(m_camera, nodeOf(m_camera, "AcquisitionFrameRate"), 100.0), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    m_recorder.attachTo(m_stream);
}

StreamingGige::~StreamingGige()
{
    (void)Strm_Stop(m_stream);
}
