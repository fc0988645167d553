#include "cameralibs/transport/usb/UsbReception.h"

#include "cameralibs/base/ErrorStatus.h"
#include "cameralibs/transport/usb/UsbTraffic.h"

#include <cstdint>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

// Registers of USB3 Vision. kTechnologyAddress holds the address of the technology registers; kStreamAddress, relative
// to those, that of the stream registers. The others are offsets into the latter.
constexpr std::uint64_t kTechnologyAddress = 0x01d8;
constexpr std::uint64_t kStreamAddress = 0x0020;
constexpr std::uint64_t kStreamInfo = 0x0000;
constexpr std::uint64_t kStreamPayload = 0x0008;
constexpr std::uint64_t kStreamLeader = 0x0010;
constexpr std::uint64_t kStreamTrailer = 0x0014;

/// The upper byte of the stream info is the binary logarithm of the alignment of transfers.
constexpr unsigned kAlignmentShift = 24;

/// Aravis' largest transfer has 2^20 bytes.
constexpr std::uint32_t kLargestAlignment = 20;
constexpr std::uint32_t kLargestTransfer = 1U << kLargestAlignment;

/// Trailer status of an image that the camera did not send completely.
constexpr std::uint16_t kDataDiscarded = 0xa100;

template <typename Number> Outcome read(ArvDevice* device, std::uint64_t address, Number& number)
{
    GErrorPointer error;
    const bool done = arv_device_read_memory(device, address, sizeof number, &number, error.out()) != FALSE;
    Outcome outcome = outcomeOfOpening(error);
    if (outcome.ok() && !done)
        outcome.status = CAM_API_STS_CAMERA_NOT_RESPONDING;
    return outcome;
}

/// Reads the size of an image. Aravis uses what the camera reports without checking it: it divides by that size and by
/// the alignment, and receives leader and trailer into memory for its largest transfer. All are checked here.
Outcome readStreamPayload(ArvDevice* device, std::uint64_t& payload)
{
    std::uint64_t technology = 0;
    std::uint64_t stream = 0;
    std::uint32_t info = 0;
    std::uint32_t leader = 0;
    std::uint32_t trailer = 0;
    Outcome outcome = read(device, kTechnologyAddress, technology);
    if (outcome.ok())
        outcome = read(device, technology + kStreamAddress, stream);
    if (outcome.ok())
        outcome = read(device, stream + kStreamInfo, info);
    if (outcome.ok())
        outcome = read(device, stream + kStreamPayload, payload);
    if (outcome.ok())
        outcome = read(device, stream + kStreamLeader, leader);
    if (outcome.ok())
        outcome = read(device, stream + kStreamTrailer, trailer);
    if (outcome.ok() && (payload == 0 || info >> kAlignmentShift > kLargestAlignment || leader > kLargestTransfer ||
                         trailer > kLargestTransfer))
        return {CAM_API_STS_GENICAM_ERR, "The camera's stream has impossible sizes"};
    return outcome;
}

} // namespace

UsbReception::UsbReception(ArvDevice* device)
    : m_device(device)
{
}

Outcome UsbReception::begin()
{
    end();
    std::uint64_t payload = 0;
    if (Outcome outcome = readStreamPayload(m_device, payload); !outcome.ok())
        return outcome;
    // Aravis would use the rest of a larger buffer for the packet after the image, which may not fit.
    m_largestBuffer = payload;
    // Asynchronous mode, the default of some versions of Aravis, spins a core.
    arv_uv_device_set_usb_mode(ARV_UV_DEVICE(m_device), ARV_UV_USB_MODE_SYNC);
    GErrorPointer error;
    m_stream.reset(arv_device_create_stream(m_device, nullptr, nullptr, error.out()));
    Outcome outcome = outcomeOfOpening(error);
    if (outcome.ok() && m_stream == nullptr)
        outcome.status = CAM_API_STS_NOT_IMPLEMENTED;
    return outcome;
}

void UsbReception::end()
{
    m_stream.reset();
}

CAM_API_STATUS UsbReception::check(std::uint64_t blockId, std::size_t size) const
{
    const auto trailer = trailerOf(blockId);
    if (!trailer)
        return CAM_API_STS_SUCCESS;
    if (trailer->status != 0)
        return trailer->status == kDataDiscarded ? CAM_API_STS_DATA_DISCARDED : CAM_API_STS_PACKET_STATUS_ERROR;
    // Data that does not fit into the buffer is dropped silently.
    return trailer->size > size ? CAM_API_STS_UNEXPECTED_BUFFER_SIZE : CAM_API_STS_SUCCESS;
}

} // namespace cameralibs::transport
