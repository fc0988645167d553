#include "tests/cameralibs/transport/gige/Lies.h"
#include "tests/cameralibs/transport/gige/Slowness.h"

#include <algorithm>

namespace gige {

namespace {

using std::chrono::milliseconds;

/// How long a lie goes on that never ends: longer than any session.
constexpr milliseconds kForEver{120'000};

bool isRead(const Exchange& exchange)
{
    const Code code = codeOf(exchange.command);
    return code == Code::readMemory || code == Code::readRegister;
}

void shortAnswers(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers)
        packet.bytes.resize(random.below(packet.bytes.size()));
}

void oversizedAnswers(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers) {
        const Bytes more = random.bytes(random.pick<std::size_t>({1, 4, 100, 600, 2000, 65'507 - packet.bytes.size()}));
        packet.bytes.insert(packet.bytes.end(), more.begin(), more.end());
        if (random.oneIn(2))
            put(packet.bytes, 4, static_cast<std::uint16_t>(packet.bytes.size() - kHeaderSize));
    }
}

void falseSizes(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers)
        put(packet.bytes, 4, static_cast<std::uint16_t>(random.absurd(16)));
}

void wrongIds(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers) {
        const auto id = get<std::uint16_t>(packet.bytes, 6);
        put(packet.bytes, 6,
            random.pick({static_cast<std::uint16_t>(id + 1), static_cast<std::uint16_t>(id - 1), std::uint16_t{0},
                         static_cast<std::uint16_t>(random.number())}));
    }
}

void wrongCommands(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers) {
        put(packet.bytes, 2,
            random.pick<std::uint16_t>(
                {0, 0x03, 0x81, 0x83, 0x85, 0x87, 0x41, 0xc1, static_cast<std::uint16_t>(random.number())}));
    }
}

void doubledAnswers(Exchange& exchange, Random& random)
{
    const std::vector<Packet> once = exchange.answers;
    for (auto copies = random.pick<std::uint64_t>({1, 1, 3, 100}); copies > 0; --copies)
        exchange.answers.insert(exchange.answers.end(), once.begin(), once.end());
}

void lateAnswers(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers)
        packet.after = milliseconds(random.pick({100, 400, 600, 1400, 2400, 2900, 3500}));
}

void pendingForEver(Exchange& exchange, Random& random)
{
    const auto announced = random.pick<std::uint16_t>({0, 1, 500, 1000, 0xffff});
    const auto interval = milliseconds(random.pick({20, 200, 450, 900}));
    exchange.answers.clear();
    for (milliseconds after{0}; after < kForEver; after += interval)
        exchange.answers.push_back(pendingAnswer(exchange.command, announced, after));
}

void pendingThenSilence(Exchange& exchange, Random& random)
{
    exchange.answers = {
        pendingAnswer(exchange.command, random.pick<std::uint16_t>({0, 2000, 0xffff}), milliseconds(0))};
}

void pendingThenLate(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers)
        packet.after = milliseconds(random.pick({50, 700, 1500, 4000}));
    exchange.answers.insert(
        exchange.answers.begin(),
        pendingAnswer(exchange.command, random.pick<std::uint16_t>({100, 1000, 5000}), milliseconds(0)));
}

void errorAnswers(Exchange& exchange, Random& random)
{
    for (Packet& packet : exchange.answers) {
        put(packet.bytes, 0,
            random.pick({kNotImplemented, kInvalidParameter, kInvalidAddress, kWriteProtected, kBadAlignment,
                         kAccessDenied, std::uint16_t{0x8007}, std::uint16_t{0x8fff},
                         static_cast<std::uint16_t>(random.number())}));
        if (random.oneIn(2)) {
            packet.bytes.resize(kHeaderSize);
            put(packet.bytes, 4, std::uint16_t{0});
        }
    }
}

void silence(Exchange& exchange, Random& /*random*/)
{
    exchange.answers.clear();
}

void shortHangs(Exchange& exchange, Random& random)
{
    exchange.hang = milliseconds(random.pick({300, 1500}));
}

void hangForEver(Exchange& exchange, Random& /*random*/)
{
    exchange.answers.clear();
    exchange.hang = kForEver;
}

void foreignAnswers(Exchange& exchange, Random& random)
{
    std::vector<Packet> foreign = exchange.answers;
    for (Packet& packet : foreign) {
        packet.foreign = true;
        if (packet.bytes.size() > kHeaderSize && random.oneIn(2))
            random.pick(packet.bytes) = static_cast<std::uint8_t>(random.number());
    }
    if (random.oneIn(2))
        exchange.answers.clear();
    exchange.answers.insert(exchange.answers.begin(), foreign.begin(), foreign.end());
}

void falseMemory(Exchange& exchange, Random& random)
{
    if (codeOf(exchange.command) != Code::readMemory)
        return;
    for (Packet& packet : exchange.answers) {
        Bytes& bytes = packet.bytes;
        switch (random.below(4)) {
        case 0: // of another place
            put(bytes, kHeaderSize, static_cast<std::uint32_t>(random.absurd(32)));
            break;
        case 1: // less or more, with a size that fits
            bytes.resize(kHeaderSize + random.below(2 * bytes.size()));
            put(bytes, 4, static_cast<std::uint16_t>(bytes.size() - kHeaderSize));
            break;
        default:
            for (std::size_t i = kHeaderSize + 4; i < bytes.size(); ++i)
                bytes[i] = static_cast<std::uint8_t>(random.number());
        }
    }
}

