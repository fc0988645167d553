#pragma once

#include <cstdint>
#include <optional>

namespace cameralibs {

/// Frame numbers from the block ids of a camera. The ids of GigE Vision 1 have 16 bits and go from 65535 to 1; the
/// numbers rise on, by as much as images were sent.
class BlockIds {
public:
    [[nodiscard]] std::uint64_t next(std::uint64_t id);

private:
    std::optional<std::uint64_t> m_lastId;
    std::uint64_t m_number = 0;
};

} // namespace cameralibs
