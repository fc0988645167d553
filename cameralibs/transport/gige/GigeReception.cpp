#include "cameralibs/transport/gige/GigeReception.h"

#include "cameralibs/base/ErrorStatus.h"
#include "cameralibs/transport/Farewell.h"

#include <cstdint>
#include <string>
#include <utility>

#include <netinet/in.h>
#include <sys/socket.h>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

/// What packaging/system/60-orvocam-gige.conf lets a program have. A kernel that grants less cuts it; its default loses
/// most packets.
constexpr int kSocketBufferSize = 33'554'432;

/// The GigE Vision register that tells what the control channel can do, and its bit for sending packets again.
constexpr std::uint64_t kCapabilityRegister = 0x0934;
constexpr std::uint32_t kResendBit = 1U << 2;

bool sendsPacketsAgain(ArvGvDevice* device)
{
    guint32 capability = 0;
    GErrorPointer error;
    arv_device_read_register(ARV_DEVICE(device), kCapabilityRegister, &capability, error.out());
    return !error && (capability & kResendBit) != 0;
}

bool receivesAt(int descriptor, std::uint16_t port)
{
    sockaddr_in own{};
    socklen_t size = sizeof own;
    int type = 0;
    socklen_t typeSize = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &typeSize) == 0 && type == SOCK_DGRAM &&
           ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &size) == 0 && own.sin_family == AF_INET &&
           ntohs(own.sin_port) == port;
}

/// Aravis itself does so when the first packet arrives. By then the rest of the first image may have found no room,
/// above all on a busy machine. Aravis does not publish the socket, so its port identifies it.
void enlargeSocketBuffer(ArvGvStream* stream)
{
    constexpr int kMany = 1024; // the process has a few dozen
    const std::uint16_t port = arv_gv_stream_get_port(stream);
    for (int descriptor = 0; descriptor < kMany; ++descriptor) {
        if (receivesAt(descriptor, port))
            (void)::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &kSocketBufferSize, sizeof kSocketBufferSize);
    }
}

/// A stream works without any of this, so a camera may refuse it.
void prepareDevice(ArvGvDevice* device)
{
    // Packet sockets see nothing of a camera on this machine that is reached through another interface.
    arv_gv_device_set_stream_options(device, ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
    GErrorPointer error;
    arv_gv_device_auto_packet_size(device, error.out());
    if (error)
        note(Severity::warning, std::string("packet size not negotiated: ") + error->message);
    if (!logs(Severity::info))
        return;
    const guint size = arv_gv_device_get_packet_size(device, error.out());
    if (!error)
        note(Severity::info, "packet size: " + std::to_string(size) + " bytes");
}

void prepareStream(ArvGvDevice* device, ArvGvStream* stream)
{
    enlargeSocketBuffer(stream);
    g_object_set(stream, "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size", kSocketBufferSize,
                 nullptr);
    // A frame that waits for packets that never come again holds up those behind it.
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
    // Aravis complains of a stream that it finds stopped. Without buffers this one writes nowhere.
    arv_stream_start_thread(m_stream.get());
}

// A camera that counts from 1 again is not taken for a late one by a thread that starts anew.
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

// Aravis counts from the making of the stream on; in an image, from the first packet that is missing to the end.
void GigeReception::noteLosses()
{
    guint64 resent = 0;
    guint64 missing = 0;
    arv_gv_stream_get_statistics(ARV_GV_STREAM(m_stream.get()), &resent, &missing);
    const std::uint64_t newlyResent = resent - std::exchange(m_resent, resent);
    const std::uint64_t newlyMissing = missing - std::exchange(m_missing, missing);
    note(newlyMissing != 0 ? Severity::warning : Severity::info, "packets: " + std::to_string(newlyMissing) +
                                                                     " at most are missing in incomplete images, " +
                                                                     std::to_string(newlyResent) + " were sent again");
}

} // namespace cameralibs::transport
