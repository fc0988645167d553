#include "tests/cameralibs/transport/gige/GigeCamera.h"
#include "tests/cameralibs/transport/gige/ZipFile.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace gige {

namespace {

constexpr std::uint32_t kBroadcast = 0xffffffff;
constexpr std::size_t kKeptImages = 4;

// Limits for absurd registers.
constexpr std::size_t kLargestImage = 16'000'000;
constexpr std::size_t kSmallestPacket = 576;

/// How often the camera checks the heartbeat.
constexpr std::chrono::milliseconds kIdle{200};

Bytes bodyOf(const Bytes& packet)
{
    return {packet.begin() + static_cast<std::ptrdiff_t>(std::min(packet.size(), kHeaderSize)), packet.end()};
}

std::uint16_t blockId(std::uint64_t image)
{
    return static_cast<std::uint16_t>((image - 1) % 65535 + 1); // never 0
}

} // namespace

GigeCamera::GigeCamera(const CameraSettings& settings, Behaviour& behaviour)
    : m_settings(settings)
    , m_behaviour(behaviour)
    , m_memory(addressOf(settings.address), settings.serialNumber)
    , m_control({addressOf(settings.address), kControlPort})
    , m_broadcast({kBroadcast, kControlPort})
    , m_stream({addressOf(settings.address), 0})
    , m_foreignControl({addressOf(settings.foreignAddress), kControlPort})
    , m_foreignStream({addressOf(settings.foreignAddress), 0})
{
    m_memory.setValue(kStreamSourcePort, m_stream.port());
    if (!m_settings.resends)
        m_memory.setValue(kCapability, m_memory.value(kCapability) & ~kCanResend);
    if (m_settings.zipped)
        m_memory.setDescription(zip("gv-test.xml", m_memory.description()).bytes, "gv-test.zip");
    if (!m_settings.url.empty())
        m_memory.setText(kFirstUrl, m_settings.url, kUrlSize);
    m_behaviour.prepare(m_memory);
}

