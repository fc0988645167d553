#include "cameralibs/transport/usb/UsbTraffic.h"

#include "cameralibs/transport/AravisHooks.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string_view>
#include <thread>

#include <dlfcn.h>

namespace cameralibs::transport {

namespace {

// Errors of libusb.
constexpr int kIoError = -1;
constexpr int kNoDevice = -4;
constexpr int kTimeout = -7;
constexpr int kPipe = -9;

constexpr unsigned char kEndpointIn = 0x80;

// GenCP over USB3 Vision: a key, a status, the command, a length and an id, all little-endian.
constexpr std::size_t kHeaderSize = 12;
constexpr std::string_view kControlKey = "U3VC";
constexpr std::size_t kStatusOffset = 4;
constexpr std::size_t kCommandOffset = 6;
constexpr std::size_t kIdOffset = 10;
constexpr std::uint16_t kReadAnswer = 0x0801;
constexpr std::uint16_t kPendingAnswer = 0x0805;

// The trailer of an image: a key, a length, the block id, a status, and how many bytes were sent.
constexpr std::string_view kTrailerKey = "U3VT";
constexpr std::size_t kTrailerSize = 28;
constexpr std::size_t kBlockIdOffset = 8;
constexpr std::size_t kTrailerStatusOffset = 16;
constexpr std::size_t kSentOffset = 20;

/// Larger ones are part of an image that happens to begin with the key.
constexpr std::size_t kLargestTrailer = 1024;

/// Pause after a failed transfer; Aravis retries without one.
constexpr std::chrono::milliseconds kPause{1};

struct Traffic {
    std::atomic<unsigned char> controlEndpoint{0}; ///< endpoint of the answers; 0 before the first command
    std::atomic<std::uint16_t> lastId{0};          ///< id of the last command
    std::atomic<bool> answered{false};             ///< the last command was answered
    std::atomic<bool> claimRefused{false};

    struct Trailer {
        std::uint64_t blockId;
        UsbTrailer trailer;
    };
    std::mutex mutex; ///< guards what follows
    std::array<Trailer, 64> trailers{};
    std::size_t trailerCount = 0; ///< trailers noted in total; the array keeps the latest
};

Traffic& usbTraffic()
{
    static Traffic theTraffic;
    return theTraffic;
}

/// The host is little-endian, too.
template <class Number> Number number(const unsigned char* packet, std::size_t offset)
{
    Number value = 0;
    std::memcpy(&value, packet + offset, sizeof value);
    return value;
}

bool hasKey(const unsigned char* packet, std::string_view key)
{
    return std::equal(key.begin(), key.end(), packet);
}

void noteCommand(unsigned char endpoint, const unsigned char* packet, std::size_t size)
{
    if (size < kHeaderSize || !hasKey(packet, kControlKey))
        return;
    usbTraffic().controlEndpoint = endpoint | kEndpointIn;
    usbTraffic().lastId = number<std::uint16_t>(packet, kIdOffset);
    usbTraffic().answered = false;
}

/// False if the answer is truncated: Aravis would take stale memory behind it for the camera's data.
bool noteAnswer(const unsigned char* packet, std::size_t size, std::size_t room)
{
    if (size < kHeaderSize)
        return false;
    if (!hasKey(packet, kControlKey))
        return true;
    const auto command = number<std::uint16_t>(packet, kCommandOffset);
    const bool asked = number<std::uint16_t>(packet, kIdOffset) == usbTraffic().lastId;
    const bool good = number<std::uint16_t>(packet, kStatusOffset) == 0;
    if (asked && good && command == kReadAnswer && size < room)
        return false;
    if (asked && command != kPendingAnswer)
        usbTraffic().answered = true;
    reportAnswer(command == kPendingAnswer ? Answer::pending : Answer::useful);
    return true;
}

void noteTrailer(const unsigned char* packet, std::size_t size)
{
    if (size < kTrailerSize || size > kLargestTrailer || !hasKey(packet, kTrailerKey))
        return;
    const std::lock_guard lock(usbTraffic().mutex);
    auto& trailers = usbTraffic().trailers;
    trailers[usbTraffic().trailerCount++ % trailers.size()] = {
        number<std::uint64_t>(packet, kBlockIdOffset),
        {number<std::uint16_t>(packet, kTrailerStatusOffset), number<std::uint64_t>(packet, kSentOffset)}};
}

template <class Function> Function* original(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

// Looked up before any thread starts.
using Transfer = int(void*, unsigned char, unsigned char*, int, int*, unsigned);
using ClearHalt = int(void*, unsigned char);
using Claim = int(void*, int);
const auto s_transfer = original<Transfer>("libusb_bulk_transfer");
const auto s_clearHalt = original<ClearHalt>("libusb_clear_halt");
const auto s_claim = original<Claim>("libusb_claim_interface");

} // namespace

std::optional<UsbTrailer> trailerOf(std::uint64_t blockId)
{
    const std::lock_guard lock(usbTraffic().mutex);
    const auto& trailers = usbTraffic().trailers;
    const std::size_t count = std::min(usbTraffic().trailerCount, trailers.size());
    for (std::size_t age = 1; age <= count; ++age) {
        const auto& noted = trailers[(usbTraffic().trailerCount - age) % trailers.size()];
        if (noted.blockId == blockId)
            return noted.trailer;
    }
    return {};
}

bool claimRefused()
{
    return usbTraffic().claimRefused;
}

bool answersUsbCommands()
{
    return usbTraffic().answered;
}

} // namespace cameralibs::transport

using namespace cameralibs::transport;

extern "C" {

__attribute__((visibility("default"))) int libusb_bulk_transfer(void* device, unsigned char endpoint,
                                                                unsigned char* data, int size, int* transferred,
                                                                unsigned timeout)
{
    const bool in = (endpoint & kEndpointIn) != 0;
    if (!in)
        noteCommand(endpoint, data, static_cast<std::size_t>(size));
    const int result = s_transfer(device, endpoint, data, size, transferred, timeout);
    // Aravis never clears a halt, so that nothing would come through this endpoint any more.
    if (result == kPipe)
        s_clearHalt(device, endpoint);
    if (result != 0 && result != kTimeout && result != kNoDevice)
        std::this_thread::sleep_for(kPause);
    if (result != 0 || !in)
        return result;
    const auto received = static_cast<std::size_t>(*transferred);
    if (endpoint == usbTraffic().controlEndpoint)
        return noteAnswer(data, received, static_cast<std::size_t>(size)) ? result : kIoError;
    noteTrailer(data, received);
    return result;
}

__attribute__((visibility("default"))) int libusb_claim_interface(void* device, int interface)
{
    const int result = s_claim(device, interface);
    usbTraffic().claimRefused = usbTraffic().claimRefused || result != 0;
    return result;
}

} // extern "C"
