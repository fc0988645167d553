#include "cameralibs/devices/simulated/registers/SparseMemory.h"

#include <algorithm>
#include <cstring>

namespace cameralibs::simulated {

namespace {

/// Calls `visit(page number, offset in page, offset in range, byte count)` for each page of the range.
template <typename Visit> void forEachPage(std::uint64_t address, std::size_t size, std::size_t pageSize, Visit visit)
{
    for (std::size_t done = 0; done < size;) {
        const std::uint64_t current = address + done; // wraps round at the end of the address space
        const auto offset = static_cast<std::size_t>(current % pageSize);
        const std::size_t bytes = std::min(size - done, pageSize - offset);
        visit(current / pageSize, offset, done, bytes);
        done += bytes;
    }
}

} // namespace

AccessResult SparseMemory::read(std::uint64_t address, void* buffer, std::uint32_t size)
{
    const std::lock_guard lock(m_mutex);
    auto* const out = static_cast<std::uint8_t*>(buffer);
    forEachPage(address, size, kPageSize, [&](std::uint64_t number, std::size_t offset, std::size_t at, std::size_t n) {
        const auto page = m_pages.find(number);
        if (page == m_pages.end()) {
            std::memset(out + at, 0, n);
        } else {
            std::memcpy(out + at, &page->second[offset], n);
        }
    });
    return AccessResult::Done;
}

AccessResult SparseMemory::write(std::uint64_t address, const void* buffer, std::uint32_t size)
{
    const std::lock_guard lock(m_mutex);
    const auto* const in = static_cast<const std::uint8_t*>(buffer);
    forEachPage(address, size, kPageSize, [&](std::uint64_t number, std::size_t offset, std::size_t at, std::size_t n) {
        std::memcpy(&m_pages[number][offset], in + at, n);
    });
    return AccessResult::Done;
}

} // namespace cameralibs::simulated
