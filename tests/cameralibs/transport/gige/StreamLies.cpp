#include "tests/cameralibs/transport/gige/Lies.h"

#include <algorithm>

namespace gige {

namespace {

using std::chrono::milliseconds;
using Packets = std::vector<Packet>;

constexpr std::size_t kBlockIdOffset = 2;
constexpr std::size_t kKindOffset = 4;
constexpr std::size_t kLargestDatagram = 65'507;

bool isPart(const Packet& packet, Part part)
{
    return packet.bytes.size() >= kHeaderSize && packet.bytes[kKindOffset] == static_cast<std::uint8_t>(part);
}

Packet* find(Packets& packets, Part part)
{
    const auto found =
        std::find_if(packets.begin(), packets.end(), [part](const Packet& packet) { return isPart(packet, part); });
    return found == packets.end() ? nullptr : &*found;
}

template <typename Number> void falsify(Packet& packet, std::size_t offset, Random& random)
{
    put(packet.bytes, offset, static_cast<Number>(random.absurd(8 * sizeof(Number))));
}

/// Calls for some packets of an image, at least one.
template <typename Work> void forSome(Packets& packets, Random& random, Work&& work)
{
    if (packets.empty())
        return;
    for (std::uint64_t count = 1 + random.below(packets.size()); count > 0; --count)
        work(random.pick(packets));
}

void shortPackets(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) {
        packet.bytes.resize(random.oneIn(2) ? random.below(kHeaderSize + 1) : random.below(packet.bytes.size() + 1));
    });
}

void oversizedPackets(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) {
        const std::size_t room = kLargestDatagram - std::min(packet.bytes.size(), kLargestDatagram);
        packet.bytes.resize(packet.bytes.size() + std::min(room, random.pick<std::size_t>({1, 8, 1500, 9000, room})),
                            0xff);
    });
}

void lostPackets(Packets& packets, Random& random)
{
    for (std::uint64_t count = random.below(packets.size() + 1); count > 0; --count)
        packets.erase(packets.begin() + static_cast<std::ptrdiff_t>(random.below(packets.size())));
}

void doubledPackets(Packets& packets, Random& random)
{
    const Packets once = packets;
    for (const Packet& packet : once) {
        if (random.oneIn(2))
            packets.insert(packets.begin() + static_cast<std::ptrdiff_t>(random.below(packets.size())), packet);
    }
}

void latePackets(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) { packet.after = milliseconds(random.pick({1, 20, 50, 150, 300})); });
}

void shuffledPackets(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) { std::swap(packet, random.pick(packets)); });
}

void wrongBlockIds(Packets& packets, Random& random)
{
    const auto wrong = static_cast<std::uint16_t>(random.absurd(16));
    if (random.oneIn(2)) { // a whole image
        for (Packet& packet : packets)
            put(packet.bytes, kBlockIdOffset, wrong);
    } else {
        forSome(packets, random, [&](Packet& packet) { falsify<std::uint16_t>(packet, kBlockIdOffset, random); });
    }
}

void wrongPacketIds(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) {
        const auto kind = get<std::uint8_t>(packet.bytes, kKindOffset);
        falsify<std::uint32_t>(packet, kKindOffset, random);
        put(packet.bytes, kKindOffset, kind);
    });
}

void wrongKinds(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) { falsify<std::uint8_t>(packet, kKindOffset, random); });
}

void packetErrors(Packets& packets, Random& random)
{
    forSome(packets, random, [&](Packet& packet) {
        put(packet.bytes, 0, random.pick<std::uint16_t>({kPacketUnavailable, 0x8010, 0x8011, 0x8014, 0x0100, 0xffff}));
    });
}

/// The header of GigE Vision 2: a block id of 64 bits and a packet id of 32, announced by the uppermost bit of the
/// kind.
void extendedIds(Packets& packets, Random& random)
{
    const std::uint64_t block = random.absurd(64);
    const bool wholly = random.oneIn(2);
    for (Packet& packet : packets) {
        if (packet.bytes.size() < kHeaderSize || (!wholly && random.oneIn(2)))
            continue;
        const auto id = get<std::uint32_t>(packet.bytes, kKindOffset);
        put(packet.bytes, kKindOffset, id | 0x80000000U);
        if (!wholly && random.oneIn(2))
            continue; // announced only
        Bytes more;
        append(more, block);
        append(more, random.oneIn(20) ? static_cast<std::uint32_t>(random.absurd(32)) : id & 0xffffffU);
        packet.bytes.insert(packet.bytes.begin() + kHeaderSize, more.begin(), more.end());
    }
}

