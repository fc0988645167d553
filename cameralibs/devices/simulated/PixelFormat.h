#pragma once

/// The pixel formats that the built-in cameras send.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvo::simulated {

/// One pixel before it is packed: three channels of 16 bits, all alike where the sensor is monochrome.
struct Sample {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
};

struct PixelFormat {
    std::string_view name;
    std::uint32_t value; ///< of the PFNC
    std::uint32_t bitsPerPixel;
    std::uint32_t depth; ///< bits of one component
    std::uint32_t group; ///< pixels that are packed together: rows have a multiple of them

    /// Packs `count` pixels of row `y` that begin at an even x; `count` and x are multiples of the group.
    void (*pack)(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out);
};

/// The largest group. The widths and offsets of the built-in cameras, and the parts of a row that are packed by
/// themselves, are multiples of it.
constexpr std::uint32_t kPixelGroup = 4;

/// Null for a value that no built-in camera knows.
[[nodiscard]] const PixelFormat* pixelFormat(std::uint32_t value);
[[nodiscard]] const PixelFormat* pixelFormat(std::string_view name);

[[nodiscard]] inline std::size_t bytesOf(const PixelFormat& format, std::size_t pixels)
{
    return pixels * format.bitsPerPixel / 8;
}

} // namespace orvo::simulated
