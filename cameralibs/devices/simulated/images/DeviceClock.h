#pragma once

#include <atomic>
#include <cstdint>

namespace cameralibs::simulated {

/// The clock for the time stamps of images. Thread-safe.
class DeviceClock {
public:
    DeviceClock();

    /// Time since construction or the last reset.
    [[nodiscard]] std::int64_t nanoseconds() const;

    /// Time since construction.
    [[nodiscard]] double secondsOn() const;

    void reset();

private:
    const std::int64_t m_switchedOn;
    std::atomic<std::int64_t> m_zero;
};

} // namespace cameralibs::simulated
