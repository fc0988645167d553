#pragma once

/// Connects the registers of a simulated camera with the thread that generates its images. The registers set the state;
/// the thread waits here for its next task. Thread-safe.

#include "cameralibs/devices/simulated/images/FrameSettings.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace cameralibs::simulated {

class Acquisition {
public:
    using Clock = std::chrono::steady_clock;

    // Called by the registers.

    void configure(const FrameSettings& settings);
    void start();
    void stop();
    void trigger();
    void sendErrors(std::uint32_t count); ///< discarded if no source is open
    void disconnect();
    [[nodiscard]] bool isActive() const;

    /// Images taken since power-up.
    [[nodiscard]] std::uint64_t imageCount() const;

    // Called by the source of images.

    enum class Task { Image, Error, End };

    /// The next task of the source.
    struct Next {
        Task task = Task::End;
        FrameSettings settings; ///< for Task::Image
    };

    void openSource();
    void closeSource();

    /// Waits until an image is due, an error is to be sent or the source is closed.
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
    std::uint32_t m_framesSent = 0; ///< in the current acquisition
    std::uint32_t m_triggers = 0;
    std::uint32_t m_errors = 0;

    bool m_scheduled = false;
    Clock::time_point m_due; ///< time of the next image if one is scheduled
};

} // namespace cameralibs::simulated
