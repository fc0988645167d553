#pragma once

#include <array>
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

constexpr std::size_t kMemorySize = 0x31000;

/// What it sends next on the stream endpoint.
enum class Part : std::uint32_t { Leader, Payload, Trailer };

/// All that changes in a camera; without pointers, so that several processes can share it.
struct CameraState {
    std::array<std::uint8_t, kMemorySize> memory;
    Part part;
    std::uint64_t image;
    std::uint64_t sent;     ///< bytes of the image
    std::int64_t nextImage; ///< when it begins; nanoseconds of the steady clock
};

/// A USB3 Vision camera behind its two endpoints. Its images are Mono8: byte i of image n is the low byte of n + i.
class FakeCamera {
public:
    /// Both outlive it.
    FakeCamera(CameraState& state, const std::string& description)
        : m_state(state)
        , m_description(description)
    {
    }

    /// As from its factory.
    void reset();

    /// What comes back on the control endpoint.
    [[nodiscard]] Bytes execute(const Bytes& command);

    /// Whether it has a packet to send on the stream endpoint.
    [[nodiscard]] bool sends() const;

    [[nodiscard]] Part nextPart() const { return m_state.part; }

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

    CameraState& m_state;
    const std::string& m_description;
};

} // namespace usb
