#pragma once

#include "cameralibs/transport/Channel.h"

#include <cstdint>

namespace cameralibs::transport {

/// The library's memory for the buffers of a stream.
class SharedMemory {
public:
    SharedMemory() = default;

    /// Maps the memory. empty() if it is not sealed against shrinking, or smaller than `size`.
    SharedMemory(const Descriptor& memory, std::uint64_t size);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    [[nodiscard]] bool empty() const noexcept { return m_begin == nullptr; }

    /// Null if the buffer is not within the memory.
    [[nodiscard]] std::uint8_t* buffer(std::uint64_t offset, std::uint64_t capacity) const noexcept;

private:
    std::uint8_t* m_begin = nullptr;
    std::uint64_t m_size = 0;
};

} // namespace cameralibs::transport
