#include "tests/cameralibs/api/DescribedCamera.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Orvo;

DescribedCamera::DescribedCamera(const std::string& xml)
    : m_file(xml)
{
    ::setenv("ORVO_SIMULATED_CAMERAS", ("0," + m_file.path()).c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    EXPECT_EQ(count, 1U);
    m_status = Cam_Open(0, &m_camera, 0, 1, nullptr, 1);
    if (m_status != CAM_API_STS_SUCCESS)
        m_error = lastGenICamError();
}

DescribedCamera::~DescribedCamera()
{
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
}

NodeAccessMode DescribedCamera::access(const char* name)
{
    NodeAccessMode mode = NODE_ACCESS_MODE_NI;
    lastStatus = Nd_GetAccessMode(m_camera, node(name), &mode);
    return mode;
}

std::int64_t DescribedCamera::integer(const char* name)
{
    std::int64_t value = 0;
    lastStatus = Nd_GetIntValue(m_camera, node(name), &value);
    return value;
}

double DescribedCamera::number(const char* name)
{
    double value = 0;
    lastStatus = Nd_GetFloatValue(m_camera, node(name), &value);
    return value;
}

std::string DescribedCamera::text(TextOperation operation, const char* name) const
{
    return textOf(operation, m_camera, node(name));
}

std::string describe(const std::string& nodes)
{
    return describe("", nodes);
}

std::string describe(const std::string& features, const std::string& nodes)
{
    return descriptionOf("Described", features, nodes);
}

std::string intReg(const std::string& name, unsigned address, const std::string& access, const std::string& more)
{
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>" + access + "</AccessMode><pPort>Device</pPort>" + more +
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n";
}

std::string constant(const std::string& name, std::int64_t value)
{
    return "<Integer Name=\"" + name + "\"><Value>" + std::to_string(value) + "</Value></Integer>\n";
}

std::string lastGenICamError()
{
    const char* text = nullptr;
    EXPECT_EQ(Misc_GetLastGenICamError(&text), CAM_API_STS_SUCCESS);
    return text == nullptr ? "" : text;
}
