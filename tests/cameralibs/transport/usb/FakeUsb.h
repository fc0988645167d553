#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A bus with one USB3 Vision camera on it from the start. It is shared by the test and the transports that it starts:
/// those get a libusb of our own, preloaded, that stands before the one which Aravis asks for USB devices. See
/// docs/usb-emulator.md.
namespace usb {

constexpr const char* kGuid = "FA4E00000001";

/// Cameras on the bus at most. The first one is plugged into port 0.
constexpr int kPorts = 2;

/// A camera as from its factory, without a fault, in place of one that was unplugged.
void plugIn(int port = 0);
void unplug(int port = 0);

/// It is gone before it answers the n-th command from now, counted from 1.
void unplugAtCommand(int n);

/// Whether it answers; one that does not stays on the bus.
void answerCommands(bool answered);

/// Whether the system tells of a device that leaves; else it is found out by a transfer that fails.
void announceRemoval(bool announced);

/// For faults that do not end.
constexpr int kForEver = -1;

/// The camera at port 0 has this fault in the next `times` commands or images; one in its memory it has from now on.
/// It takes the place of the fault before. False where Faults.cpp has none of that name.
[[nodiscard]] bool setFault(const std::string& name, int times = kForEver);
void clearFault();

/// Distorts the answers and images of the camera at port 0, see tests/attack/fuzz/PacketDistortion.h. Bytes that do not
/// fit are left out.
void distortPackets(std::string_view input);

/// How often the fault has shown itself.
[[nodiscard]] int faultsShown();

[[nodiscard]] std::vector<std::string> faultNames();

/// Whether transports stream by libusb's asynchronous transfers, which they do not of themselves.
void useAsynchronousMode(bool asynchronous);

/// Asynchronous transfers that were completed so far.
[[nodiscard]] int asynchronousTransfers();

/// What a transport does with the bus.
enum class Moment : std::uint32_t { listing, command, answer, packet };

/// The transport sends itself a signal at the n-th of these moments from now, counted from 1; 0: never.
void signalAt(Moment moment, int n, int signal);

/// Whether that has happened since it was asked for.
[[nodiscard]] bool signalSent();

/// Registers of the camera at port 0.
[[nodiscard]] std::uint32_t value(std::uint64_t address);
void setValue(std::uint64_t address, std::uint32_t value);

/// Images that the camera at port 0 has sent since it was last started.
[[nodiscard]] std::uint64_t imagesSent();

/// Commands so far.
[[nodiscard]] int commands();

} // namespace usb
