#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace usb {

using Bytes = std::vector<std::uint8_t>;

// Where the registers stand that a test looks at or spoils.
constexpr std::uint64_t kStreamInfo = 0x20000;
constexpr std::uint64_t kStreamControl = 0x20004;
constexpr std::uint64_t kStreamPayload = 0x20008; ///< the bytes of an image as the stream tells them
constexpr std::uint64_t kWidth = 0x30000;
constexpr std::uint64_t kHeight = 0x30004;
constexpr std::uint64_t kPayloadSize = 0x30008; ///< and as the feature does
constexpr std::uint64_t kPixelFormat = 0x3000c;
constexpr std::uint64_t kTransportLayerLocked = 0x30018;

/// A USB3 Vision camera behind its two endpoints. Its images are Mono8: byte i of image n is the low byte of n + i.
class FakeCamera {
public:
    explicit FakeCamera(std::string description);

    /// What comes back on the control endpoint.
    [[nodiscard]] Bytes execute(const Bytes& command);

    /// Whether it has a packet to send on the stream endpoint.
    [[nodiscard]] bool sends() const;

    enum class Part { Leader, Payload, Trailer };
    [[nodiscard]] Part nextPart() const { return m_part; }

    /// Writes the next packet, of the payload as much as there is room for. 0 where a packet does not fit, which is
    /// lost.
    [[nodiscard]] std::size_t send(std::uint8_t* to, std::size_t room);

    [[nodiscard]] std::uint32_t value(std::uint64_t address) const;
    void setValue(std::uint64_t address, std::uint32_t value);

    /// Whether its description's command to unplug was executed.
    [[nodiscard]] bool unplugs() const;

private:
    [[nodiscard]] Bytes read(std::uint64_t address, std::size_t size) const;
    [[nodiscard]] bool write(std::uint64_t address, const std::uint8_t* data, std::size_t size);
    void setText(std::uint64_t address, const std::string& text);
    void updatePayload();
    [[nodiscard]] Bytes leader() const;
    [[nodiscard]] Bytes trailer() const;

    Bytes m_memory;
    const std::string m_description;
    Part m_part = Part::Leader;
    std::uint64_t m_image = 0;
    std::size_t m_sent = 0; ///< bytes of the image
};

} // namespace usb
