#include "cameralibs/transport/usb/UsbReception.h"

#include "cameralibs/base/ErrorStatus.h"

#include <cstdint>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

// Registers of USB3 Vision: where the technology's own stand, where in those the stream's stand, and of the stream.
constexpr std::uint64_t kTechnologyAddress = 0x01d8;
constexpr std::uint64_t kStreamAddress = 0x0020;
constexpr std::uint64_t kStreamInfo = 0x0000;
constexpr std::uint64_t kStreamPayload = 0x0008;

/// The upper byte of the stream's info: the power of 2 that transfers are a multiple of.
constexpr unsigned kAlignmentShift = 24;

/// Aravis' largest transfer has 2^20 bytes.
constexpr std::uint32_t kLargestAlignment = 20;

template <typename Number> Outcome read(ArvDevice* device, std::uint64_t address, Number& number)
{
    GErrorPointer error;
    const bool done = arv_device_read_memory(device, address, sizeof number, &number, error.out()) != FALSE;
    Outcome outcome = outcomeOfOpening(error);
    if (outcome.ok() && !done)
        outcome.status = CAM_API_STS_CAMERA_NOT_RESPONDING;
    return outcome;
}

/// The bytes of an image. Aravis divides by them, and by the alignment, without a look at what it has read.
Outcome readStreamPayload(ArvDevice* device, std::uint64_t& payload)
{
    std::uint64_t technology = 0;
    std::uint64_t stream = 0;
    std::uint32_t info = 0;
    Outcome outcome = read(device, kTechnologyAddress, technology);
    if (outcome.ok())
        outcome = read(device, technology + kStreamAddress, stream);
    if (outcome.ok())
        outcome = read(device, stream + kStreamInfo, info);
    if (outcome.ok())
        outcome = read(device, stream + kStreamPayload, payload);
    if (outcome.ok() && (payload == 0 || info >> kAlignmentShift > kLargestAlignment))
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
    // What is left of a larger buffer may be too little for the packet after the image.
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

} // namespace cameralibs::transport
