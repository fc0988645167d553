#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The table of supported pixel formats, and the only place that computes the size of an image.

namespace cameralibs {

/// What the samples of an image mean.
enum class PixelFamily : std::uint8_t {
    Mono,
    Bayer,
    Rgb,
    YCbCr,    ///< BT.601, full range; also the formats named YUV
    YCbCr601, ///< BT.601, limited range
    YCbCr709, ///< BT.709, limited range
};

/// How samples of more than 8 bits are stored, and in what order the components of an image follow one another.
enum class SamplePacking : std::uint8_t {
    Unpacked,   ///< bytes, or little-endian 16-bit words whose unused upper bits are ignored
    Planar,     ///< unpacked; all samples of one component, then all of the next
    Semiplanar, ///< unpacked; all Y, then the pairs of Cb and Cr
    Bits,       ///< "p": one run of bits, least significant first
    Bits32,     ///< "p32": three samples in the lower bits of each 32-bit word
    Pairs,      ///< "Packed": two samples in three bytes: high byte, low bits of both, high byte
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

/// Number of pixels in one group of samples. The pixels of a group share its chroma samples.
[[nodiscard]] constexpr unsigned pixelsPerGroup(const PixelFormat& format) noexcept
{
    if (format.family == PixelFamily::Bayer)
        return 2;
    unsigned luminances = 0;
    for (const char sample : format.order)
        luminances += sample == 'Y' ? 1U : 0U;
    return luminances == 0 ? 1 : luminances;
}

/// Average bits per pixel as encoded in a PFNC value. Works for formats that are not in the table, too.
[[nodiscard]] constexpr std::uint32_t bitsPerPixel(std::uint32_t value) noexcept
{
    return value >> 16 & 0xFF;
}

/// Distance between the first samples of two rows. Each row is padded to whole pairs or groups. For planar formats,
/// this counts the samples of the first plane only.
[[nodiscard]] std::uint64_t samplesPerRow(const PixelFormat& format, std::uint32_t width) noexcept;

/// Size of an image in bytes, up to the last byte that a conversion reads. Allocation, simulated cameras and conversion
/// all use it, so they agree. Saturates at the largest 64-bit number.
[[nodiscard]] std::uint64_t imageBytes(const PixelFormat& format, std::uint32_t width, std::uint32_t height) noexcept;

/// The same for any PFNC value. A format that is not in the table counts as a continuous run of bits.
[[nodiscard]] std::uint64_t imageBytes(std::uint32_t value, std::uint32_t width, std::uint32_t height) noexcept;

/// Null if the format is not in the table.
[[nodiscard]] const PixelFormat* findPixelFormat(std::uint32_t value) noexcept;
[[nodiscard]] const PixelFormat* findPixelFormat(std::string_view name) noexcept;

} // namespace cameralibs
