#pragma once

#include "check/machine/SystemFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

struct Program {
    int process = 0;
    std::string name;
};

/// A device with the interface class of USB3 Vision, whether or not it can be opened. The texts are its own.
struct UsbDevice {
    std::string maker;
    std::string model;
    std::string serial;
    std::string node;                  ///< "/dev/bus/usb/002/003"
    std::optional<std::int64_t> speed; ///< Mbit/s
    bool hasNode = false;
    bool allowed = false;         ///< this user may read and write the node
    std::string controlInterface; ///< as the kernel calls it: "2-1:1.0"
    std::string driver;           ///< of its control interface: "usbfs" while a program has it, empty without one
    std::vector<Program> holders; ///< that have the node open, of those that this user may look at
};

/// Nothing where the machine has no USB, or does not tell.
[[nodiscard]] std::optional<std::vector<UsbDevice>> readUsbDevices(const SystemFiles& files);

/// Programs of this machine that have found or opened cameras by the camera libraries.
[[nodiscard]] std::vector<Program> readCameraPrograms(const SystemFiles& files);

} // namespace check
