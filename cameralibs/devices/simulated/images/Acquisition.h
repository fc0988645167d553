#pragma once

/// Where the registers of a built-in camera and the thread that makes its images meet. The registers say what to do;
/// the thread asks what comes next. Safe from any thread.

#include "cameralibs/devices/simulated/images/FrameSettings.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace cameralibs::simulated {

class Acquisition {
public:
    using Clock = std::chrono::steady_clock;

    // For the registers.

    void configure(const FrameSettings& settings);
    void start();
    void stop();
    void trigger();
    void sendErrors(std::uint32_t count); ///< forgotten where no source is open
    void disconnect();
    [[nodiscard]] bool isActive() const;

    /// Images taken since the camera was switched on.
    [[nodiscard]] std::uint64_t imageCount() const;

    // For the source of images.

    enum class Task { Image, Error, End };

    /// What the source does next.
    struct Next {
        Task task = Task::End;
        FrameSettings settings; ///< of an image
    };

    void openSource();
    void closeSource();

    /// Waits until an image is due, an error is to be sent or the source was closed.
    [[nodiscard]] Next waitForNext();

private:
    [[nodiscard]] bool mayExpose() const;
    void scheduleFirst(Clock::time_point now);
    void takeImage(Clock::time_point now);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;

    FrameSettings m_settings;
    bool m_connected = true;
    bool m_active = false;
    bool m_sourceOpen = false;
    std::uint64_t m_images = 0;
    std::uint32_t m_framesSent = 0; ///< of the present acquisition
    std::uint32_t m_triggers = 0;
    std::uint32_t m_errors = 0;

    bool m_scheduled = false;
    Clock::time_point m_due; ///< of the next image, where one is scheduled
};

} // namespace cameralibs::simulated