void falseValues(Exchange& exchange, Random& random)
{
    if (!isRead(exchange))
        return;
    const std::size_t first = kHeaderSize + (codeOf(exchange.command) == Code::readMemory ? 4 : 0);
    for (Packet& packet : exchange.answers) {
        for (std::size_t at = first; at + 4 <= packet.bytes.size(); at += 4)
            put(packet.bytes, at, static_cast<std::uint32_t>(random.absurd(32)));
    }
}

void writesWithoutEffect(Exchange& exchange, Random& random)
{
    if (isRead(exchange))
        return;
    for (Packet& packet : exchange.answers)
        put(packet.bytes, kHeaderSize + 2, static_cast<std::uint16_t>(random.absurd(16)));
}

/// To the port that has asked: answers to nothing, commands, garbage.
void unaskedPackets(Exchange& exchange, Random& random)
{
    for (int i = 0; i < 200; ++i) {
        Bytes bytes = random.bytes(random.pick<std::size_t>({0, 1, 7, 8, 12, 40, 600, 1400}));
        if (random.oneIn(2))
            put(bytes, 0, static_cast<std::uint16_t>(kCommandKey << 8U | kAnswerWanted));
        if (random.oneIn(2))
            put(bytes, 2, random.pick<std::uint16_t>({0x02, 0x03, 0x80, 0x81, 0x84, 0x85, 0x89, 0xc0, 0xc2}));
        exchange.answers.push_back({bytes, milliseconds(random.pick<int>({0, 0, 5, 500}))});
    }
    if (random.oneIn(2))
        std::rotate(exchange.answers.begin(), exchange.answers.begin() + 1, exchange.answers.end());
}

/// As if another program had taken the camera over.
void controlLost(Exchange& exchange, Random& random)
{
    if (codeOf(exchange.command) != Code::readRegister ||
        get<std::uint32_t>(exchange.command, kHeaderSize) != kPrivilege)
        return;
    for (Packet& packet : exchange.answers)
        put(packet.bytes, kHeaderSize, static_cast<std::uint32_t>(random.pick({0U, 0U, 1U, 0xffffffffU})));
}

void endlessDiscovery(Exchange& exchange, Random& random)
{
    const Packet once = exchange.answers.front();
    const auto interval = milliseconds(random.pick({1, 100, 900}));
    for (milliseconds after = interval; after < kForEver; after += interval)
        exchange.answers.push_back({once.bytes, after});
}

void manyCameras(Exchange& exchange, Random& random)
{
    Bytes one = exchange.answers.front().bytes;
    for (std::uint32_t i = 0; i < 700; ++i) {
        put(one, kHeaderSize + kMacLow, i);
        put(one, kHeaderSize + kSerialNumber, i);
        if (random.oneIn(2))
            put(one, kHeaderSize + kAddress, 0x7f000100 + i);
        exchange.answers.push_back({one, milliseconds(i / 100)});
    }
}

void garbageDiscovery(Exchange& exchange, Random& random)
{
    Bytes& bytes = exchange.answers.front().bytes;
    for (auto i = random.pick<std::size_t>({2, 4, kHeaderSize, kHeaderSize + kManufacturer}); i < bytes.size(); ++i) {
        if (i < kHeaderSize + kAddress || i >= kHeaderSize + kAddress + 4)
            bytes[i] = static_cast<std::uint8_t>(random.number());
    }
}

} // namespace

std::vector<Lie> discoveryLies()
{
    return {
        {"discovery-endless", DiscoveryLie{endlessDiscovery}},   {"discovery-many-cameras", DiscoveryLie{manyCameras}},
        {"discovery-garbage", DiscoveryLie{garbageDiscovery}},   {"discovery-short", DiscoveryLie{shortAnswers}},
        {"discovery-oversized", DiscoveryLie{oversizedAnswers}}, {"discovery-unasked", DiscoveryLie{unaskedPackets}},
    };
}

std::vector<Lie> answerLies()
{
    return {
        {"short-answers", shortAnswers},
        {"oversized-answers", oversizedAnswers},
        {"false-sizes", falseSizes},
        {"wrong-ids", wrongIds},
        {"wrong-commands", wrongCommands},
        {"doubled-answers", doubledAnswers},
        {"late-answers", lateAnswers},
        {"pending-for-ever", pendingForEver},
        {"pending-then-silence", pendingThenSilence},
        {"pending-then-late", pendingThenLate},
        {"error-answers", errorAnswers},
        {"silence", silence},
        {"short-hangs", shortHangs},
        {"hang-for-ever", hangForEver},
        {"foreign-answers", foreignAnswers},
        {"false-memory", falseMemory},
        {"false-values", falseValues},
        {"writes-without-effect", writesWithoutEffect},
        {"unasked-packets", unaskedPackets},
        {"control-lost", controlLost},
    };
}

} // namespace gige
