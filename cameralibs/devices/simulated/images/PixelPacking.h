#pragma once

/// The pixel formats that the simulated cameras can generate.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cameralibs::simulated {

/// One pixel before packing: three 16-bit channels, all equal for a monochrome sensor.
struct Sample {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
};

struct PixelPacking {
    std::string_view format; ///< PFNC name

    /// Packs `count` pixels of row `y` to `out`, starting at bit `firstBit`. The first pixel has an even x. Only
    /// formats packed as one run of bits use `firstBit`; they preserve the neighbouring bits. In formats with groups,
    /// `count` is odd only at the end of a row.
    void (*pack)(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out, unsigned firstBit);
};

/// A part of a row that is packed separately begins at a multiple of this, so that no group is split. The widths and
/// offsets of the built-in cameras are multiples, too.
constexpr std::uint32_t kPixelGroup = 4;

/// Null if there is no packing for the format.
[[nodiscard]] const PixelPacking* findPacking(std::uint32_t format);

} // namespace cameralibs::simulated
