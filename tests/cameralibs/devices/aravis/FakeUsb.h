#pragma once

#include <cstdint>

/// The bus of the fake libusb, with one camera on it from the start. Linked into a program, or preloaded, the library
/// stands before the one that Aravis asks for USB devices.
namespace usb {

constexpr const char* kGuid = "FA4E00000001";

/// A camera as from its factory, in place of one that was unplugged.
void plugIn();
void unplug();

/// It is gone before it answers the n-th command from now, counted from 1.
void unplugAtCommand(int n);

/// Whether it answers; one that does not stays on the bus.
void answerCommands(bool answered);

/// Whether the system tells of a device that leaves; else it is found out by a transfer that fails.
void announceRemoval(bool announced);

/// Whether the calling thread is just telling of a device that has left, and how often any has done so to its end.
[[nodiscard]] bool tellsOfRemoval();
[[nodiscard]] int removalsTold();

/// Registers of the camera that was plugged in last.
[[nodiscard]] std::uint32_t value(std::uint64_t address);
void setValue(std::uint64_t address, std::uint32_t value);

/// Commands so far.
[[nodiscard]] int commands();

} // namespace usb
