#pragma once

#include "cameralibs/transport/Protocol.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace cameralibs::transport {

/// Owns a file descriptor, or none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) noexcept
        : m_number(number)
    {
    }
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }

    [[nodiscard]] int get() const noexcept { return m_number; }
    [[nodiscard]] explicit operator bool() const noexcept { return m_number >= 0; }
    void reset() noexcept;

private:
    int m_number = -1;
};

/// Moves the descriptor to 3 or above. A program that has closed its standard descriptors may still write to them, and
/// must not write into ours.
[[nodiscard]] Descriptor aboveStandard(Descriptor descriptor) noexcept;

/// A received packet. The body is only accessible by its kind, and only if its length is right.
class Packet {
public:
    Packet();

    [[nodiscard]] Kind kind() const noexcept { return m_header.kind; }

    /// Empty if the packet has another kind or length.
    template <class Body> [[nodiscard]] std::optional<Body> body(Kind kind) const
    {
        static_assert(std::is_trivially_copyable_v<Body>);
        Body body{};
        if (m_header.kind != kind || !copyBody(&body, sizeof body))
            return {};
        return body;
    }

    /// The data after the body.
    [[nodiscard]] std::string_view data() const noexcept;

    /// The descriptor that came with the packet, if any.
    [[nodiscard]] Descriptor takeDescriptor() noexcept { return std::move(m_descriptor); }

private:
    friend class Channel;

    [[nodiscard]] bool copyBody(void* body, std::size_t size) const noexcept;

    Header m_header{};
    std::vector<char> m_bytes; ///< has room for the largest packet, so receiving allocates nothing
    std::size_t m_size = 0;
    Descriptor m_descriptor;
};

using Clock = std::chrono::steady_clock;

/// The result of waiting for a packet.
enum class Received { packet, timeout, closed, malformed };

/// One end of a socket pair. One thread may send and one may receive at a time; any thread may shut it down.
class Channel {
public:
    Channel() = default;
    explicit Channel(Descriptor socket) noexcept
        : m_socket(std::move(socket))
    {
    }

    [[nodiscard]] explicit operator bool() const noexcept { return static_cast<bool>(m_socket); }
    [[nodiscard]] int descriptor() const noexcept { return m_socket.get(); }

    /// False if the other side is gone or does not accept the packet in time. A valid `descriptor` is sent along.
    template <class Body>
    [[nodiscard]] bool send(Kind kind, const Body& body, std::string_view data = {}, int descriptor = -1) const
    {
        static_assert(std::has_unique_object_representations_v<Body>, "padding would leak memory contents");
        return send(kind, &body, sizeof body, data, descriptor, 0);
    }
    [[nodiscard]] bool send(Kind kind) const { return send(kind, Nothing{}); }

    /// Like send(), but never waits: a packet that does not fit into the channel is dropped.
    void sendOrDrop(Kind kind, std::string_view data = {}) const;

    enum class Descriptors { refuse, accept };

    /// Waits until `deadline`.
    [[nodiscard]] Received receive(Packet& packet, Clock::time_point deadline,
                                   Descriptors descriptors = Descriptors::refuse) const;

    /// Closes the channel for both sides, including calls in progress.
    void shutDown() const noexcept;

private:
    [[nodiscard]] bool send(Kind kind, const void* body, std::size_t bodySize, std::string_view data, int descriptor,
                            int flags) const;

    Descriptor m_socket;
};

/// Writes a text into a field of fixed size; a longer one is truncated.
template <std::size_t size> void setText(char (&field)[size], std::string_view text)
{
    const std::size_t length = text.copy(field, size - 1);
    field[length] = '\0';
}

/// The text of a received field, which may lack the terminating NUL.
template <std::size_t size> [[nodiscard]] std::string textOf(const char (&field)[size])
{
    const std::string_view text(field, size);
    return std::string(text.substr(0, text.find('\0')));
}

} // namespace cameralibs::transport
