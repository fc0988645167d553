#include "tests/cameralibs/transport/gige/UdpSocket.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace gige {

namespace {

constexpr std::size_t kLargestDatagram = 65536;
constexpr int kSendBufferSize = 4'000'000;

sockaddr_in socketAddress(const Peer& peer)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(peer.address);
    address.sin_port = htons(peer.port);
    return address;
}

} // namespace

std::uint32_t addressOf(const std::string& text)
{
    in_addr address = {};
    if (::inet_pton(AF_INET, text.c_str(), &address) != 1)
        throw std::runtime_error(text + " is no address");
    return ntohl(address.s_addr);
}

UdpSocket::UdpSocket(const Peer& local)
    : m_descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    const int yes = 1;
    const sockaddr_in address = socketAddress(local);
    // Cameras on one machine share the port of broadcasts.
    if (::setsockopt(m_descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_SNDBUF, &kSendBufferSize, sizeof kSendBufferSize) != 0 ||
        ::bind(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        ::close(m_descriptor);
        throw std::system_error(error, std::generic_category(), "socket");
    }
}

UdpSocket::~UdpSocket()
{
    ::close(m_descriptor);
}

std::uint16_t UdpSocket::port() const
{
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    ::getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

std::optional<std::pair<Bytes, Peer>> UdpSocket::receive()
{
    Bytes bytes(kLargestDatagram);
    sockaddr_in from = {};
    socklen_t fromSize = sizeof from;
    const ssize_t size =
        ::recvfrom(m_descriptor, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr*>(&from), &fromSize);
    if (size < 0)
        return {};
    bytes.resize(static_cast<std::size_t>(size));
    return std::pair(std::move(bytes), Peer{ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)});
}

void UdpSocket::send(const Bytes& bytes, const Peer& to)
{
    const sockaddr_in address = socketAddress(to);
    (void)::sendto(m_descriptor, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                   sizeof address);
}

} // namespace gige