void GigeCamera::run(int until)
{
    for (;;) {
        const auto wait = std::chrono::duration_cast<std::chrono::nanoseconds>(nextEvent() - Clock::now()).count();
        const timespec timeout = {std::max<std::int64_t>(wait, 0) / 1'000'000'000,
                                  std::max<std::int64_t>(wait, 0) % 1'000'000'000};
        const bool hangs = Clock::now() < m_awake;
        std::array<pollfd, 3> waited = {{{until, POLLIN, 0},
                                         {hangs ? -1 : m_control.descriptor(), POLLIN, 0},
                                         {hangs ? -1 : m_broadcast.descriptor(), POLLIN, 0}}};
        (void)::ppoll(waited.data(), waited.size(), &timeout, nullptr);
        if (waited[0].revents != 0)
            return;
        if (hangs)
            continue;
        for (UdpSocket* socket : {&m_control, &m_broadcast})
            receive(*socket);
        const auto now = Clock::now();
        while (!m_delayed.empty() && m_delayed.begin()->first <= now) {
            const Delayed next = std::move(m_delayed.extract(m_delayed.begin()).mapped());
            sendNow(next.packet, next.to, next.control);
        }
        // A client that waits for an answer cannot send its heartbeat meanwhile.
        if (owesControllerAnAnswer())
            m_heardOfController = now;
        if (m_controller && now - m_heardOfController > std::chrono::milliseconds(m_memory.value(kHeartbeat)))
            giveControlBack();
        if (m_acquiring && m_memory.value(kTriggerMode) == 0 && m_nextImage <= now)
            sendImage();
    }
}

GigeCamera::Clock::time_point GigeCamera::nextEvent() const
{
    const auto now = Clock::now();
    auto next = now + kIdle;
    if (now < m_awake)
        return std::min(next, m_awake);
    if (!m_delayed.empty())
        next = std::min(next, m_delayed.begin()->first);
    if (m_acquiring && m_memory.value(kTriggerMode) == 0)
        next = std::min(next, m_nextImage);
    return next;
}

void GigeCamera::receive(UdpSocket& socket)
{
    const auto received = socket.receive();
    if (!received || received->first.size() < kHeaderSize || received->first[0] != kCommandKey)
        return;
    const auto& [command, client] = *received;
    if (ignores(command, client))
        return;
    if (m_controller == client)
        m_heardOfController = Clock::now();
    Exchange exchange{command, {}};
    Bytes answer = answerTo(command, client);
    if ((command[1] & kAnswerWanted) != 0 && !answer.empty())
        exchange.answers.push_back({std::move(answer)});
    m_behaviour.answer(exchange);
    for (Packet& packet : exchange.answers)
        send(std::move(packet), client, true);
    if (exchange.hang.count() != 0)
        m_awake = Clock::now() + exchange.hang;
}

Bytes GigeCamera::answerTo(const Bytes& command, const Peer& client)
{
    std::uint16_t status = kSuccess;
    Bytes body;
    switch (codeOf(command)) {
    case Code::discovery:
        body = *m_memory.read(0, m_settings.discoveryAnswer);
        break;
    case Code::readRegister:
        body = readRegisters(command, status);
        break;
    case Code::readMemory:
        body = readMemory(command, status);
        break;
    case Code::writeRegister:
        body = writeRegisters(command, client, status);
        break;
    case Code::writeMemory: {
        const Bytes data = bodyOf(command);
        if (data.size() >= 4)
            status = write(get<std::uint32_t>(data, 0), {data.begin() + 4, data.end()}, client);
        append<std::uint16_t>(body, 0);
        append(body, static_cast<std::uint16_t>(status == kSuccess ? data.size() - 4 : 0));
        break;
    }
    case Code::resend:
        resend(command);
        return {};
    default:
        status = kNotImplemented;
    }
    Bytes answer;
    append(answer, status);
    append(answer, static_cast<std::uint16_t>(get<std::uint16_t>(command, 2) + 1));
    append(answer, static_cast<std::uint16_t>(body.size()));
    append(answer, get<std::uint16_t>(command, 6));
    answer.insert(answer.end(), body.begin(), body.end());
    return answer;
}

Bytes GigeCamera::readRegisters(const Bytes& command, std::uint16_t& status) const
{
    Bytes values;
    const Bytes addresses = bodyOf(command);
    for (std::size_t at = 0; at + 4 <= addresses.size(); at += 4) {
        const auto value = m_memory.read(get<std::uint32_t>(addresses, at), 4);
        if (!value) {
            status = kInvalidAddress;
            break;
        }
        values.insert(values.end(), value->begin(), value->end());
    }
    return values;
}

Bytes GigeCamera::readMemory(const Bytes& command, std::uint16_t& status) const
{
    const Bytes wanted = bodyOf(command);
    const auto address = get<std::uint32_t>(wanted, 0);
    const std::size_t size = get<std::uint16_t>(wanted, 6);
    Bytes body;
    append(body, address);
    if (address % 4 != 0 || size % 4 != 0) {
        status = kBadAlignment;
    } else if (size > kLargestMemoryRead) {
        status = kInvalidParameter;
    } else if (const auto data = m_memory.read(address, size)) {
        body.insert(body.end(), data->begin(), data->end());
    } else {
        status = kInvalidAddress;
    }
    return body;
}

Bytes GigeCamera::writeRegisters(const Bytes& command, const Peer& client, std::uint16_t& status)
{
    const Bytes pairs = bodyOf(command);
    std::uint16_t written = 0;
    for (std::size_t at = 0; at + 8 <= pairs.size() && status == kSuccess; at += 8) {
        const auto data = pairs.begin() + static_cast<std::ptrdiff_t>(at) + 4;
        status = write(get<std::uint32_t>(pairs, at), {data, data + 4}, client);
        written = static_cast<std::uint16_t>(written + (status == kSuccess ? 1 : 0));
    }
    Bytes body;
    append<std::uint16_t>(body, 0);
    append(body, written);
    return body;
}

std::uint16_t GigeCamera::write(std::uint32_t address, const Bytes& data, const Peer& client)
{
    const bool takesControl = address == kPrivilege && !m_controller;
    if (!takesControl && !(m_controller == client))
        return kAccessDenied;
    const std::uint16_t status = m_memory.write(address, data);
    if (status != kSuccess)
        return status;
    const std::uint32_t value = m_memory.value(address);
    switch (address) {
    case kPrivilege:
        if ((value & kInControl) == 0) {
            giveControlBack();
        } else {
            m_controller = client;
            m_heardOfController = Clock::now();
        }
        break;
    case kStreamPacketSize:
        m_memory.setValue(address, value & ~kFireTestPacket);
        if ((value & kFireTestPacket) != 0)
            sendTestPacket(value & kPacketSizeMask);
        break;
    case kAcquisition:
        if (value != 0) {
            beginAcquisition();
        } else {
            m_acquiring = false;
        }
        break;
    case kTrigger:
        if (m_acquiring && m_memory.value(kTriggerMode) != 0)
            sendImage();
        break;
    default:
        break;
    }
    return kSuccess;
}

bool GigeCamera::ignores(const Bytes& command, const Peer& client)
{
    const bool ofOther = m_controller && !(m_controller == client) && codeOf(command) != Code::discovery;
    return ofOther && ++m_answeredOthers > m_settings.answersToOthers;
}

bool GigeCamera::owesControllerAnAnswer() const
{
    return std::any_of(m_delayed.begin(), m_delayed.end(),
                       [this](const auto& entry) { return entry.second.control && m_controller == entry.second.to; });
}

void GigeCamera::giveControlBack()
{
    m_controller.reset();
    m_acquiring = false;
    m_memory.setValue(kPrivilege, 0);
    m_memory.setValue(kStreamPort, 0);
    m_memory.setValue(kTestDelay, 0); // the next client finds a camera that answers at once
}

void GigeCamera::resend(const Bytes& command)
{
    const auto block = get<std::uint16_t>(command, kHeaderSize + 2);
    const auto first = get<std::uint32_t>(command, kHeaderSize + 4);
    const auto last = get<std::uint32_t>(command, kHeaderSize + 8);
    for (const auto& image : m_kept) {
        if (get<std::uint16_t>(image.front().bytes, 2) != block)
            continue;
        for (std::size_t id = first; id <= last && id < image.size(); ++id)
            sendStream(image[id]);
    }
}

void GigeCamera::beginAcquisition()
{
    m_acquiring = true;
    m_nextImage = Clock::now();
    m_image = 1;
    m_kept.clear();
}

void GigeCamera::sendImage()
{
    std::vector<Packet> packets = imagePackets();
    m_kept.push_back(packets);
    if (m_kept.size() > kKeptImages)
        m_kept.pop_front();
    if (m_settings.loseEvery != 0) {
        const auto lost = [this](const Packet& packet) {
            return packet.bytes[4] == static_cast<std::uint8_t>(Part::data) &&
                   ++m_dataPackets % m_settings.loseEvery == 0;
        };
        packets.erase(std::remove_if(packets.begin(), packets.end(), lost), packets.end());
    }
    m_behaviour.send(packets);
    for (const Packet& packet : packets)
        sendStream(packet);
    ++m_image;

    const std::uint32_t bits = m_memory.value(kFrameRate);
    float rate = 0;
    std::memcpy(&rate, &bits, sizeof rate);
    const std::chrono::duration<double> interval(1.0 / (rate >= 1 && rate <= 1000 ? rate : 25.0F));
    // A delayed camera does not catch up.
    m_nextImage = std::max(m_nextImage + std::chrono::duration_cast<Clock::duration>(interval), Clock::now());
}

void GigeCamera::sendTestPacket(std::size_t size)
{
    if (size > m_settings.largestPacket || size < kIpHeadersSize + kHeaderSize)
        return;
    std::vector<Packet> packets = {{Bytes(size - kIpHeadersSize)}};
    m_behaviour.send(packets);
    for (const Packet& packet : packets)
        sendStream(packet);
}

std::vector<Packet> GigeCamera::imagePackets() const
{
    std::vector<Packet> packets;
    const auto time = static_cast<std::uint64_t>(Clock::now().time_since_epoch().count());
    Bytes leader = packet(Part::leader, 0, kLeaderSize);
    put(leader, kPayloadTypeOffset, kImagePayload);
    put(leader, kTimestampOffset, time);
    put(leader, kPixelFormatOffset, m_memory.value(kPixelFormat));
    put(leader, kWidthOffset, m_memory.value(kWidth));
    put(leader, kHeightOffset, m_memory.value(kHeight));
    packets.push_back({std::move(leader)});

    const std::size_t payload = std::min(m_memory.imageSize(), kLargestImage);
    const std::size_t packetSize = m_memory.value(kStreamPacketSize) & kPacketSizeMask;
    const std::size_t room = std::max(packetSize, kSmallestPacket) - kIpHeadersSize - kHeaderSize;
    std::uint32_t id = 1;
    for (std::size_t sent = 0; sent < payload; sent += room) {
        const std::size_t size = std::min(room, payload - sent);
        Bytes data = packet(Part::data, id++, kHeaderSize + size);
        for (std::size_t i = 0; i < size; ++i)
            data[kHeaderSize + i] = static_cast<std::uint8_t>(m_image + sent + i);
        packets.push_back({std::move(data)});
    }

    Bytes trailer = packet(Part::trailer, id, kTrailerSize);
    put(trailer, kPayloadTypeOffset, kImagePayload);
    put(trailer, kTrailerHeightOffset, m_memory.value(kHeight));
    packets.push_back({std::move(trailer)});
    return packets;
}

Bytes GigeCamera::packet(Part part, std::uint32_t id, std::size_t size) const
{
    Bytes bytes(size);
    put(bytes, 2, blockId(m_image));
    put(bytes, 4, static_cast<std::uint32_t>(part) << 24 | id);
    return bytes;
}

void GigeCamera::sendStream(const Packet& packet)
{
    const Peer to{m_memory.value(kStreamAddress), static_cast<std::uint16_t>(m_memory.value(kStreamPort))};
    if (to.port != 0)
        send(packet, to, false);
}

void GigeCamera::send(Packet packet, const Peer& to, bool control)
{
    if (packet.after.count() == 0) {
        sendNow(packet, to, control);
        return;
    }
    const auto due = Clock::now() + packet.after;
    m_delayed.emplace(due, Delayed{std::move(packet), to, control});
}

void GigeCamera::sendNow(const Packet& packet, const Peer& to, bool control)
{
    UdpSocket& own = control ? m_control : m_stream;
    UdpSocket& foreign = control ? m_foreignControl : m_foreignStream;
    (packet.foreign ? foreign : own).send(packet.bytes, to);
}

} // namespace gige
