#pragma once

#include "cameralibs/base/GlibOwners.h"

#include <arv.h>

#include <cstdint>
#include <string_view>

namespace cameralibs::simulated {

/// The result of a register access.
enum class AccessResult { Done, NotConnected, InvalidAddress, WriteProtected, Refused, InvalidValue, Failed };

/// Anything with registers: a built-in camera, or the plain memory of a camera made from a description file.
class RegisterSpace {
public:
    virtual ~RegisterSpace() = default;

    [[nodiscard]] virtual AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) = 0;
    [[nodiscard]] virtual AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) = 0;
};

/// Wraps a register space as an ArvDevice for Aravis' node map. `space` and `description` must outlive it.
[[nodiscard]] GObjectPointer<ArvDevice> makeRegisterDevice(RegisterSpace& space, std::string_view description);

} // namespace cameralibs::simulated
