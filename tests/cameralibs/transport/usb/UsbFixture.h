#pragma once

#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

/// A library that looks for USB3 Vision cameras only, and the fake one that it has found.
class ListedUsb : public ::testing::Test {
public:
    ~ListedUsb() override;
    ListedUsb(const ListedUsb&) = delete;
    ListedUsb& operator=(const ListedUsb&) = delete;

protected:
    ListedUsb();

    [[nodiscard]] static std::uint32_t enumerate();
    [[nodiscard]] static Orvo::CAM_API_STATUS open(Orvo::CAM_HANDLE* camera, Orvo::CAM_SIGNAL_HANDLE signal = 0);
};

/// The camera opened, with a removal signal.
class OpenUsb : public ListedUsb {
protected:
    OpenUsb();

    [[nodiscard]] Orvo::CAM_API_STATUS openStream();

    /// A new camera in place of one that is gone, opened with a stream.
    void replug();

    Orvo::CAM_SIGNAL_HANDLE m_signal = 0;
    Orvo::CAM_HANDLE m_camera = 0;
    Orvo::CAM_STRM_HANDLE m_stream = 0;
    StreamRecorder m_recorder;
};

/// Its stream, with the callbacks recorded.
class StreamingUsb : public OpenUsb {
public:
    ~StreamingUsb() override;

protected:
    StreamingUsb();

    void start() { ASSERT_EQ(Orvo::Strm_Start(m_stream, 8), Orvo::CAM_API_STS_SUCCESS); }
    void stop() { ASSERT_EQ(Orvo::Strm_Stop(m_stream), Orvo::CAM_API_STS_SUCCESS); }
};

/// The images that are not what the camera sends under their number.
class WrongImages {
public:
    explicit WrongImages(StreamRecorder& recorder)
    {
        recorder.onImage = [this](const StreamRecorder::Image& image) { count(image.info); };
    }
    [[nodiscard]] int count() const { return m_count; }

private:
    void count(const Orvo::CAM_IMAGE_INFO& info)
    {
        const auto* data = static_cast<const std::uint8_t*>(info.data);
        for (std::size_t i = 0; i < info.dataSize; ++i) {
            if (data[i] != static_cast<std::uint8_t>(info.frameNumber + i)) {
                ++m_count;
                return;
            }
        }
    }

    std::atomic<int> m_count{0};
};
