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

/// What a camera remembers without power.
struct NonVolatile {
    static constexpr std::size_t kUserSets = 3; ///< the first is that of the factory

    std::string userName;
    std::uint32_t defaultSet = 0;
    std::array<std::vector<std::uint8_t>, kUserSets>
        sets; ///< as RegisterMemory saves them; empty before the first time
    std::array<std::string, kUserSets> descriptions{"Settings of the factory", "", ""};
};

/// What of a simulated camera outlives its being opened and closed. Cameras are listed and used at the same time, so it
/// is safe from any thread.
class Attachment {
public:
    [[nodiscard]] bool isPlugged() const;

    /// Unplugs it, for good where `seconds` is 0.
    void unplug(unsigned seconds);

    [[nodiscard]] NonVolatile memory() const;
    void setMemory(const NonVolatile& memory);

private:
    using Clock = std::chrono::steady_clock;

    mutable std::mutex m_mutex;
    bool m_plugged = true;
    std::optional<Clock::time_point> m_back;
    NonVolatile m_memory;
};

} // namespace cameralibs::simulated
