#pragma once

#include "cameralibs/util/BayerFilters.h"
#include "cameralibs/util/Conversion.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace orvo {

constexpr std::size_t pairsPerPiece = pixelsPerPiece / 2;

/// A piece of a row and the columns that the filters reach beside it, those of even and of odd numbers apart: the sites
/// of one colour then lie side by side, and a loop over them does the same for each.
class SplitRow {
public:
    /// Column 0 is the first of the piece; it has an even number in the image.
    std::uint8_t& at(std::int64_t column)
    {
        auto& sites = column % 2 == 0 ? m_even : m_odd;
        return sites[static_cast<std::size_t>((column + filterReach) / 2)];
    }

    /// Of the columns 0, 2, 4, ... and 1, 3, 5, ...; element -1 may be read too, as may the one after the last.
    [[nodiscard]] const std::uint8_t* even() const { return m_even.data() + 1; }
    [[nodiscard]] const std::uint8_t* odd() const { return m_odd.data() + 1; }

    /// `first` is even and not below -2.
    void assign(std::int64_t first, const std::uint8_t* samples, std::size_t count)
    {
        const auto begin = static_cast<std::size_t>((first + filterReach) / 2);
        std::uint8_t* __restrict const even = m_even.data() + begin;
        std::uint8_t* __restrict const odd = m_odd.data() + begin;
        for (std::size_t i = 0; i < count / 2; ++i) {
            even[i] = samples[2 * i];
            odd[i] = samples[2 * i + 1];
        }
        if (count % 2 != 0) {
            even[count / 2] = samples[count - 1];
        }
    }

private:
    std::array<std::uint8_t, pairsPerPiece + filterReach> m_even{};
    std::array<std::uint8_t, pairsPerPiece + filterReach> m_odd{};
};

} // namespace orvo
