#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace usb {

using Bytes = std::vector<std::uint8_t>;

// The registers of every USB3 Vision device, and the tables they lead to, where a test or a fault works on them.
constexpr std::uint64_t kManifestAddress = 0x1d0;
constexpr std::uint64_t kManifest = 0x1000;
constexpr std::uint64_t kEntrySchema = 0x0c;
constexpr std::uint64_t kEntryAddress = 0x10;
constexpr std::uint64_t kEntrySize = 0x18;
constexpr std::uint64_t kMaximumCommand = 0x10014;
constexpr std::uint64_t kMaximumAnswer = 0x10018;
constexpr std::uint64_t kStreamInfo = 0x20000;
constexpr std::uint64_t kStreamControl = 0x20004;
constexpr std::uint64_t kStreamPayload = 0x20008; ///< the bytes of an image as the stream tells them
constexpr std::uint64_t kStreamLeaderSize = 0x20010;
constexpr std::uint64_t kStreamTrailerSize = 0x20014;

// The camera's own, as in its description.
constexpr std::uint64_t kWidth = 0x30000;
constexpr std::uint64_t kHeight = 0x30004;
constexpr std::uint64_t kPixelFormat = 0x3000c;
constexpr std::uint64_t kTransportLayerLocked = 0x30018;
constexpr std::uint64_t kGain = 0x30020; ///< a double
constexpr std::uint64_t kReverseX = 0x30028;
constexpr std::uint64_t kTriggerSoftware = 0x3002c;
constexpr std::uint64_t kTriggerMode = 0x30030;
constexpr std::uint64_t kTriggerSource = 0x30034;
constexpr std::uint64_t kPayloadSize = 0x30040; ///< and as the feature does
constexpr std::uint64_t kUserId = 0x30050;

constexpr std::size_t kMemorySize = 0x31000;
constexpr std::size_t kMaximumDescription = 0x10000;

// A command and its answer: magic, flags or status, command, size, id; then what belongs to the command.
constexpr std::size_t kHeaderSize = 12;
constexpr std::size_t kStatusOffset = 4;
constexpr std::size_t kCommandOffset = 6;
constexpr std::size_t kSizeOffset = 8;
constexpr std::size_t kIdOffset = 10;
constexpr std::uint16_t kPendingAnswer = 0x0805;
constexpr std::uint16_t kInvalidAddress = 0x8003;

/// Where a trailer has its status.
constexpr std::size_t kTrailerStatus = 16;

/// What it sends next on the stream endpoint.
enum class Part : std::uint32_t { Leader, Payload, Trailer };

/// All that changes in a camera; without pointers, so that several processes can share it.
struct CameraState {
    std::array<std::uint8_t, kMemorySize> memory;
    std::array<std::uint8_t, kMaximumDescription> description;
    std::uint64_t descriptionSize;
    Part part;
    std::uint64_t image;
    std::uint64_t sent;       ///< bytes of the image
    std::uint64_t oddPayload; ///< bytes of each second image, 0: as of all others
    std::int64_t nextImage;   ///< when it begins; nanoseconds of the steady clock
    std::int64_t nextPart;    ///< the rest of the image not before then
    std::uint32_t triggers;   ///< images that are still to be sent in trigger mode
};

/// A USB3 Vision camera behind its two endpoints. Byte i of image n is the low byte of n + i, in every format.
class FakeCamera {
public:
    enum class Compression { none, zip };

    /// It outlives this.
    explicit FakeCamera(CameraState& state)
        : m_state(state)
    {
    }

    /// As from its factory.
    void reset(const std::string& serial, const std::string& description);

    /// What comes back on the control endpoint.
    [[nodiscard]] Bytes execute(const Bytes& command);

    /// Whether it has a packet to send on the stream endpoint.
    [[nodiscard]] bool sends() const;

    [[nodiscard]] Part nextPart() const { return m_state.part; }

    /// Writes the next packet, of the payload as much as there is room for. 0 where a packet does not fit, which is
    /// lost.
    [[nodiscard]] std::size_t send(std::uint8_t* to, std::size_t room);

    [[nodiscard]] std::string description() const;
    void setDescription(const std::string& bytes, Compression compression);

    /// What feature and stream tell of the bytes of an image.
    void setPayload(std::uint64_t size);
    /// What the stream alone tells.
    void setStreamPayload(std::uint64_t size) { setValue64(kStreamPayload, size); }
    /// What each second image has, whatever is told.
    void setOddPayload(std::uint64_t size) { m_state.oddPayload = size; }

    [[nodiscard]] std::uint32_t value(std::uint64_t address) const;
    void setValue(std::uint64_t address, std::uint32_t value);
    void setValue64(std::uint64_t address, std::uint64_t value);

    /// Whether its description's command to unplug was executed.
    [[nodiscard]] bool unplugs() const;

private:
    /// Empty where it has nothing at one of these addresses.
    [[nodiscard]] Bytes read(std::uint64_t address, std::size_t size) const;
    [[nodiscard]] bool write(std::uint64_t address, const std::uint8_t* data, std::size_t size);
    void setText(std::uint64_t address, const std::string& text);
    void updatePayload();
    [[nodiscard]] std::uint64_t payload() const;
    [[nodiscard]] Bytes leader() const;
    [[nodiscard]] Bytes trailer() const;

    CameraState& m_state;
};

} // namespace usb
