#pragma once

#include "tests/cameralibs/transport/gige/Protocol.h"

#include <initializer_list>
#include <random>
#include <vector>

namespace gige {

/// The same numbers for the same seed on every machine, unlike the standard library's distributions.
class Random {
public:
    explicit Random(std::uint64_t seed)
        : m_engine(seed)
    {
    }

    [[nodiscard]] std::uint64_t number() { return m_engine(); }

    /// 0 to limit - 1.
    [[nodiscard]] std::uint64_t below(std::uint64_t limit) { return m_engine() % limit; }

    /// True once in so many times.
    [[nodiscard]] bool oneIn(std::uint64_t times) { return below(times) == 0; }

    template <typename Value> [[nodiscard]] Value pick(std::initializer_list<Value> values)
    {
        return values.begin()[below(values.size())];
    }

    template <typename Value> [[nodiscard]] Value& pick(std::vector<Value>& values)
    {
        return values[below(values.size())];
    }

    /// A number of so many bits that somebody may have forgotten to think of.
    [[nodiscard]] std::uint64_t absurd(unsigned bits)
    {
        const std::uint64_t most = bits == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1;
        return pick({std::uint64_t{0}, std::uint64_t{1}, most, most - 1, most / 2, most / 2 + 1, m_engine() & most});
    }

    [[nodiscard]] Bytes bytes(std::size_t count)
    {
        Bytes bytes(count);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(m_engine());
        return bytes;
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace gige
