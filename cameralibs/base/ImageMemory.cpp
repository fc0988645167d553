#include "cameralibs/base/ImageMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <limits>
#include <new>
#include <utility>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

namespace cameralibs {

namespace {

std::size_t pageSize()
{
    return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/// Tells the address sanitizer whether the gaps after the buffers may be accessed.
void setGapsUsable([[maybe_unused]] const ImageMemory& memory, [[maybe_unused]] bool usable)
{
#ifdef __SANITIZE_ADDRESS__
    for (std::size_t i = 0; i < memory.count(); ++i) {
        std::uint8_t* const gap = memory.data(i) + memory.bytesOfEach();
        std::uint8_t* const next = memory.data(i + 1);
        if (usable) {
            __asan_unpoison_memory_region(gap, static_cast<std::size_t>(next - gap));
        } else {
            __asan_poison_memory_region(gap, static_cast<std::size_t>(next - gap));
        }
    }
#endif
}

} // namespace

ImageMemory::ImageMemory(std::size_t count, std::size_t bytes)
    : m_count(count)
    , m_bytes(bytes)
{
    const std::size_t page = pageSize();
    constexpr auto kLargest = static_cast<std::size_t>(std::numeric_limits<off_t>::max());
    if (bytes > kLargest - 2 * page || (bytes / page + 2) * page > kLargest / count)
        throw std::bad_alloc();
    m_stride = ((bytes + page - 1) / page + 1) * page;
    m_size = count * m_stride;

    m_descriptor = ::memfd_create("images", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    // Avoid the standard descriptors in case the program has closed them: its output would be written to images.
    if (m_descriptor >= 0 && m_descriptor <= STDERR_FILENO)
        ::close(std::exchange(m_descriptor, ::fcntl(m_descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)));
    // A process that shares the memory can neither truncate it under a reader nor make it grow.
    const bool ready = m_descriptor >= 0 && ::ftruncate(m_descriptor, static_cast<off_t>(m_size)) == 0 &&
                       ::fcntl(m_descriptor, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0;
    void* const begin =
        ready ? ::mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED, m_descriptor, 0) : MAP_FAILED;
    if (begin == MAP_FAILED) {
        release();
        throw std::bad_alloc();
    }
    m_begin = static_cast<std::uint8_t*>(begin);
    setGapsUsable(*this, false);
}

ImageMemory::~ImageMemory()
{
    release();
}

void ImageMemory::release() noexcept
{
    if (m_begin != nullptr) {
        setGapsUsable(*this, true);
        ::munmap(m_begin, m_size);
    }
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

} // namespace cameralibs
