#pragma once

#include <cstddef>
#include <cstdint>

namespace cameralibs {

/// The buffers of a stream in one block of memory that can be shared with another process. That process receives a copy
/// of the descriptor, maps `size()` bytes of it and finds each buffer at its `offset()`.
///
/// Guarantees:
/// - All bytes are zero at first. Pages that are never touched take no memory.
/// - The descriptor belongs to this object and is closed on exec. The size of the memory behind it is sealed.
/// - Each buffer begins on a page boundary. The rest of its last page and one more page form a gap: the address
///   sanitizer reports every access to it.
class ImageMemory {
public:
    /// Throws std::bad_alloc if there is not enough memory or address space, or no free descriptor. `count` and `bytes`
    /// must not be 0.
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
