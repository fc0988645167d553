#pragma once

#include "cameralibs/util/PixelFormat.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

/// The conversions behind ConvImage, one for each family of formats. Each works through the image in pieces of
/// `pixelsPerPiece` of a row, in buffers on the stack: reads the samples as bytes, makes colours of them, and writes
/// B, G, R, 255.

namespace orvo {

/// A multiple of every group of pixels; its buffers fit the first level cache.
constexpr std::uint32_t pixelsPerPiece = 2048;

/// Width and height are at least 1, and the pixels fewer than 2^30.
struct SourceImage {
    const PixelFormat& format;
    const std::uint8_t* data;
    std::uint32_t width;
    std::uint32_t height;

    [[nodiscard]] std::uint64_t pixels() const noexcept { return std::uint64_t{width} * height; }

    /// From the first sample of a row to that of the next: pairs and groups are completed per row. Of planar images
    /// those of the first plane.
    [[nodiscard]] std::uint64_t samplesPerRow() const noexcept;
};

constexpr std::size_t bytesPerBgra = 4;

void convertMono(const SourceImage& image, std::uint8_t* bgra) noexcept;

/// Malvar, He, Cutler: High-quality linear interpolation for demosaicing of Bayer-patterned color images, 2004.
void convertBayer(const SourceImage& image, std::uint8_t* bgra) noexcept;

void convertRgb(const SourceImage& image, std::uint8_t* bgra) noexcept;

void convertYCbCr(const SourceImage& image, std::uint8_t* bgra) noexcept;

/// One pixel. Made of two halves of 16 bits, and stored as a whole, because the compiler's vectoriser then finds its
/// way; four stores of bytes end in a loop ten times slower.
inline void writePixel(std::uint8_t blue, std::uint8_t green, std::uint8_t red, std::uint8_t* bgra) noexcept
{
    const auto lower = static_cast<std::uint16_t>(blue | green << 8);
    const auto upper = static_cast<std::uint16_t>(red | 0xFF00);
    const std::uint32_t pixel = lower | std::uint32_t{upper} << 16;
    std::memcpy(bgra, &pixel, bytesPerBgra);
}

/// The pixels of one piece; the planes may be one and the same.
inline void writePixels(const std::uint8_t* __restrict blue, const std::uint8_t* __restrict green,
                        const std::uint8_t* __restrict red, std::size_t pixels, std::uint8_t* __restrict bgra) noexcept
{
    for (std::size_t i = 0; i < pixels; ++i) {
        writePixel(blue[i], green[i], red[i], bgra + bytesPerBgra * i);
    }
}

/// Calls `convert(x, y, pixels)` for every piece of an image, from left to right and from top to bottom.
template <typename Convert> void forEachPiece(const SourceImage& image, Convert convert)
{
    for (std::uint32_t y = 0; y < image.height; ++y) {
        for (std::uint32_t x = 0; x < image.width; x += pixelsPerPiece) {
            const std::uint32_t rest = image.width - x;
            convert(x, y, rest < pixelsPerPiece ? rest : pixelsPerPiece);
        }
    }
}

} // namespace orvo
