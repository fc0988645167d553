#pragma once

#include <cstddef>
#include <cstdint>

namespace cameralibs {

/// The buffers of a stream in one piece of memory that can be shared with another process: that process receives a copy
/// of the descriptor, maps `size()` bytes of it and finds each buffer at its `offset()`.
///
/// What holds as long as this lives:
/// - All bytes are zero at first, and memory that nobody touches costs nothing.
/// - The descriptor belongs to this object and is closed on exec; the size of what is behind it can no longer change.
/// - Each buffer begins at a page. The rest of its last page and one page more belong to nobody: the address sanitizer
///   reports who touches them.
class ImageMemory {
public:
    /// Throws std::bad_alloc without the memory, the addresses or the descriptor. `count` and `bytes` are not 0.
    ImageMemory(std::size_t count, std::size_t bytes);
    ~ImageMemory();
    ImageMemory(const ImageMemory&) = delete;
    ImageMemory& operator=(const ImageMemory&) = delete;

    [[nodiscard]] int descriptor() const noexcept { return m_descriptor; }
    [[nodiscard]] std::size_t size() const noexcept { return m_size; }

    [[nodiscard]] std::size_t count() const noexcept { return m_count; }
    [[nodiscard]] std::size_t bytesOfEach() const noexcept { return m_bytes; }

    [[nodiscard]] std::size_t offset(std::size_t buffer) const noexcept { return buffer * m_stride; }
    [[nodiscard]] std::uint8_t* data(std::size_t buffer) const noexcept { return m_begin + offset(buffer); }

private:
    void release() noexcept;

    const std::size_t m_count;
    const std::size_t m_bytes;
    std::size_t m_stride = 0;
    std::size_t m_size = 0;
    int m_descriptor = -1;
    std::uint8_t* m_begin = nullptr;
};

} // namespace cameralibs
