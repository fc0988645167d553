#pragma once

#include "camera/OrvoCamApi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

/// A library with simulated cameras only, so that nothing looks for cameras on the network. Enumerated once.
class SystemTest : public ::testing::Test {
protected:
    /// `simulatedCameras` as in ORVO_SIMULATED_CAMERAS.
    explicit SystemTest(const std::string& simulatedCameras = "1");
    ~SystemTest() override;
    SystemTest(const SystemTest&) = delete;
    SystemTest& operator=(const SystemTest&) = delete;

    std::uint32_t m_cameras = 0;
};

/// The first camera of it, opened with a removal signal.
class CameraTest : public SystemTest {
protected:
    explicit CameraTest(const std::string& simulatedCameras = "1");

    [[nodiscard]] Orvo::CAM_NODE_HANDLE node(const char* name) const;
    void setInt(const char* name, std::int64_t value) const;
    [[nodiscard]] std::int64_t getInt(const char* name) const;
    void execute(const char* name) const;

    /// Leaves the operations with status 19.
    void unplug() const { execute("SimulationUnplug"); }

    Orvo::CAM_SIGNAL_HANDLE m_signal = 0;
    Orvo::CAM_HANDLE m_camera = 0;
};

[[nodiscard]] Orvo::CAM_NODE_HANDLE nodeOf(Orvo::CAM_HANDLE camera, const char* name);

using TextOperation = Orvo::CAM_API_STATUS (*)(Orvo::CAM_HANDLE, Orvo::CAM_NODE_HANDLE, char*, std::uint32_t*);

/// The whole text, or "status N".
[[nodiscard]] std::string textOf(TextOperation operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node);

/// The names of a category's features, in their order.
[[nodiscard]] std::vector<std::string> featuresOf(Orvo::CAM_HANDLE camera, const char* category);

/// The symbolic names of an enumeration's entries, in their order.
[[nodiscard]] std::vector<std::string> entriesOf(Orvo::CAM_HANDLE camera, const char* enumeration);
