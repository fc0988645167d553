#pragma once

#include <cstddef>

/// What this process holds of what it may run out of.
struct Resources {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t children = 0; ///< also those that have ended and nobody has asked for
    std::size_t memory = 0;   ///< kilobytes

    [[nodiscard]] static Resources now();

    /// Whether there is no more of anything but memory.
    [[nodiscard]] bool within(const Resources& earlier) const
    {
        return descriptors <= earlier.descriptors && threads <= earlier.threads && children <= earlier.children;
    }
};
