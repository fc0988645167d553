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

/// A device with the interface class of USB3 Vision, even if it cannot be opened. The texts are the device's own.
struct UsbDevice {
    std::string maker;
    std::string model;
    std::string serial;
    std::string node;                  ///< "/dev/bus/usb/002/003"
    std::optional<std::int64_t> speed; ///< Mbit/s
    bool hasNode = false;
    bool allowed = false;         ///< this user may read and write the node
    std::string controlInterface; ///< as the kernel calls it: "2-1:1.0"
    std::string driver;           ///< of its control interface: "usbfs" while a program has claimed it, or empty
    std::vector<Program> holders; ///< that have the node open, as far as this user may see
};

/// No value if /sys does not list them.
[[nodiscard]] std::optional<std::vector<UsbDevice>> readUsbDevices(const SystemFiles& files);

/// Programs on this machine that are using our camera library to search for cameras or to access one.
[[nodiscard]] std::vector<Program> readCameraPrograms(const SystemFiles& files);

} // namespace check
