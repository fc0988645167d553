#pragma once

#include "check/machine/Firewall.h"
#include "check/machine/Interfaces.h"
#include "check/machine/UsbDevices.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace check {

/// What the checks know of the machine. What is not told is nothing.
struct Machine {
    std::optional<std::vector<Interface>> interfaces;
    std::optional<std::vector<UsbDevice>> usbDevices;
    std::optional<std::int64_t> usbMemory;     ///< MiB for all cameras together; 0: as much as there is
    std::optional<std::int64_t> receiveBuffer; ///< bytes that a socket may have at most
    std::vector<Program> cameraPrograms;
    Firewall firewall;
    bool udevRule = false;  ///< the one that lets users open USB3 Vision cameras
    bool inPlugdev = false; ///< this user, in this session
    bool root = false;
};

[[nodiscard]] Machine readMachine(const SystemFiles& files);

/// Datagrams that found no room in a receive buffer so far; nothing where the system does not tell.
[[nodiscard]] std::optional<std::uint64_t> receiveBufferErrors(const SystemFiles& files);

} // namespace check
