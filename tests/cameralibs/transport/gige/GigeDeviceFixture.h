#pragma once

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/transport/ChildProcess.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// An honest camera beside that of the fixture. Its number, below 9, determines its address, its serial number and with
/// that its place in the list.
class OneMoreDevice {
public:
    explicit OneMoreDevice(std::uint32_t number, const std::vector<std::string>& options = {});

private:
    ChildProcess m_device;
};

/// Cameras of the tests, and the first of them opened.
class GigeDeviceTest : public ::testing::Test {
protected:
    GigeDeviceTest();
    ~GigeDeviceTest() override;
    GigeDeviceTest(const GigeDeviceTest&) = delete;
    GigeDeviceTest& operator=(const GigeDeviceTest&) = delete;

    /// Puts an honest camera on the network in place of the one before, and looks until so many cameras are found.
    void list(const std::vector<std::string>& options = {}, std::uint32_t cameras = 1);

    [[nodiscard]] Orvo::CAM_API_STATUS tryToOpen();
    void open(const std::vector<std::string>& options = {});
    void openStream();
    void expectImages(std::size_t count);

    std::unique_ptr<ChildProcess> m_device;
    Orvo::CAM_HANDLE m_camera = 0;
    Orvo::CAM_STRM_HANDLE m_stream = 0;
    StreamRecorder m_recorder;
};