void falseLeaders(Packets& packets, Random& random)
{
    Packet* leader = find(packets, Part::leader);
    if (leader == nullptr)
        return;
    for (const std::size_t offset : {kPixelFormatOffset, kWidthOffset, kHeightOffset, kPaddingOffset}) {
        if (random.oneIn(2))
            falsify<std::uint32_t>(*leader, offset, random);
    }
    if (random.oneIn(4))
        falsify<std::uint64_t>(*leader, kTimestampOffset, random);
    if (random.oneIn(4))
        leader->bytes.resize(kHeaderSize + random.below(2 * kLeaderSize));
}

void falseTrailers(Packets& packets, Random& random)
{
    Packet* trailer = find(packets, Part::trailer);
    if (trailer == nullptr)
        return;
    if (random.oneIn(2))
        falsify<std::uint16_t>(*trailer, kPayloadTypeOffset, random);
    if (random.oneIn(2))
        falsify<std::uint32_t>(*trailer, kTrailerHeightOffset, random);
    if (random.oneIn(2))
        falsify<std::uint16_t>(*trailer, 6, random); // its packet id
    if (random.oneIn(4))
        trailer->bytes.resize(kHeaderSize + random.below(2 * kTrailerSize));
}

void payloadTypes(Packets& packets, Random& random)
{
    const auto type = random.pick<std::uint16_t>({0, 2, 3, 4, 5, 6, 7, 8, 9, kMultipartPayload, 0xb, 0x4001, 0x4004,
                                                  0x8001, 0xffff, static_cast<std::uint16_t>(random.number())});
    for (const Part part : {Part::leader, Part::trailer}) {
        if (Packet* packet = find(packets, part); packet != nullptr && !random.oneIn(4))
            put(packet->bytes, kPayloadTypeOffset, type);
    }
}

/// The leader of a payload of several parts tells their number in its packet id, and for each of them its type, its
/// length (48 bits), its format, its place and its sizes.
void multipart(Packets& packets, Random& random)
{
    Packet* leader = find(packets, Part::leader);
    if (leader == nullptr)
        return;
    constexpr std::size_t kFirstPart = 20;
    constexpr std::size_t kPartSize = 48;
    const auto parts = random.pick<std::size_t>({0, 1, 2, 5, 29, 255});
    put(leader->bytes, kPayloadTypeOffset, kMultipartPayload);
    put(leader->bytes, kKindOffset + 3, static_cast<std::uint8_t>(parts));
    leader->bytes.resize(kFirstPart);
    for (std::size_t part = 0; part < parts; ++part) {
        Bytes bytes(kPartSize);
        put(bytes, 0, random.pick<std::uint16_t>({1, 2, 3, static_cast<std::uint16_t>(random.number())}));
        const std::uint64_t length = random.oneIn(2) ? random.absurd(48) : random.below(1'000'000);
        put(bytes, 2, static_cast<std::uint16_t>(length >> 32U));
        put(bytes, 4, static_cast<std::uint32_t>(length));
        for (std::size_t offset = 8; offset < kPartSize; offset += 4)
            put(bytes, offset, static_cast<std::uint32_t>(random.absurd(32)));
        leader->bytes.insert(leader->bytes.end(), bytes.begin(), bytes.end());
    }
    if (random.oneIn(4))
        leader->bytes.resize(kFirstPart + random.below(leader->bytes.size()));
    if (Packet* trailer = find(packets, Part::trailer); trailer != nullptr && random.oneIn(2))
        put(trailer->bytes, kPayloadTypeOffset, kMultipartPayload);
    // Data of several parts begins with the part's number and an offset into it.
    for (Packet& packet : packets) {
        if (isPart(packet, Part::data) && random.oneIn(2)) {
            put(packet.bytes, kHeaderSize, static_cast<std::uint16_t>(random.absurd(16)));
            falsify<std::uint16_t>(packet, kHeaderSize + 2, random);
            falsify<std::uint32_t>(packet, kHeaderSize + 4, random);
        }
    }
}

