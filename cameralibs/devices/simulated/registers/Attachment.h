#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace cameralibs::simulated {

/// The camera's non-volatile memory.
struct NonVolatile {
    static constexpr std::size_t kUserSets = 3; ///< the first holds the factory settings

    std::string userName;
    std::uint32_t defaultSet = 0;
    std::array<std::vector<std::uint8_t>, kUserSets> sets; ///< as saved by RegisterMemory; empty if never saved
    std::array<std::string, kUserSets> descriptions{"Settings of the factory", "", ""};
};

/// The state of a simulated camera that survives closing it. Thread-safe, because cameras are listed while others are
/// in use.
class Attachment {
public:
    [[nodiscard]] bool isPlugged() const
    {
        const std::lock_guard lock(m_mutex);
        return m_plugged || (m_back.has_value() && Clock::now() >= *m_back);
    }

    /// Unplugs the camera for `seconds`; 0 means for good.
    void unplug(unsigned seconds)
    {
        const std::lock_guard lock(m_mutex);
        m_plugged = false;
        m_back.reset();
        if (seconds > 0)
            m_back = Clock::now() + std::chrono::seconds(seconds);
    }

    [[nodiscard]] NonVolatile memory() const
    {
        const std::lock_guard lock(m_mutex);
        return m_memory;
    }

    void setMemory(const NonVolatile& memory)
    {
        const std::lock_guard lock(m_mutex);
        m_memory = memory;
    }

private:
    using Clock = std::chrono::steady_clock;

    mutable std::mutex m_mutex;
    bool m_plugged = true;
    std::optional<Clock::time_point> m_back;
    NonVolatile m_memory;
};

} // namespace cameralibs::simulated
