#pragma once

/// The pixel formats that the simulated cameras can make images in.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cameralibs::simulated {

/// One pixel before it is packed: three channels of 16 bits, all alike where the sensor is monochrome.
struct Sample {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
};

struct PixelPacking {
    std::string_view format; ///< its name

    /// Packs `count` pixels of row `y`, the first at an even x, from bit `firstBit` of `out` on. Only formats that are
    /// one run of bits begin within a byte, and they leave the bits beside theirs as they are. In formats with groups
    /// an odd `count` ends the row.
    void (*pack)(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out, unsigned firstBit);
};

/// Parts of a row that are packed by themselves begin at a multiple of this, so that no group is cut. The widths and
/// offsets of the built-in cameras are multiples of it, too.
constexpr std::uint32_t kPixelGroup = 4;

/// Null for a format that is not among them.
[[nodiscard]] const PixelPacking* findPacking(std::uint32_t format);

} // namespace cameralibs::simulated