/// More data than announced, between the honest packets and the trailer.
void largerImages(Packets& packets, Random& random)
{
    const Packet* data = find(packets, Part::data);
    if (data == nullptr)
        return;
    Packet more = *data;
    const Packet trailer = packets.back();
    packets.pop_back();
    auto id = get<std::uint32_t>(trailer.bytes, kKindOffset) & 0xffffffU;
    for (auto count = random.pick<std::uint32_t>({1, 10, 1000, 5000}); count > 0; --count) {
        put(more.bytes, kKindOffset, static_cast<std::uint32_t>(Part::data) << 24U | id++);
        packets.push_back(more);
    }
    packets.push_back(trailer);
    put(packets.back().bytes, kKindOffset, static_cast<std::uint32_t>(Part::trailer) << 24U | id);
}

void withoutLeader(Packets& packets, Random& /*random*/)
{
    packets.erase(std::remove_if(packets.begin(), packets.end(),
                                 [](const Packet& packet) { return isPart(packet, Part::leader); }),
                  packets.end());
}

/// Images that begin and never end, one after the other.
void onlyLeaders(Packets& packets, Random& random)
{
    const Packet* found = find(packets, Part::leader);
    if (found == nullptr)
        return;
    Packet leader = *found;
    auto block = get<std::uint16_t>(leader.bytes, kBlockIdOffset);
    packets.clear();
    for (auto count = random.pick<int>({1, 50, 1000}); count > 0; --count) {
        put(leader.bytes, kBlockIdOffset, ++block);
        packets.push_back(leader);
    }
}

/// A second leader that announces another image under the same id.
void secondLeader(Packets& packets, Random& random)
{
    const Packet* found = find(packets, Part::leader);
    if (found == nullptr)
        return;
    Packet leader = *found;
    put(leader.bytes, kWidthOffset, random.pick<std::uint32_t>({1, 64, 4096, 0xffffffff}));
    put(leader.bytes, kHeightOffset, random.pick<std::uint32_t>({1, 64, 4096, 0xffffffff}));
    packets.insert(packets.begin() + static_cast<std::ptrdiff_t>(random.below(packets.size() + 1)), leader);
}

void garbagePackets(Packets& packets, Random& random)
{
    const Bytes honest = packets.empty() ? Bytes{} : packets.front().bytes;
    if (random.oneIn(2))
        packets.clear();
    for (int i = 0; i < 300; ++i) {
        Bytes bytes = random.bytes(random.pick<std::size_t>({0, 1, 7, 8, 9, 12, 36, 44, 60, 300, 1400}));
        for (std::size_t at = 0; at < random.pick<std::size_t>({0, 2, 4, 8, 12}); ++at) {
            if (at < honest.size() && at < bytes.size())
                bytes[at] = honest[at];
        }
        packets.push_back({bytes});
    }
}

void silentStream(Packets& packets, Random& /*random*/)
{
    packets.clear();
}

} // namespace

std::vector<Lie> streamLies()
{
    return {
        {"short-packets", shortPackets},    {"oversized-packets", oversizedPackets},
        {"lost-packets", lostPackets},      {"doubled-packets", doubledPackets},
        {"late-packets", latePackets},      {"shuffled-packets", shuffledPackets},
        {"wrong-block-ids", wrongBlockIds}, {"wrong-packet-ids", wrongPacketIds},
        {"wrong-kinds", wrongKinds},        {"packet-errors", packetErrors},
        {"extended-ids", extendedIds},      {"false-leaders", falseLeaders},
        {"false-trailers", falseTrailers},  {"payload-types", payloadTypes},
        {"multipart", multipart},           {"larger-images", largerImages},
        {"without-leader", withoutLeader},  {"only-leaders", onlyLeaders},
        {"second-leader", secondLeader},    {"garbage-packets", garbagePackets},
        {"silent-stream", silentStream},
    };
}

} // namespace gige
