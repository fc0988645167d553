#pragma once

/// The binary interface of libusb 1.0, as far as Aravis uses it to reach a USB3 Vision camera. The library's own header
/// comes in a development package that nothing else here needs.

#include <cstdint>

#include <sys/time.h>

namespace usb {

// Errors of its functions.
constexpr int kIo = -1;
constexpr int kAccess = -3;
constexpr int kNoDevice = -4;
constexpr int kNotFound = -5;
constexpr int kBusy = -6;
constexpr int kTimeout = -7;
constexpr int kOverflow = -8;
constexpr int kPipe = -9;

struct DeviceDescriptor {
    std::uint8_t length;
    std::uint8_t type;
    std::uint16_t usbVersion;
    std::uint8_t deviceClass;
    std::uint8_t subClass;
    std::uint8_t protocol;
    std::uint8_t maxPacketSize;
    std::uint16_t vendor;
    std::uint16_t product;
    std::uint16_t version;
    std::uint8_t manufacturerText; ///< the numbers of texts
    std::uint8_t productText;
    std::uint8_t serialText;
    std::uint8_t configurations;
};

struct EndpointDescriptor {
    std::uint8_t length;
    std::uint8_t type;
    std::uint8_t address;
    std::uint8_t attributes;
    std::uint16_t maxPacketSize;
    std::uint8_t interval;
    std::uint8_t refresh;
    std::uint8_t synchAddress;
    const unsigned char* extra;
    int extraLength;
};

struct InterfaceDescriptor {
    std::uint8_t length;
    std::uint8_t type;
    std::uint8_t number;
    std::uint8_t alternate;
    std::uint8_t endpointCount;
    std::uint8_t interfaceClass;
    std::uint8_t subClass;
    std::uint8_t protocol;
    std::uint8_t text;
    const EndpointDescriptor* endpoints;
    const unsigned char* extra;
    int extraLength;
};

struct Interface {
    const InterfaceDescriptor* alternates;
    int count;
};

struct ConfigurationDescriptor {
    std::uint8_t length;
    std::uint8_t type;
    std::uint16_t totalLength;
    std::uint8_t interfaceCount;
    std::uint8_t number;
    std::uint8_t text;
    std::uint8_t attributes;
    std::uint8_t maxPower;
    const Interface* interfaces;
    const unsigned char* extra;
    int extraLength;
};

struct Context;
struct Device;
struct Handle;

constexpr int kDeviceLeft = 2;
using HotplugCallback = int (*)(Context*, Device*, int event, void* userData);

/// One that completes by itself, later.
struct AsynchronousTransfer {
    enum Status { completed, error, timedOut, cancelled, stall, noDevice, overflow };

    Handle* handle;
    std::uint8_t flags;
    unsigned char endpoint;
    unsigned char type;
    unsigned timeout;
    Status status;
    int length;
    int transferred;
    void (*callback)(AsynchronousTransfer*);
    void* userData;
    unsigned char* data;
    int packetCount; ///< of an isochronous one, whose packets follow
};

} // namespace usb
