#pragma once

#include "camera/OrvoCamApi.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace cameralibs {

/// A flag to wait for: once set it stays set until it is cleared. Any thread.
class Signal {
public:
    void set();
    void clear();

    /// Sets the signal and the flag in one: nobody sees one without the other. Nothing where the flag is set already:
    /// the signal may have been cleared since, for another camera. Returns whether it was not.
    [[nodiscard]] bool setTogetherWith(std::atomic<bool>& flag);

    /// Every wait, those that are under way included, answers `status` from now on.
    void close(Orvo::CAM_API_STATUS status);

    /// CAM_API_STS_SUCCESS when set, CAM_API_STS_TIMEOUT when not within the time; kForever waits without end.
    [[nodiscard]] Orvo::CAM_API_STATUS wait(std::uint32_t milliseconds);

    static constexpr std::uint32_t kForever = 0xFFFFFFFF;

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_set = false;
    bool m_closed = false;
    Orvo::CAM_API_STATUS m_closedStatus = Orvo::CAM_API_STS_SUCCESS;
};

} // namespace cameralibs
