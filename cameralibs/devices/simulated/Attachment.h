#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace orvo::simulated {

/// What of a simulated camera outlives its being opened and closed: whether it is plugged in, and what it remembers
/// without power. Accessed by one thread at a time.
class Attachment {
public:
    [[nodiscard]] bool isPlugged() const;

    /// Unplugs it, for good where `seconds` is 0.
    void unplug(unsigned seconds);

    std::string userName;

private:
    using Clock = std::chrono::steady_clock;

    bool m_plugged = true;
    std::optional<Clock::time_point> m_back;
};

} // namespace orvo::simulated
