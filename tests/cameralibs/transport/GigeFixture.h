#pragma once

#include "tests/cameralibs/transport/ChildProcess.h"

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// A library that looks for GigE Vision cameras only, and one fake camera that it has found.
class ListedGige : public ::testing::Test {
public:
    ~ListedGige() override;
    ListedGige(const ListedGige&) = delete;
    ListedGige& operator=(const ListedGige&) = delete;

protected:
    explicit ListedGige(const std::vector<std::string>& cameraArguments = {});

    /// Starts another one and enumerates until `count` are found.
    void addCamera(const std::vector<std::string>& arguments);
    void enumerateUntil(std::uint32_t count);

    [[nodiscard]] static Orvo::CAM_API_STATUS open(std::uint32_t index, Orvo::CAM_HANDLE* camera,
                                                   Orvo::CAM_SIGNAL_HANDLE signal = 0);

    std::vector<std::unique_ptr<ChildProcess>> m_fakes;
    std::uint32_t m_count = 0;
};

/// The camera opened, with a removal signal.
class OpenGige : public ListedGige {
protected:
    explicit OpenGige(const std::vector<std::string>& cameraArguments = {});

    Orvo::CAM_SIGNAL_HANDLE m_signal = 0;
    Orvo::CAM_HANDLE m_camera = 0;
};

/// Its stream, with the callbacks recorded: small images at a high rate.
class StreamingGige : public OpenGige {
public:
    ~StreamingGige() override;

protected:
    explicit StreamingGige(const std::vector<std::string>& cameraArguments = {});

    void start() { ASSERT_EQ(Orvo::Strm_Start(m_stream, 8), Orvo::CAM_API_STS_SUCCESS); }
    void stop() { ASSERT_EQ(Orvo::Strm_Stop(m_stream), Orvo::CAM_API_STS_SUCCESS); }

    Orvo::CAM_STRM_HANDLE m_stream = 0;
    StreamRecorder m_recorder;
};
