#include "cameralibs/transport/connection/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace cameralibs::transport {

SharedMemory::SharedMemory(const Descriptor& memory, std::uint64_t size)
{
    // If the memory could shrink, writing into it could raise SIGBUS.
    struct stat status {};
    const int seals = ::fcntl(memory.get(), F_GET_SEALS);
    if (size == 0 || seals < 0 || (seals & F_SEAL_SHRINK) == 0 || ::fstat(memory.get(), &status) != 0 ||
        static_cast<std::uint64_t>(status.st_size) < size)
        return;
    void* const begin = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory.get(), 0);
    if (begin == MAP_FAILED)
        return;
    m_begin = static_cast<std::uint8_t*>(begin);
    m_size = size;
}

SharedMemory::~SharedMemory()
{
    if (m_begin != nullptr)
        ::munmap(m_begin, m_size);
}

std::uint8_t* SharedMemory::buffer(std::uint64_t offset, std::uint64_t capacity) const noexcept
{
    return capacity != 0 && offset < m_size && capacity <= m_size - offset ? m_begin + offset : nullptr;
}

} // namespace cameralibs::transport
