#pragma once

#include "cameralibs/devices/Device.h"

#include <cstdint>
#include <string>

namespace cameralibs {

/// What became of the images of one start, for the diagnostic log. On the source's thread, but for start and end, when
/// the source is stopped.
class ImageTally {
public:
    void start(std::string camera);

    void noteImage(std::uint64_t frameNumber, bool dropped);
    void noteFailure(Orvo::CAM_API_STATUS status);

    /// Nothing where nothing was started since the last end.
    void end() noexcept;

private:
    std::string m_camera;
    bool m_started = false;
    std::uint64_t m_images = 0;
    std::uint64_t m_dropped = 0;
    std::uint64_t m_failed = 0;
    std::uint64_t m_firstNumber = 0;
    std::uint64_t m_lastNumber = 0;
};

} // namespace cameralibs
