#pragma once

#include <cstdint>

namespace cameralibs::simulated {

/// How a camera answers a register access.
enum class AccessResult { Done, NotConnected, InvalidAddress, WriteProtected, Refused, InvalidValue, Failed };

/// Whatever has registers: a built-in camera, or the bare memory of one made from a description file.
class RegisterSpace {
public:
    virtual ~RegisterSpace() = default;

    [[nodiscard]] virtual AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) = 0;
    [[nodiscard]] virtual AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) = 0;
};

} // namespace cameralibs::simulated
