#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include <algorithm>
#include <cstring>

namespace usb {

namespace {

// More registers of every USB3 Vision device.
constexpr std::uint64_t kManufacturer = 0x4;
constexpr std::uint64_t kModel = 0x44;
constexpr std::uint64_t kSerial = 0x144;
constexpr std::uint64_t kResponseTime = 0x1cc; // ms
constexpr std::uint64_t kTechnologyAddress = 0x1d8;
constexpr std::uint64_t kTechnology = 0x10000;
constexpr std::uint64_t kStream = kStreamInfo;
constexpr std::uint64_t kDescription = 0x100000;

// The camera's own, as in its description.
constexpr std::uint64_t kStart = 0x30010;
constexpr std::uint64_t kStop = 0x30014;
constexpr std::uint64_t kUnplug = 0x3001c;
constexpr std::uint32_t kMono8 = 0x01080001;

constexpr std::uint32_t kSchema = 0x01010000; // the version of GenICam's schema
constexpr std::uint32_t kZipped = 1U << 10;

/// Of the stream endpoint.
constexpr std::size_t kPacketSize = 1024;

constexpr std::size_t kMaximumTransfer = 0x400;
constexpr std::uint32_t kAlignment = 3U << 24; // as a power of 2

constexpr std::uint16_t kReadCommand = 0x0800;

constexpr std::uint32_t kLeaderMagic = 0x4c563355;
constexpr std::uint32_t kTrailerMagic = 0x54563355;
constexpr std::size_t kLeaderSize = 52;
constexpr std::size_t kTrailerSize = 32;
constexpr std::uint16_t kImagePayload = 1;

template <typename Container, typename Number> void put(Container& bytes, std::size_t offset, Number number)
{
    std::memcpy(bytes.data() + offset, &number, sizeof number);
}

template <typename Number, typename Container> Number get(const Container& bytes, std::size_t offset)
{
    Number number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

template <typename Container> void put16(Container& bytes, std::size_t offset, std::uint16_t number)
{
    put(bytes, offset, number);
}

template <typename Container> void put32(Container& bytes, std::size_t offset, std::uint32_t number)
{
    put(bytes, offset, number);
}

template <typename Container> void put64(Container& bytes, std::size_t offset, std::uint64_t number)
{
    put(bytes, offset, number);
}

} // namespace

void FakeCamera::reset(const std::string& serial, const std::string& description)
{
    m_state = {};
    setText(kManufacturer, "Fake Maker");
    setText(kModel, "U3V-Fake");
    setText(kSerial, serial);
    put32(m_state.memory, kResponseTime, 100);
    put(m_state.memory, kManifestAddress, kManifest);
    put(m_state.memory, kTechnologyAddress, kTechnology);

    put64(m_state.memory, kManifest, 1);
    put(m_state.memory, kManifest + kEntryAddress, kDescription);
    setDescription(description, Compression::none);

    put32(m_state.memory, kMaximumCommand, kMaximumTransfer);
    put32(m_state.memory, kMaximumAnswer, kMaximumTransfer);
    put(m_state.memory, kTechnology + 0x20, kStream);
    put(m_state.memory, kStreamInfo, kAlignment);
    put32(m_state.memory, kStreamLeaderSize, kLeaderSize);
    put32(m_state.memory, kStreamTrailerSize, kTrailerSize);

    put32(m_state.memory, kWidth, 320);
    put32(m_state.memory, kHeight, 240);
    put(m_state.memory, kPixelFormat, kMono8);
    put(m_state.memory, kGain, 1.5);
    updatePayload();
}

Bytes FakeCamera::execute(const Bytes& command)
{
    Bytes answer(kHeaderSize + 4);
    std::copy_n(command.begin(), kHeaderSize, answer.begin());
    put16(answer, kStatusOffset, 0);
    const auto code = get<std::uint16_t>(command, kCommandOffset);
    put(answer, kCommandOffset, static_cast<std::uint16_t>(code + 1));
    const auto address = get<std::uint64_t>(command, kHeaderSize);
    if (code == kReadCommand) {
        const Bytes data = read(address, get<std::uint16_t>(command, kHeaderSize + 10));
        answer.resize(kHeaderSize);
        answer.insert(answer.end(), data.begin(), data.end());
        if (data.empty())
            put(answer, kStatusOffset, kInvalidAddress);
    } else {
        const std::size_t size = get<std::uint16_t>(command, kSizeOffset) - sizeof address;
        if (!write(address, command.data() + kHeaderSize + sizeof address, size))
            put(answer, kStatusOffset, kInvalidAddress);
        put(answer, kHeaderSize + 2, static_cast<std::uint16_t>(size));
    }
    put(answer, kSizeOffset, static_cast<std::uint16_t>(answer.size() - kHeaderSize));
    return answer;
}

bool FakeCamera::sends() const
{
    const bool triggered = m_state.part != Part::Leader || value(kTriggerMode) == 0 || m_state.triggers != 0;
    return triggered && value(kStart) != 0 && (value(kStreamControl) & 1U) != 0;
}

std::size_t FakeCamera::send(std::uint8_t* to, std::size_t room)
{
    if (m_state.part == Part::Payload) {
        const std::uint64_t left = payload() - m_state.sent;
        // A transfer takes whole packets of the bus, but for the last one.
        if (room < std::min<std::uint64_t>(left, kPacketSize)) {
            m_state.sent += kPacketSize < left ? kPacketSize : left;
            m_state.part = m_state.sent == payload() ? Part::Trailer : Part::Payload;
            return 0;
        }
        const std::size_t size = std::min<std::uint64_t>(room, left);
        for (std::size_t i = 0; i < size; ++i)
            to[i] = static_cast<std::uint8_t>(m_state.image + m_state.sent + i);
        m_state.sent += size;
        if (m_state.sent == payload())
            m_state.part = Part::Trailer;
        return size;
    }
    const Bytes packet = m_state.part == Part::Leader ? leader() : trailer();
    m_state.triggers -= m_state.part == Part::Leader && m_state.triggers != 0 ? 1 : 0;
    m_state.sent = 0;
    m_state.image += m_state.part == Part::Trailer ? 1 : 0;
    m_state.part = m_state.part == Part::Leader ? Part::Payload : Part::Leader;
    if (packet.size() > room)
        return 0;
    std::copy(packet.begin(), packet.end(), to);
    return packet.size();
}

std::uint32_t FakeCamera::value(std::uint64_t address) const
{
    return get<std::uint32_t>(m_state.memory, address);
}

void FakeCamera::setValue(std::uint64_t address, std::uint32_t value)
{
    put(m_state.memory, address, value);
}

void FakeCamera::setValue64(std::uint64_t address, std::uint64_t value)
{
    put(m_state.memory, address, value);
}

std::string FakeCamera::description() const
{
    return {m_state.description.begin(),
            m_state.description.begin() + static_cast<std::ptrdiff_t>(m_state.descriptionSize)};
}

void FakeCamera::setDescription(const std::string& bytes, Compression compression)
{
    m_state.descriptionSize = std::min(bytes.size(), m_state.description.size());
    std::copy_n(bytes.begin(), m_state.descriptionSize, m_state.description.begin());
    put64(m_state.memory, kManifest + kEntrySize, m_state.descriptionSize);
    put32(m_state.memory, kManifest + kEntrySchema, kSchema | (compression == Compression::zip ? kZipped : 0));
}

void FakeCamera::setPayload(std::uint64_t size)
{
    setValue64(kPayloadSize, size);
    setStreamPayload(size);
}

bool FakeCamera::unplugs() const
{
    return value(kUnplug) != 0;
}

Bytes FakeCamera::read(std::uint64_t address, std::size_t size) const
{
    const auto part = [&](const auto& bytes, std::size_t used, std::uint64_t offset) {
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
        return offset <= used && size <= used - offset ? Bytes(begin, begin + static_cast<std::ptrdiff_t>(size))
                                                       : Bytes();
    };
    if (address < kDescription)
        return part(m_state.memory, m_state.memory.size(), std::min<std::uint64_t>(address, kMemorySize));
    const std::uint64_t offset = std::min<std::uint64_t>(address - kDescription, kMaximumDescription);
    return part(m_state.description, m_state.descriptionSize, offset);
}

bool FakeCamera::write(std::uint64_t address, const std::uint8_t* data, std::size_t size)
{
    if (address > m_state.memory.size() || size > m_state.memory.size() - address)
        return false;
    std::copy_n(data, size, m_state.memory.data() + address);
    if (address == kWidth || address == kHeight || address == kPixelFormat)
        updatePayload();
    if (address == kTriggerSoftware)
        ++m_state.triggers;
    if (address == kStart)
        m_state.triggers = 0;
    if (address == kStart || (address == kStreamControl && !sends())) {
        m_state.part = Part::Leader;
        m_state.image = 0;
        m_state.sent = 0;
    }
    if (address == kStop)
        put32(m_state.memory, kStart, 0);
    return true;
}

void FakeCamera::setText(std::uint64_t address, const std::string& text)
{
    std::copy(text.begin(), text.end(), m_state.memory.data() + address);
}

void FakeCamera::updatePayload()
{
    const std::uint32_t bits = value(kPixelFormat) >> 16U & 0xffU; // of a pixel, as the PFNC has it
    setPayload(std::uint64_t{value(kWidth)} * value(kHeight) * bits / 8);
}

std::uint64_t FakeCamera::payload() const
{
    return m_state.oddPayload != 0 && m_state.image % 2 != 0 ? m_state.oddPayload
                                                             : get<std::uint64_t>(m_state.memory, kPayloadSize);
}

Bytes FakeCamera::leader() const
{
    Bytes packet(kLeaderSize);
    put(packet, 0, kLeaderMagic);
    put16(packet, 6, kLeaderSize);
    put(packet, 8, m_state.image);
    put(packet, 18, kImagePayload);
    put64(packet, 20, (m_state.image + 1) * 1'000'000);
    put(packet, 28, value(kPixelFormat));
    put(packet, 32, value(kWidth));
    put(packet, 36, value(kHeight));
    return packet;
}

Bytes FakeCamera::trailer() const
{
    Bytes packet(kTrailerSize);
    put(packet, 0, kTrailerMagic);
    put16(packet, 6, kTrailerSize);
    put(packet, 8, m_state.image);
    put64(packet, 20, payload());
    put(packet, 28, value(kHeight));
    return packet;
}

} // namespace usb
