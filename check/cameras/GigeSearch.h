#pragma once

#include "check/machine/Interfaces.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// What a GigE Vision camera answers to a search: texts of its own, which nobody has checked.
struct GigeAnswer {
    std::string interface; ///< on which the answer came
    std::uint64_t mac = 0;
    std::uint32_t address = 0;
    std::uint32_t mask = 0;
    std::string vendor;
    std::string model;
    std::string serial;
    std::string userName;
};

/// Nothing for what is no whole answer to the question of this id.
[[nodiscard]] std::optional<GigeAnswer> answerIn(const std::uint8_t* bytes, std::size_t size, std::uint16_t id);

/// Asks on every interface that is switched on, for about a second whatever comes. The camera libraries tell neither
/// the address of a camera that they cannot open, nor of cameras that are in another network than the interface: those
/// are asked to answer all, which needs no way back to the machine.
[[nodiscard]] std::vector<GigeAnswer> searchGige(const std::vector<Interface>& interfaces);

} // namespace check
