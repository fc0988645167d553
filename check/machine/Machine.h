#pragma once

#include "check/machine/Firewall.h"
#include "check/machine/Interfaces.h"
#include "check/machine/UsbDevices.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace check {

/// What the checks know about the machine. What cannot be read has no value.
struct Machine {
    std::optional<std::vector<Interface>> interfaces;
    std::optional<std::vector<UsbDevice>> usbDevices;
    bool withoutUsb = false;                   ///< the kernel tells that there is no USB
    std::optional<std::int64_t> usbMemory;     ///< MiB for all cameras together; 0: no limit
    std::optional<std::int64_t> receiveBuffer; ///< bytes that a socket may have at most
    bool receiveBufferSetHere = false;         ///< only the first network namespace can change the limit
    std::vector<Program> cameraPrograms;
    Firewall firewall;
    bool udevRule = false;  ///< the one that lets users open USB3 Vision cameras
    bool inPlugdev = false; ///< this user, in this session
    bool root = false;
};

[[nodiscard]] Machine readMachine(const SystemFiles& files);

/// How many datagrams have been dropped so far because a receive buffer was full. No value if it cannot be read.
[[nodiscard]] std::optional<std::uint64_t> receiveBufferErrors(const SystemFiles& files);

} // namespace check
