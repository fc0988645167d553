#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

/// Deals out the bytes of an input. Once they are used up, everything is 0.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size)
        : m_rest(reinterpret_cast<const char*>(data), size)
    {
    }

    [[nodiscard]] bool empty() const { return m_rest.empty(); }
    [[nodiscard]] std::size_t left() const { return m_rest.size(); }

    template <class Number> [[nodiscard]] Number number()
    {
        Number value{};
        const std::size_t size = std::min(m_rest.size(), sizeof value);
        if (size > 0) // an empty input may be at no address
            std::memcpy(&value, m_rest.data(), size);
        m_rest.remove_prefix(size);
        return value;
    }
    [[nodiscard]] std::uint8_t byte() { return number<std::uint8_t>(); }
    [[nodiscard]] std::size_t below(std::size_t limit) { return byte() % limit; }

    [[nodiscard]] std::string_view bytes(std::size_t size)
    {
        const std::string_view taken = m_rest.substr(0, size);
        m_rest.remove_prefix(taken.size());
        return taken;
    }
    [[nodiscard]] std::string_view rest() { return bytes(m_rest.size()); }

private:
    std::string_view m_rest;
};

/// Aborts unless `holds`; a fuzzer records that as a finding.
inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

#define REQUIRE(condition) require(condition, #condition)
