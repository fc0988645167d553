#pragma once

#include "cameralibs/devices/Device.h"

#include <cstdint>
#include <string>

namespace cameralibs {

/// Counts the images of one acquisition for the diagnostic log. The note functions run on the source's thread; start()
/// and end() are called while the source is stopped.
class ImageTally {
public:
    void start(std::string camera);

    void noteImage(std::uint64_t frameNumber, bool dropped);
    void noteFailure(Orvo::CAM_API_STATUS status);

    /// Does nothing unless start() was called since the last end().
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
