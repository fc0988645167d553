#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The table of the pixel formats whose images are understood, and the one place that tells how large an image is.

namespace cameralibs {

/// What the samples of an image mean.
enum class PixelFamily : std::uint8_t {
    Mono,
    Bayer,
    Rgb,
    YCbCr,    ///< BT.601, full range; the formats named YUV too
    YCbCr601, ///< BT.601, limited range
    YCbCr709, ///< BT.709, limited range
};

/// How samples of more than 8 bits are stored, and in what order the components of an image follow one another.
enum class SamplePacking : std::uint8_t {
    Unpacked,   ///< bytes, or little-endian words of two bytes whose upper bits mean nothing
    Planar,     ///< unpacked; all samples of one component, then all of the next
    Semiplanar, ///< unpacked; all Y, then the pairs of Cb and Cr
    Bits,       ///< "p": one run of bits, least significant first
    Bits32,     ///< "p32": three samples in the lower bits of each 32-bit word
    Pairs,      ///< "Packed": two samples in three bytes; upper 8 bits, the low bits of both, upper 8 bits
};

/// One format of the Pixel Format Naming Convention (PFNC).
struct PixelFormat {
    std::string_view name;
    std::uint32_t value;
    PixelFamily family;
    std::uint8_t bits; ///< of one sample
    SamplePacking packing;
    std::string_view order; ///< the samples of one group, U and V for Cb and Cr; Bayer: the first two of the first row
};

/// Pixels that the samples of `order` make: chroma samples are shared by those of the Y beside them.
[[nodiscard]] constexpr unsigned pixelsPerGroup(const PixelFormat& format) noexcept
{
    if (format.family == PixelFamily::Bayer) {
        return 2;
    }
    unsigned luminances = 0;
    for (const char sample : format.order) {
        luminances += sample == 'Y' ? 1U : 0U;
    }
    return luminances == 0 ? 1 : luminances;
}

/// Bits from one pixel to the next, as the value of a PFNC format tells them; of any format, in the table or not.
[[nodiscard]] constexpr std::uint32_t bitsPerPixel(std::uint32_t value) noexcept
{
    return value >> 16 & 0xFF;
}

/// From the first sample of a row to that of the next: pairs and groups are completed in each row. In planar images the
/// samples of the first plane.
[[nodiscard]] std::uint64_t samplesPerRow(const PixelFormat& format, std::uint32_t width) noexcept;

/// The bytes of an image, to the last one that a conversion reads. Whoever makes room for an image, sends one or
/// converts one goes by this. More than 64 bits can tell become the largest number that they can.
[[nodiscard]] std::uint64_t imageBytes(const PixelFormat& format, std::uint32_t width, std::uint32_t height) noexcept;

/// The same for the value of any format: one that is not in the table is taken for a continuous run of bits.
[[nodiscard]] std::uint64_t imageBytes(std::uint32_t value, std::uint32_t width, std::uint32_t height) noexcept;

/// Null for a format that is not in the table.
[[nodiscard]] const PixelFormat* findPixelFormat(std::uint32_t value) noexcept;
[[nodiscard]] const PixelFormat* findPixelFormat(std::string_view name) noexcept;

} // namespace cameralibs
