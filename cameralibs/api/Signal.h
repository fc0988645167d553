#pragma once

#include "camera/OrvoCamApi.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace cameralibs {

/// An event to wait for. Once set it stays set until it is cleared. Thread-safe.
class Signal {
public:
    void clear();

    /// Sets the flag and the signal in one step, so no thread sees one without the other. Returns false and does
    /// nothing if the flag is already set: the signal may have been cleared for another camera in the meantime.
    [[nodiscard]] bool setTogetherWith(std::atomic<bool>& flag);

    /// From now on every wait, including those in progress, returns `status`.
    void close(Orvo::CAM_API_STATUS status);

    /// CAM_API_STS_SUCCESS once set, CAM_API_STS_TIMEOUT if not set in time. kForever waits without a time-out.
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
