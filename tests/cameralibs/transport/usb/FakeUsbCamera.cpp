#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include <algorithm>
#include <cstring>

namespace usb {

namespace {

// The registers of every USB3 Vision device, and the tables they lead to.
constexpr std::uint64_t kManufacturer = 0x4;
constexpr std::uint64_t kModel = 0x44;
constexpr std::uint64_t kSerial = 0x144;
constexpr std::uint64_t kResponseTime = 0x1cc; // ms
constexpr std::uint64_t kManifestAddress = 0x1d0;
constexpr std::uint64_t kTechnologyAddress = 0x1d8;
constexpr std::uint64_t kManifest = 0x1000;
constexpr std::uint64_t kTechnology = 0x10000;
constexpr std::uint64_t kStream = kStreamInfo;
constexpr std::uint64_t kDescription = 0x100000;

// The camera's own, as in its description.
constexpr std::uint64_t kStart = 0x30010;
constexpr std::uint64_t kStop = 0x30014;
constexpr std::uint64_t kUnplug = 0x3001c;
constexpr std::uint32_t kMono8 = 0x01080001;

constexpr std::size_t kMaximumTransfer = 0x400;
constexpr std::uint32_t kAlignment = 3U << 24; // as a power of 2

// A command and its answer: magic, flags or status, command, size, id; then what belongs to the command.
constexpr std::size_t kHeaderSize = 12;
constexpr std::uint16_t kReadCommand = 0x0800;
constexpr std::uint16_t kInvalidAddress = 0x8003;

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

void FakeCamera::reset()
{
    m_state = {};
    setText(kManufacturer, "Fake Maker");
    setText(kModel, "U3V-Fake");
    setText(kSerial, "U01");
    put32(m_state.memory, kResponseTime, 100);
    put(m_state.memory, kManifestAddress, kManifest);
    put(m_state.memory, kTechnologyAddress, kTechnology);

    put64(m_state.memory, kManifest, 1);
    put32(m_state.memory, kManifest + 0x0c, 0x01010000); // not compressed
    put(m_state.memory, kManifest + 0x10, kDescription);
    put64(m_state.memory, kManifest + 0x18, m_description.size());

    put32(m_state.memory, kTechnology + 0x14, kMaximumTransfer); // of a command
    put32(m_state.memory, kTechnology + 0x18, kMaximumTransfer); // of an answer
    put(m_state.memory, kTechnology + 0x20, kStream);
    put(m_state.memory, kStreamInfo, kAlignment);
    put32(m_state.memory, kStream + 0x10, kLeaderSize);
    put32(m_state.memory, kStream + 0x14, kTrailerSize);

    put32(m_state.memory, kWidth, 320);
    put32(m_state.memory, kHeight, 240);
    put(m_state.memory, kPixelFormat, kMono8);
    updatePayload();
}

Bytes FakeCamera::execute(const Bytes& command)
{
    Bytes answer(kHeaderSize + 4);
    std::copy_n(command.begin(), kHeaderSize, answer.begin());
    put16(answer, 4, 0);
    const auto code = get<std::uint16_t>(command, 6);
    put(answer, 6, static_cast<std::uint16_t>(code + 1));
    const auto address = get<std::uint64_t>(command, kHeaderSize);
    if (code == kReadCommand) {
        const Bytes data = read(address, get<std::uint16_t>(command, kHeaderSize + 10));
        answer.resize(kHeaderSize);
        answer.insert(answer.end(), data.begin(), data.end());
    } else {
        const std::size_t size = get<std::uint16_t>(command, 8) - sizeof address;
        if (!write(address, command.data() + kHeaderSize + sizeof address, size))
            put(answer, 4, kInvalidAddress);
        put(answer, kHeaderSize + 2, static_cast<std::uint16_t>(size));
    }
    put(answer, 8, static_cast<std::uint16_t>(answer.size() - kHeaderSize));
    return answer;
}

bool FakeCamera::sends() const
{
    return value(kStart) != 0 && (value(kStreamControl) & 1U) != 0;
}

std::size_t FakeCamera::send(std::uint8_t* to, std::size_t room)
{
    if (m_state.part == Part::Payload) {
        const std::size_t size = std::min<std::size_t>(room, value(kPayloadSize) - m_state.sent);
        for (std::size_t i = 0; i < size; ++i)
            to[i] = static_cast<std::uint8_t>(m_state.image + m_state.sent + i);
        m_state.sent += size;
        if (m_state.sent == value(kPayloadSize))
            m_state.part = Part::Trailer;
        return size;
    }
    const Bytes packet = m_state.part == Part::Leader ? leader() : trailer();
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

bool FakeCamera::unplugs() const
{
    return value(kUnplug) != 0;
}

Bytes FakeCamera::read(std::uint64_t address, std::size_t size) const
{
    Bytes data(size);
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint64_t at = address + i;
        if (at < m_state.memory.size()) {
            data[i] = m_state.memory[at];
        } else if (at >= kDescription && at - kDescription < m_description.size()) {
            data[i] = static_cast<std::uint8_t>(m_description[at - kDescription]);
        }
    }
    return data;
}

bool FakeCamera::write(std::uint64_t address, const std::uint8_t* data, std::size_t size)
{
    if (address > m_state.memory.size() || size > m_state.memory.size() - address)
        return false;
    std::copy_n(data, size, m_state.memory.data() + address);
    if (address == kWidth || address == kHeight)
        updatePayload();
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
    const std::uint32_t size = value(kWidth) * value(kHeight);
    put(m_state.memory, kPayloadSize, size);
    put64(m_state.memory, kStreamPayload, size);
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
    put64(packet, 20, value(kPayloadSize));
    put(packet, 28, value(kHeight));
    return packet;
}

} // namespace usb
