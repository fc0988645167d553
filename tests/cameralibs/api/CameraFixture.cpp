#include "CameraFixture.h"

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
    EXPECT_EQ(Nd_SetIntValue(m_camera, node(name), value), CAM_API_STS_SUCCESS) << name;
}

std::int64_t CameraTest::getInt(const char* name) const
{
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, node(name), &value), CAM_API_STS_SUCCESS) << name;
    return value;
}

void CameraTest::execute(const char* name) const
{
    EXPECT_EQ(Nd_CmdExecute(m_camera, node(name)), CAM_API_STS_SUCCESS) << name;
}

CAM_NODE_HANDLE nodeOf(CAM_HANDLE camera, const char* name)
{
    CAM_NODE_HANDLE handle = 0;
    EXPECT_EQ(Nd_GetNode(camera, name, &handle), CAM_API_STS_SUCCESS) << name;
    return handle;
}

std::string textOf(TextOperation operation, CAM_HANDLE camera, CAM_NODE_HANDLE node)
{
    std::uint32_t size = 0;
    CAM_API_STATUS status = operation(camera, node, nullptr, &size);
    std::string text(size, '?');
    if (status == CAM_API_STS_SUCCESS)
        status = operation(camera, node, text.data(), &size);
    if (status != CAM_API_STS_SUCCESS)
        return "status " + std::to_string(status);
    EXPECT_EQ(size, text.size());
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return text;
}

std::vector<std::string> featuresOf(CAM_HANDLE camera, const char* category)
{
    const CAM_NODE_HANDLE node = nodeOf(camera, category);
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfFeatures(camera, node, &count), CAM_API_STS_SUCCESS);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE child = 0;
        EXPECT_EQ(Nd_GetFeatureByIndex(camera, node, i, &child), CAM_API_STS_SUCCESS);
        names.push_back(textOf(Nd_GetName, camera, child));
    }
    return names;
}

std::vector<std::string> entriesOf(CAM_HANDLE camera, const char* enumeration)
{
    const CAM_NODE_HANDLE node = nodeOf(camera, enumeration);
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfEnumEntries(camera, node, &count), CAM_API_STS_SUCCESS);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE entry = 0;
        EXPECT_EQ(Nd_GetEnumEntryByIndex(camera, node, i, &entry), CAM_API_STS_SUCCESS);
        names.push_back(textOf(Nd_GetEnumEntryStrValue, camera, entry));
    }
    return names;
}
