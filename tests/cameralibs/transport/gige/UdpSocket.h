#pragma once

#include "tests/cameralibs/transport/gige/Protocol.h"

#include <netinet/in.h>

#include <optional>
#include <utility>

namespace gige {

/// An address and a port.
struct Peer {
    std::uint32_t address = 0;
    std::uint16_t port = 0;

    [[nodiscard]] bool operator==(const Peer& other) const { return address == other.address && port == other.port; }
};

/// Throws std::runtime_error for a text that is no address.
[[nodiscard]] std::uint32_t addressOf(const std::string& text);

/// A bound socket. Failures to send or receive are lost datagrams.
class UdpSocket {
public:
    /// With port 0 the system chooses one. Throws std::system_error.
    explicit UdpSocket(const Peer& local);
    ~UdpSocket();
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] std::uint16_t port() const;

    /// Does not wait.
    [[nodiscard]] std::optional<std::pair<Bytes, Peer>> receive();
    void send(const Bytes& bytes, const Peer& to);

private:
    const int m_descriptor;
};

} // namespace gige
