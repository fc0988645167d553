#include "tests/cameralibs/devices/SimulatedCamera.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Orvo;

namespace {

constexpr char kVariable[] = "ORVO_SIMULATED_CAMERAS";

void expectDone(CAM_API_STATUS status, const std::string& what)
{
    EXPECT_EQ(status, CAM_API_STS_SUCCESS) << what;
}

} // namespace

Library::Library(const char* cameras)
{
    // The library has no threads yet that could read the environment.
    if (cameras != nullptr) {
        ::setenv(kVariable, cameras, 1); // NOLINT(concurrency-mt-unsafe)
    } else {
        ::unsetenv(kVariable); // NOLINT(concurrency-mt-unsafe)
    }
    expectDone(Sys_Initialize(CAM_LAYER_SIMULATED), "Sys_Initialize");
    (void)enumerate();
}

Library::~Library()
{
    expectDone(Sys_Terminate(), "Sys_Terminate");
}

std::uint32_t Library::enumerate()
{
    std::uint32_t count = 0;
    expectDone(Sys_GetNumOfCameras(&count), "Sys_GetNumOfCameras");
    return count;
}

CAM_INFO Library::info(std::uint32_t index)
{
    CAM_INFO info{};
    expectDone(Cam_GetInformation(0, index, &info), "Cam_GetInformation");
    return info;
}

SimulatedCamera::SimulatedCamera(std::uint32_t index)
{
    expectDone(Sys_CreateSignal(&m_removal), "Sys_CreateSignal");
    expectDone(Cam_Open(index, &m_camera, m_removal, 1, nullptr, 1), "Cam_Open");
}

SimulatedCamera::~SimulatedCamera()
{
    expectDone(Cam_Close(m_camera), "Cam_Close");
    expectDone(Sys_CloseSignal(m_removal), "Sys_CloseSignal");
}

CAM_NODE_HANDLE SimulatedCamera::node(const std::string& name) const
{
    return nodeOf(m_camera, name);
}

NodeAccessMode SimulatedCamera::access(const std::string& name) const
{
    NodeAccessMode mode = NODE_ACCESS_MODE_UNDEFINED;
    expectDone(Nd_GetAccessMode(m_camera, node(name), &mode), name);
    return mode;
}

std::int64_t SimulatedCamera::integer(const std::string& name) const
{
    return intOf(m_camera, name);
}

std::int64_t SimulatedCamera::greatest(const std::string& name) const
{
    std::int64_t value = 0;
    expectDone(Nd_GetIntMax(m_camera, node(name), &value), name);
    return value;
}

double SimulatedCamera::real(const std::string& name) const
{
    double value = 0;
    expectDone(Nd_GetFloatValue(m_camera, node(name), &value), name);
    return value;
}

double SimulatedCamera::greatestReal(const std::string& name) const
{
    double value = 0;
    expectDone(Nd_GetFloatMax(m_camera, node(name), &value), name);
    return value;
}

bool SimulatedCamera::flag(const std::string& name) const
{
    bool value = false;
    expectDone(Nd_GetBoolValue(m_camera, node(name), &value), name);
    return value;
}

std::string SimulatedCamera::text(const std::string& name) const
{
    return wholeText(Nd_GetStrValue, m_camera, node(name));
}

std::string SimulatedCamera::choice(const std::string& name) const
{
    return wholeText(Nd_GetEnumStrValue, m_camera, node(name));
}

void SimulatedCamera::setInteger(const std::string& name, std::int64_t value) const
{
    setInt(m_camera, name, value);
}

void SimulatedCamera::setReal(const std::string& name, double value) const
{
    expectDone(Nd_SetFloatValue(m_camera, node(name), value, true), name);
}

void SimulatedCamera::setFlag(const std::string& name, bool value) const
{
    expectDone(Nd_SetBoolValue(m_camera, node(name), value, true), name);
}

void SimulatedCamera::setText(const std::string& name, const std::string& value) const
{
    expectDone(Nd_SetStrValue(m_camera, node(name), value.c_str(), true), name);
}

void SimulatedCamera::choose(const std::string& name, const std::string& entry) const
{
    setEntry(m_camera, name, entry);
}

void SimulatedCamera::execute(const std::string& name) const
{
    ::execute(m_camera, name);
}

std::vector<std::string> SimulatedCamera::features(const std::string& category) const
{
    return featuresOf(m_camera, category);
}

std::vector<std::string> SimulatedCamera::entries(const std::string& enumeration) const
{
    return entriesOf(m_camera, enumeration);
}
