#pragma once

#include <cstdint>
#include <optional>

namespace cameralibs {

/// Converts the block ids of a camera to frame numbers. Block ids of GigE Vision 1 have 16 bits and wrap from 65535 to
/// 1; frame numbers keep rising, by one for each image that was sent.
class BlockIds {
public:
    [[nodiscard]] std::uint64_t next(std::uint64_t id);

private:
    std::optional<std::uint64_t> m_lastId;
    std::uint64_t m_number = 0;
};

} // namespace cameralibs
