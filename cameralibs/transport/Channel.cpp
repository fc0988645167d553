#include "cameralibs/transport/Channel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace cameralibs::transport {

namespace {

/// More than the largest body.
constexpr std::size_t kMaxBody = 1024;

/// For poll(): -1 means no limit.
int millisecondsUntil(Clock::time_point deadline)
{
    if (deadline == Clock::time_point::max())
        return -1;
    const Clock::time_point now = Clock::now();
    if (deadline <= now)
        return 0;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
    return static_cast<int>(std::min<std::int64_t>(left, std::numeric_limits<int>::max()));
}

} // namespace

void Descriptor::reset() noexcept
{
    if (m_number >= 0)
        ::close(std::exchange(m_number, -1));
}

Descriptor aboveStandard(Descriptor descriptor) noexcept
{
    if (!descriptor || descriptor.get() > STDERR_FILENO)
        return descriptor;
    return Descriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

Packet::Packet()
    : m_bytes(kMaxBody + kMaxData)
{
}

std::string_view Packet::data() const noexcept
{
    const std::size_t size = std::min<std::size_t>(m_header.dataSize, m_size);
    return {m_bytes.data() + m_size - size, size};
}

bool Packet::copyBody(void* body, std::size_t size) const noexcept
{
    if (m_size != size + m_header.dataSize)
        return false;
    std::memcpy(body, m_bytes.data(), size);
    return true;
}

bool Channel::send(Kind kind, const void* body, std::size_t bodySize, std::string_view data, int descriptor,
                   int flags) const
{
    data = data.substr(0, kMaxData);
    Header header{kind, static_cast<std::uint32_t>(data.size())};
    std::array<iovec, 3> parts = {iovec{&header, sizeof header}, iovec{const_cast<void*>(body), bodySize},
                                  iovec{const_cast<char*>(data.data()), data.size()}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof descriptor)> control{};
    if (descriptor >= 0) {
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* const rights = CMSG_FIRSTHDR(&message);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(sizeof descriptor);
        std::memcpy(CMSG_DATA(rights), &descriptor, sizeof descriptor);
    }
    ssize_t sent = -1;
    do {
        sent = ::sendmsg(m_socket.get(), &message, MSG_NOSIGNAL | flags);
    } while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

void Channel::sendOrDrop(Kind kind, std::string_view data) const
{
    const Nothing body{};
    (void)send(kind, &body, sizeof body, data, -1, MSG_DONTWAIT);
}

Received Channel::receive(Packet& packet, Clock::time_point deadline, Descriptors descriptors) const
{
    packet.m_descriptor.reset();
    packet.m_size = 0;
    for (;;) {
        pollfd waiting{m_socket.get(), POLLIN, 0};
        const int ready = ::poll(&waiting, 1, millisecondsUntil(deadline));
        if (ready == 0)
            return Received::timeout;
        if (ready < 0 && errno != EINTR)
            return Received::closed;
        if (ready < 0)
            continue;
        std::array<iovec, 2> parts = {iovec{&packet.m_header, sizeof packet.m_header},
                                      iovec{packet.m_bytes.data(), packet.m_bytes.size()}};
        msghdr message{};
        message.msg_iov = parts.data();
        message.msg_iovlen = parts.size();
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        if (descriptors == Descriptors::accept) {
            message.msg_control = control.data();
            message.msg_controllen = control.size();
        }
        const ssize_t size = ::recvmsg(m_socket.get(), &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
        if (size < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (size <= 0)
            return Received::closed;
        if (const cmsghdr* const rights = CMSG_FIRSTHDR(&message); rights != nullptr) {
            int received = -1;
            std::memcpy(&received, CMSG_DATA(rights), sizeof received);
            packet.m_descriptor = Descriptor(received);
        }
        if ((message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) != 0 || static_cast<std::size_t>(size) < sizeof(Header))
            return Received::malformed;
        packet.m_size = static_cast<std::size_t>(size) - sizeof(Header);
        if (packet.m_header.dataSize > std::min(packet.m_size, kMaxData))
            return Received::malformed;
        return Received::packet;
    }
}

void Channel::shutDown() const noexcept
{
    (void)::shutdown(m_socket.get(), SHUT_RDWR);
}

} // namespace cameralibs::transport
