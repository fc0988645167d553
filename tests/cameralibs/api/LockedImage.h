#pragma once

#include "camera/OrvoCamApi.h"

#include <cstdint>
#include <vector>

/// The current image of a stream, locked as long as this lives. A failing call fails the test.
class LockedImage {
public:
    explicit LockedImage(Orvo::CAM_STRM_HANDLE stream);
    ~LockedImage();
    LockedImage(const LockedImage&) = delete;
    LockedImage& operator=(const LockedImage&) = delete;

    [[nodiscard]] std::uint32_t slot() const { return m_slot; }

    /// The bytes at the time of locking, and the current ones.
    [[nodiscard]] const std::vector<std::uint8_t>& lockedBytes() const { return m_bytes; }
    [[nodiscard]] std::vector<std::uint8_t> bytes() const;

private:
    const Orvo::CAM_STRM_HANDLE m_stream;
    std::uint32_t m_slot = 0;
    Orvo::CAM_IMAGE_INFO m_info = {};
    std::vector<std::uint8_t> m_bytes;
};
