#include "tests/cameralibs/transport/gige/Liar.h"

#include <stdexcept>
#include <utility>

namespace gige {

namespace {

std::vector<Lie> allLies(Liars who)
{
    std::vector<Lie> all;
    for (auto* const table : {memoryLies, discoveryLies, answerLies, streamLies}) {
        if (who == Liars::stranger && table == memoryLies)
            continue;
        const std::vector<Lie> lies = table();
        all.insert(all.end(), lies.begin(), lies.end());
    }
    return all;
}

} // namespace

Liar::Liar(Liars who, std::uint64_t seed)
    : m_who(who)
    , m_random(seed)
{
    std::vector<Lie> lies = allLies(who);
    // Far from one another, so that a few seeds bring lies of every kind.
    constexpr std::uint64_t kPrime = 29;
    add(lies[seed * kPrime % lies.size()]);
    if (m_random.oneIn(3))
        add(m_random.pick(lies));
}

Liar::Liar(Liars who, std::uint64_t seed, const std::string& lie)
    : m_who(who)
    , m_random(seed)
{
    for (const Lie& known : allLies(who)) {
        if (known.name == lie)
            add(known);
    }
    if (m_told.empty())
        throw std::runtime_error("no lie is called " + lie);
}

std::string Liar::description() const
{
    std::string text;
    for (const Told& told : m_told) {
        text += (text.empty() ? "" : ", ") + std::string(told.lie.name) + " (after " + std::to_string(told.from) +
                ", 1 in " + std::to_string(told.oneIn) + ")";
    }
    return text;
}

void Liar::prepare(CameraMemory& memory)
{
    for (const Told& told : m_told) {
        if (const auto* tell = std::get_if<MemoryLie>(&told.lie.tell))
            (*tell)(memory, m_random);
    }
}

void Liar::answer(Exchange& exchange)
{
    const bool discovery = codeOf(exchange.command) == Code::discovery;
    m_commands += discovery ? 0 : 1;
    for (const Told& told : m_told) {
        AnswerLie lie = nullptr;
        if (const auto* tell = std::get_if<DiscoveryLie>(&told.lie.tell); tell != nullptr && discovery)
            lie = tell->tell;
        if (const auto* tell = std::get_if<AnswerLie>(&told.lie.tell); tell != nullptr && !discovery)
            lie = isTime(told, m_commands) ? *tell : nullptr;
        if (lie == nullptr || exchange.answers.empty())
            continue;
        tellPackets(exchange.answers, [&](std::vector<Packet>& answers) {
            Exchange changed{exchange.command, answers};
            lie(changed, m_random);
            answers = std::move(changed.answers);
            if (m_who == Liars::camera)
                exchange.hang = changed.hang;
        });
    }
}

void Liar::send(std::vector<Packet>& packets)
{
    ++m_images;
    for (const Told& told : m_told) {
        if (const auto* lie = std::get_if<StreamLie>(&told.lie.tell); lie != nullptr && isTime(told, m_images))
            tellPackets(packets, [&](std::vector<Packet>& sent) { (*lie)(sent, m_random); });
    }
}

void Liar::add(const Lie& lie)
{
    std::uint64_t from = 0;
    std::uint64_t oneIn = 1;
    // Some are told while the camera is opened, some while its features are looked at, some later.
    if (std::holds_alternative<AnswerLie>(lie.tell)) {
        from = m_random.pick<std::uint64_t>({0, m_random.below(10), m_random.below(60), m_random.below(400)});
        oneIn = m_random.pick<std::uint64_t>({1, 1, 3, 20});
    } else if (std::holds_alternative<StreamLie>(lie.tell)) {
        from = m_random.pick<std::uint64_t>({0, 0, 1, 3});
        oneIn = m_random.pick<std::uint64_t>({1, 1, 2, 5});
    }
    m_told.push_back({lie, from, oneIn});
}

bool Liar::isTime(const Told& told, std::uint64_t count)
{
    return count > told.from && m_random.oneIn(told.oneIn);
}

/// A stranger's packets come before or after the honest ones.
template <typename Tell> void Liar::tellPackets(std::vector<Packet>& packets, Tell&& tell)
{
    if (m_who == Liars::camera) {
        tell(packets);
        return;
    }
    std::vector<Packet> lies = packets;
    tell(lies);
    for (Packet& packet : lies)
        packet.foreign = true;
    packets.insert(m_random.oneIn(2) ? packets.begin() : packets.end(), lies.begin(), lies.end());
}

} // namespace gige
