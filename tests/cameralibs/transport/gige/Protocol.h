#pragma once

/// What the camera of the tests knows of GigE Vision, and no more. Every number on the wire is big-endian.
///
/// Control (GVCP): datagrams to port 3956 of the camera. A command has a header of 8 bytes: key 0x42, flags, command,
/// size of what follows, id. Its answer, sent back to the port that asked: status, command + 1, size of what follows,
/// the same id. A program that gets no answer asks again with the same id; a pending acknowledgement asks it to wait
/// longer. Only the program that has written its control into kPrivilege may write; it loses that right when the
/// camera hears nothing of it for kHeartbeat.
///
/// Images (GVSP): datagrams from the camera to the address and port in kStreamAddress and kStreamPort. A header of 8
/// bytes: status, block id (16 bits, 0 is left out, the same for one image), kind of packet, packet id (24 bits, from 0
/// on within a block). A block is one leader, data packets that carry all of the image in order, and one trailer. The
/// packet size in kStreamPacketSize is that of the whole IP packet.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace gige {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kControlPort = 3956;

constexpr std::size_t kHeaderSize = 8; ///< of commands, answers and stream packets alike

enum class Code : std::uint16_t {
    discovery = 0x02,
    resend = 0x40, ///< not answered
    readRegister = 0x80,
    writeRegister = 0x82,
    readMemory = 0x84,
    writeMemory = 0x86,
    pending = 0x89, ///< an answer that answers nothing yet
};

constexpr std::uint8_t kCommandKey = 0x42;
constexpr std::uint8_t kAnswerWanted = 0x01; ///< a flag

// Statuses of answers and of stream packets.
constexpr std::uint16_t kSuccess = 0x0000;
constexpr std::uint16_t kNotImplemented = 0x8001;
constexpr std::uint16_t kInvalidParameter = 0x8002;
constexpr std::uint16_t kInvalidAddress = 0x8003;
constexpr std::uint16_t kWriteProtected = 0x8004;
constexpr std::uint16_t kBadAlignment = 0x8005;
constexpr std::uint16_t kAccessDenied = 0x8006;
constexpr std::uint16_t kPacketUnavailable = 0x800c;

constexpr std::size_t kLargestMemoryRead = 536;

// The registers of every GigE Vision device.
constexpr std::uint32_t kVersion = 0x0000;
constexpr std::uint32_t kDeviceMode = 0x0004;
constexpr std::uint32_t kMacHigh = 0x0008;
constexpr std::uint32_t kMacLow = 0x000c;
constexpr std::uint32_t kAddress = 0x0024;
constexpr std::uint32_t kSubnetMask = 0x0034;
constexpr std::uint32_t kManufacturer = 0x0048;
constexpr std::uint32_t kModel = 0x0068;
constexpr std::uint32_t kDeviceVersion = 0x0088;
constexpr std::uint32_t kSerialNumber = 0x00d8;
constexpr std::uint32_t kUserName = 0x00e8;
constexpr std::size_t kDiscoveryAnswerSize = 0x00f8; ///< the registers up to here
constexpr std::uint32_t kFirstUrl = 0x0200;
constexpr std::uint32_t kSecondUrl = 0x0400;
constexpr std::size_t kUrlSize = 0x0200;
constexpr std::uint32_t kInterfaces = 0x0600;
constexpr std::uint32_t kStreamChannels = 0x0904;
constexpr std::uint32_t kCapability = 0x0934;
constexpr std::uint32_t kHeartbeat = 0x0938; ///< milliseconds
constexpr std::uint32_t kTickFrequencyHigh = 0x093c;
constexpr std::uint32_t kTickFrequencyLow = 0x0940;
constexpr std::uint32_t kPrivilege = 0x0a00;
constexpr std::uint32_t kStreamPort = 0x0d00;
constexpr std::uint32_t kStreamPacketSize = 0x0d04;
constexpr std::uint32_t kStreamAddress = 0x0d18;
constexpr std::uint32_t kStreamSourcePort = 0x0d1c;

constexpr std::uint32_t kCanResend = 1U << 2; ///< of kCapability
constexpr std::uint32_t kCanWriteMemory = 1U << 1;
constexpr std::uint32_t kCanConcatenate = 1U << 0;
constexpr std::uint32_t kInControl = 3;             ///< either bit of kPrivilege: exclusively or not
constexpr std::uint32_t kFireTestPacket = 1U << 31; ///< of kStreamPacketSize; written, never read
constexpr std::uint32_t kDoNotFragment = 1U << 30;
constexpr std::uint32_t kPacketSizeMask = 0xffff;

/// The headers of IP and UDP, which the packet size includes.
constexpr std::size_t kIpHeadersSize = 28;

enum class Part : std::uint8_t { leader = 1, trailer = 2, data = 3, allInOne = 4 };

// Payload types.
constexpr std::uint16_t kImagePayload = 0x0001;
constexpr std::uint16_t kMultipartPayload = 0x000a;

// Where things stand in a leader or a trailer, from the start of the packet.
constexpr std::size_t kPayloadTypeOffset = 10;
constexpr std::size_t kTimestampOffset = 12;
constexpr std::size_t kPixelFormatOffset = 20;
constexpr std::size_t kWidthOffset = 24;
constexpr std::size_t kHeightOffset = 28;
constexpr std::size_t kPaddingOffset = 40;
constexpr std::size_t kLeaderSize = 44;
constexpr std::size_t kTrailerHeightOffset = 12;
constexpr std::size_t kTrailerSize = 16;

/// Writes as much of the number as there is room for.
template <typename Number> void put(Bytes& bytes, std::size_t offset, Number number)
{
    for (std::size_t i = 0; i < sizeof number && offset + i < bytes.size(); ++i)
        bytes[offset + i] = static_cast<std::uint8_t>(number >> (8 * (sizeof number - 1 - i)));
}

/// Bytes beyond the end are zero.
template <typename Number> [[nodiscard]] Number get(const Bytes& bytes, std::size_t offset)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        number = number << 8 | (offset + i < bytes.size() ? bytes[offset + i] : 0U);
    return static_cast<Number>(number);
}

template <typename Number> void append(Bytes& bytes, Number number)
{
    bytes.resize(bytes.size() + sizeof number);
    put(bytes, bytes.size() - sizeof number, number);
}

[[nodiscard]] inline Code codeOf(const Bytes& packet)
{
    return static_cast<Code>(get<std::uint16_t>(packet, 2));
}

} // namespace gige
