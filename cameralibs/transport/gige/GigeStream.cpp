#include "cameralibs/transport/gige/GigeStream.h"

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/transport/Farewell.h"

#include <cstdint>

#include <netinet/in.h>
#include <sys/socket.h>

namespace cameralibs::transport {

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

/// Aravis does so when the first packet has come. By then the rest of the first image may have found no room, all the
/// more on a busy machine. Its socket is known by its port alone.
void enlargeSocketBuffer(ArvGvStream* stream)
{
    constexpr int kMany = 1024; // the process has a few dozen
    const std::uint16_t port = arv_gv_stream_get_port(stream);
    for (int descriptor = 0; descriptor < kMany; ++descriptor) {
        if (receivesAt(descriptor, port))
            (void)::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &kSocketBufferSize, sizeof kSocketBufferSize);
    }
}

} // namespace

void prepareGigeDevice(ArvGvDevice* device)
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

void prepareGigeStream(ArvGvDevice* device, ArvGvStream* stream)
{
    enlargeSocketBuffer(stream);
    g_object_set(stream, "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size", kSocketBufferSize,
                 nullptr);
    // A frame that waits for packets that never come again holds up those behind it.
    if (!sendsPacketsAgain(device))
        g_object_set(stream, "packet-resend", ARV_GV_STREAM_PACKET_RESEND_NEVER, nullptr);
}

} // namespace cameralibs::transport
