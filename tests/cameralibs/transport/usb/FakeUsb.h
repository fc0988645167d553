#pragma once

#include <cstdint>

/// A bus with one USB3 Vision camera on it from the start. It is shared by the test and the transports that it starts:
/// those get a libusb of our own, preloaded, that stands before the one which Aravis asks for USB devices.
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

/// What a transport does with the bus.
enum class Moment : std::uint32_t { listing, command, answer, packet };

/// The transport sends itself a signal at the n-th of these moments from now, counted from 1; 0: never.
void signalAt(Moment moment, int n, int signal);

/// Whether that has happened since it was asked for.
[[nodiscard]] bool signalSent();

/// Registers of the camera that was plugged in last.
[[nodiscard]] std::uint32_t value(std::uint64_t address);
void setValue(std::uint64_t address, std::uint32_t value);

/// Commands so far.
[[nodiscard]] int commands();

} // namespace usb
