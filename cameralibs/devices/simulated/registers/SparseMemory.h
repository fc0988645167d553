#pragma once

#include "cameralibs/devices/simulated/registers/RegisterSpace.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>

namespace cameralibs::simulated {

/// Register memory over the whole 64-bit address space, because a description file may use any address. Unwritten bytes
/// read as zero.
class SparseMemory : public RegisterSpace {
public:
    [[nodiscard]] AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) override;
    [[nodiscard]] AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) override;

private:
    static constexpr std::size_t kPageSize = 4096;
    using Page = std::array<std::uint8_t, kPageSize>;

    std::mutex m_mutex;
    std::map<std::uint64_t, Page> m_pages; ///< by address / kPageSize
};

} // namespace cameralibs::simulated
