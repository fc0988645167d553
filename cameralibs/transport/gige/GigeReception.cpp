#include "cameralibs/transport/gige/GigeReception.h"

#include "cameralibs/base/ErrorStatus.h"
#include "cameralibs/transport/AravisHooks.h"
#include "cameralibs/transport/Reporting.h"

#include <cstdint>
#include <string>
#include <utility>

#include <sys/socket.h>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

/// The limit that packaging/system/60-orvocam-gige.conf sets. The kernel reduces it to its own limit; with its default
/// size most packets are lost.
constexpr int kSocketBufferSize = 33'554'432;

/// The GigE Vision register with the capabilities of the control channel, and its bit for packet resend.
constexpr std::uint64_t kCapabilityRegister = 0x0934;
constexpr std::uint32_t kResendBit = 1U << 2;

bool sendsPacketsAgain(ArvGvDevice* device)
{
    guint32 capability = 0;
    GErrorPointer error;
    arv_device_read_register(ARV_DEVICE(device), kCapabilityRegister, &capability, error.out());
    return !error && (capability & kResendBit) != 0;
}

/// Aravis enlarges the buffer only when the first packet arrives. On a busy machine the rest of the first image may
/// have overflowed it by then.
void enlargeSocketBuffer(ArvGvStream* stream)
{
    const int socket = socketAt(arv_gv_stream_get_port(stream));
    if (::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &kSocketBufferSize, sizeof kSocketBufferSize) != 0)
        note(Severity::info, "The first image of the stream may be incomplete: its socket buffer is not enlarged yet");
}

/// None of this is essential for a stream, so failures are only logged.
void prepareDevice(ArvGvDevice* device)
{
    // A packet socket receives nothing if the camera runs on this machine and is reached through another interface.
    arv_gv_device_set_stream_options(device, ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
    GErrorPointer error;
    arv_gv_device_auto_packet_size(device, error.out());
    if (error)
        note(Severity::warning, std::string("Packet size not negotiated: ") + error->message);
    if (!logs(Severity::info))
        return;
    const guint size = arv_gv_device_get_packet_size(device, error.out());
    if (!error)
        note(Severity::info, "Packet size: " + std::to_string(size) + " bytes");
}

void prepareStream(ArvGvDevice* device, ArvGvStream* stream)
{
    enlargeSocketBuffer(stream);
    g_object_set(stream, "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size", kSocketBufferSize,
                 nullptr);
    // Without resend a frame would wait for its missing packets in vain, and hold up the frames behind it.
    if (!sendsPacketsAgain(device))
        g_object_set(stream, "packet-resend", ARV_GV_STREAM_PACKET_RESEND_NEVER, nullptr);
}

} // namespace

Outcome GigeReception::make(ArvGvDevice* device, std::unique_ptr<Reception>& reception)
{
    prepareDevice(device);
    GErrorPointer error;
    GObjectPointer<ArvStream> stream(arv_device_create_stream(ARV_DEVICE(device), nullptr, nullptr, error.out()));
    if (Outcome outcome = outcomeOfOpening(error); !outcome.ok())
        return outcome;
    if (stream == nullptr)
        return {CAM_API_STS_NOT_IMPLEMENTED, {}};
    prepareStream(device, ARV_GV_STREAM(stream.get()));
    reception = std::make_unique<GigeReception>(std::move(stream));
    return {};
}

GigeReception::GigeReception(GObjectPointer<ArvStream> stream)
{
    m_stream = std::move(stream);
}

GigeReception::~GigeReception()
{
    GigeReception::end();
    // Aravis logs a critical warning if a stopped stream is destroyed. Without buffers this one writes nowhere.
    arv_stream_start_thread(m_stream.get());
}

// A camera may restart its block ids at 1. Aravis' stream thread would take them for late frames, so each start has a
// new thread.
Outcome GigeReception::begin()
{
    (void)stopThread();
    arv_stream_start_thread(m_stream.get());
    m_receiving = true;
    return {};
}

void GigeReception::end()
{
    if (stopThread())
        noteLosses();
}

bool GigeReception::stopThread()
{
    if (!std::exchange(m_receiving, false))
        return false;
    (void)arv_stream_stop_thread(m_stream.get(), TRUE);
    return true;
}

// Aravis counts since the stream was created. In an incomplete image it counts all packets from the first missing one
// on.
void GigeReception::noteLosses()
{
    guint64 resent = 0;
    guint64 missing = 0;
    arv_gv_stream_get_statistics(ARV_GV_STREAM(m_stream.get()), &resent, &missing);
    const std::uint64_t newlyResent = resent - std::exchange(m_resent, resent);
    const std::uint64_t newlyMissing = missing - std::exchange(m_missing, missing);
    note(newlyMissing != 0 ? Severity::warning : Severity::info, "At most " + std::to_string(newlyMissing) +
                                                                     " packets are missing in incomplete images; " +
                                                                     std::to_string(newlyResent) + " were resent");
}

} // namespace cameralibs::transport
