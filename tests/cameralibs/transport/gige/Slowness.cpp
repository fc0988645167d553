#include "tests/cameralibs/transport/gige/Slowness.h"

namespace gige {

namespace {

using std::chrono::milliseconds;

/// Aravis waits for half a second; after a pending acknowledgement, for the time that it announces.
constexpr milliseconds kPendingPeriod{300};
constexpr std::uint16_t kAnnounced = 1000;

} // namespace

Packet pendingAnswer(const Bytes& command, std::uint16_t announced, milliseconds after)
{
    Bytes bytes;
    append(bytes, kSuccess);
    append(bytes, static_cast<std::uint16_t>(Code::pending));
    append<std::uint16_t>(bytes, 4);
    append(bytes, get<std::uint16_t>(command, 6));
    append<std::uint16_t>(bytes, 0);
    append(bytes, announced);
    return {bytes, after};
}

void Slowness::answer(Exchange& exchange)
{
    const Delay delay = delayOf(exchange.command);
    if (delay.time == milliseconds(0) || exchange.answers.empty())
        return;
    exchange.answers.front().after = delay.time;
    if (delay.pending == PendingAnswers::single) {
        const auto announced = static_cast<std::uint16_t>(delay.time.count() + kAnnounced);
        exchange.answers.push_back(pendingAnswer(exchange.command, announced, milliseconds(0)));
    }
    const bool periodic = delay.pending == PendingAnswers::periodic;
    for (milliseconds after{0}; periodic && after < delay.time; after += kPendingPeriod)
        exchange.answers.push_back(pendingAnswer(exchange.command, kAnnounced, after));
}

void Slowness::send(std::vector<Packet>& packets)
{
    for (Packet& packet : packets)
        packet.after = milliseconds(m_memory->value(kTestImageDelay));
}

Slowness::Delay Slowness::delayOf(const Bytes& command) const
{
    if (codeOf(command) == Code::discovery)
        return {};
    // All other commands begin with the address.
    const auto address = get<std::uint32_t>(command, kHeaderSize);
    if (address >= kWidth && address < kTestDelay && m_memory->value(kTestDelay) != 0)
        return {milliseconds(m_memory->value(kTestDelay)), static_cast<PendingAnswers>(m_memory->value(kTestPending))};
    return m_always;
}

} // namespace gige
