#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The four filters of Malvar, He and Cutler: "High-quality linear interpolation for demosaicing of Bayer-patterned
/// color images", 2004; in sixteenths.

namespace orvo {

/// Rows and columns that the filters reach to each side.
constexpr std::int64_t filterReach = 2;

/// Sites of one colour in five rows, from two above to two below; those of a row lie in every second column.
using SiteRows = std::array<const std::uint8_t*, 2 * filterReach + 1>;

/// At sites of red and blue: green, and the opposite colour. `own` are the sites, read from number -1 to `sites`;
/// `beside` the columns beside them, [k] to the left of site k and [k + 1] to its right.
void interpolateAtColour(const SiteRows& own, const SiteRows& beside, std::size_t sites, std::uint8_t* __restrict green,
                         std::uint8_t* __restrict opposite) noexcept;

/// At sites of green: the colour of the neighbours in the row, and that of those above and below.
void interpolateAtGreen(const SiteRows& own, const SiteRows& beside, std::size_t sites,
                        std::uint8_t* __restrict rowColour, std::uint8_t* __restrict columnColour) noexcept;

} // namespace orvo
