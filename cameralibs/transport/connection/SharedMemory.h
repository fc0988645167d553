#pragma once

#include "cameralibs/transport/Channel.h"

#include <cstdint>

namespace cameralibs::transport {

/// The memory of a stream's buffers, which belongs to the library.
class SharedMemory {
public:
    SharedMemory() = default;

    /// Maps it; empty() where it is not what the library says.
    SharedMemory(const Descriptor& memory, std::uint64_t size);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    [[nodiscard]] bool empty() const noexcept { return m_begin == nullptr; }

    /// Null where it does not lie within.
    [[nodiscard]] std::uint8_t* buffer(std::uint64_t offset, std::uint64_t capacity) const noexcept;

private:
    std::uint8_t* m_begin = nullptr;
    std::uint64_t m_size = 0;
};

} // namespace cameralibs::transport
