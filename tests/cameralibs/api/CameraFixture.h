#pragma once

#include "tests/cameralibs/api/CameraAccess.h"

#include "camera/OrvoCamApi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

/// The library with simulated cameras only, so that it does not search the network. The cameras are enumerated.
class SystemTest : public ::testing::Test {
public:
    ~SystemTest() override;
    SystemTest(const SystemTest&) = delete;
    SystemTest& operator=(const SystemTest&) = delete;

protected:
    /// `simulatedCameras` as in ORVO_SIMULATED_CAMERAS.
    explicit SystemTest(const std::string& simulatedCameras = "1");

    std::uint32_t m_cameras = 0;
};

/// With the first camera opened with a removal signal.
class CameraTest : public SystemTest {
protected:
    explicit CameraTest(const std::string& simulatedCameras = "1");

    [[nodiscard]] Orvo::CAM_NODE_HANDLE node(const char* name) const;
    void setInt(const char* name, std::int64_t value) const;
    [[nodiscard]] std::int64_t getInt(const char* name) const;
    void execute(const char* name) const;

    /// Afterwards operations return status 19.
    void unplug() const { execute("SimulationUnplug"); }

    Orvo::CAM_SIGNAL_HANDLE m_signal = 0;
    Orvo::CAM_HANDLE m_camera = 0;
};
