#include "tests/cameralibs/api/CameraFixture.h"

#include <cstdlib>

using namespace Orvo;

SystemTest::SystemTest(const std::string& simulatedCameras)
{
    ::setenv("ORVO_SIMULATED_CAMERAS", simulatedCameras.c_str(),
             1); // NOLINT(concurrency-mt-unsafe): no other thread yet
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
}

SystemTest::~SystemTest()
{
    // A test may have terminated the library itself.
    (void)Sys_Terminate();
}

CameraTest::CameraTest(const std::string& simulatedCameras)
    : SystemTest(simulatedCameras)
{
    EXPECT_EQ(Sys_CreateSignal(&m_signal), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Open(0, &m_camera, m_signal, 1, nullptr, 1), CAM_API_STS_SUCCESS);
}

CAM_NODE_HANDLE CameraTest::node(const char* name) const
{
    return nodeOf(m_camera, name);
}

void CameraTest::setInt(const char* name, std::int64_t value) const
{
    ::setInt(m_camera, name, value);
}

std::int64_t CameraTest::getInt(const char* name) const
{
    return intOf(m_camera, name);
}

void CameraTest::execute(const char* name) const
{
    ::execute(m_camera, name);
}
