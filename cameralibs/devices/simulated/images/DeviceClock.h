#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace cameralibs::simulated {

/// The clock for the time stamps of images. Thread-safe.
class DeviceClock {
public:
    /// Time since construction or the last reset.
    [[nodiscard]] std::int64_t nanoseconds() const { return now() - m_zero.load(std::memory_order_relaxed); }

    /// Time since construction.
    [[nodiscard]] double secondsOn() const { return static_cast<double>(now() - m_switchedOn) / 1e9; }

    void reset() { m_zero.store(now(), std::memory_order_relaxed); }

private:
    [[nodiscard]] static std::int64_t now()
    {
        return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    }

    const std::int64_t m_switchedOn = now();
    std::atomic<std::int64_t> m_zero{m_switchedOn};
};

} // namespace cameralibs::simulated
