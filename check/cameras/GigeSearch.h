#pragma once

#include "check/machine/Interfaces.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// A GigE Vision camera's answer to a search. The texts are the camera's own and unchecked.
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

/// No value unless it is a complete answer to the question with this id.
[[nodiscard]] std::optional<GigeAnswer> answerIn(const std::uint8_t* bytes, std::size_t size, std::uint16_t id);

/// An interface on which no question could be sent, and why.
struct SilentInterface {
    std::string name;
    std::string reason;
};

struct GigeSearch {
    std::vector<GigeAnswer> answers;
    std::vector<SilentInterface> silent;
};

/// Asks on every interface that is switched on, and listens for a second. The exported functions neither tell the
/// address of a camera nor list cameras in another network than the interface. Those cameras are asked to broadcast
/// their answer, because they have no route to this machine.
[[nodiscard]] GigeSearch searchGige(const std::vector<Interface>& interfaces);

} // namespace check
