#pragma once

/// What the emulated camera does wrong on command: one named row for each fault, in the table of Faults.cpp.
///
/// To add one, give a function of one of the types below a row there, and the status or log line that it leads to a row
/// in UsbFaultTest.cpp.

#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include <chrono>
#include <string_view>
#include <variant>
#include <vector>

namespace usb {

/// A transfer from the camera's control endpoint.
struct Answer {
    Bytes bytes;
    int result = 0;                     ///< of libusb
    std::chrono::milliseconds after{0}; ///< the command
    bool forEver = false;               ///< it comes again and again
};

/// A command, and what the honest camera says to it.
struct Exchange {
    const Bytes& command;
    std::vector<Answer> answers;
    int result = 0;         ///< of the transfer that sends the command
    bool unplugged = false; ///< after the command
};

/// A transfer from the stream endpoint, after the honest camera has filled it.
struct StreamTransfer {
    Part part;
    std::uint64_t image;
    std::uint8_t* data;
    std::size_t size;
    std::size_t room;
    int result = 0;                     ///< of libusb
    bool skipped = false;               ///< it does not take place
    bool unplugged = false;             ///< instead
    std::chrono::milliseconds pause{0}; ///< before the next one
};

/// In registers and description, when it is commanded.
using MemoryFault = void (*)(FakeCamera& camera);

/// In each command.
using AnswerFault = void (*)(Exchange& exchange);

/// In each transfer of an image.
using StreamFault = void (*)(StreamTransfer& transfer);

/// Of the system: what libusb says when the device is opened and claimed.
struct SystemFault {
    int open;
    int claim;
};

struct Fault {
    const char* name;
    std::variant<MemoryFault, AnswerFault, StreamFault, SystemFault> show;
};

[[nodiscard]] const std::vector<Fault>& faults();

/// Null where there is none of that name.
[[nodiscard]] const Fault* faultNamed(std::string_view name);

} // namespace usb
