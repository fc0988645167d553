#pragma once

#include <atomic>
#include <cstdint>

namespace cameralibs::simulated {

/// The clock that stamps the images. Safe from any thread.
class DeviceClock {
public:
    DeviceClock();

    /// Since the clock was made or reset.
    [[nodiscard]] std::int64_t nanoseconds() const;

    /// Since the clock was made.
    [[nodiscard]] double secondsOn() const;

    void reset();

private:
    const std::int64_t m_switchedOn;
    std::atomic<std::int64_t> m_zero;
};

} // namespace cameralibs::simulated
