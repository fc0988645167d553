#pragma once

#include "tests/attack/fuzz/FuzzInput.h"

#include <chrono>
#include <cstdint>

/// Distorts the packets of a correct camera as an input says. Once the input is used up, they stay as they are.
class PacketDistortion {
public:
    explicit PacketDistortion(const FuzzInput& input, std::uint8_t correct = 0)
        : m_input(input)
        , m_correct(correct)
    {
    }

    /// The packets are what the camera sends at once, each with its `bytes` and the delay `after` which it is sent.
    template <class Packets> void distort(Packets& packets)
    {
        if (m_correct > 0) {
            --m_correct;
            return;
        }
        if (m_input.empty() || packets.empty())
            return;
        const std::uint8_t what = m_input.byte();
        const auto chosen = packets.begin() + static_cast<std::ptrdiff_t>(m_input.below(packets.size()));
        auto& bytes = chosen->bytes;
        switch (what % 8) {
        case 0:
            bytes.resize(m_input.number<std::uint16_t>() % (2 * bytes.size() + 2));
            break;
        case 1:
            packets.erase(chosen);
            break;
        case 2:
            packets.push_back(*chosen);
            break;
        case 3: {
            const std::string_view invented = m_input.bytes(m_input.byte());
            bytes.assign(invented.begin(), invented.end());
            break;
        }
        case 4:
            chosen->after = std::chrono::milliseconds(m_input.byte());
            break;
        default: {
            const std::size_t at = m_input.number<std::uint16_t>() % (bytes.size() + 1);
            const std::string_view written = m_input.bytes(1 + m_input.below(8));
            std::copy_n(written.begin(), std::min(written.size(), bytes.size() - at),
                        bytes.begin() + static_cast<std::ptrdiff_t>(at));
            break;
        }
        }
        m_correct = m_input.byte();
    }

    [[nodiscard]] std::size_t left() const { return m_input.left(); }
    [[nodiscard]] std::uint8_t correct() const { return m_correct; }

private:
    FuzzInput m_input;
    std::uint8_t m_correct; ///< sets of packets that stay as they are
};
