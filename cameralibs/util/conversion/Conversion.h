#pragma once

#include "camera/OrvoCamUtl.h"
#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/util/conversion/RowKernels.h"

#include <cstddef>
#include <cstdint>

/// The conversions behind ConvImage, one per family of formats. Each writes B, G, R, 255. Samples of more than 8 bits
/// are reduced to bytes: those of colour images first, in a buffer on the stack; those of gray images in the same pass.

namespace cameralibs {

/// Width and height are at least 1, and there are fewer than 2^30 pixels.
struct SourceImage {
    const PixelFormat& format;
    const std::uint8_t* data;
    std::uint32_t width;
    std::uint32_t height;

    [[nodiscard]] std::uint64_t pixels() const noexcept { return std::uint64_t{width} * height; }

    [[nodiscard]] std::uint64_t samplesPerRow() const noexcept { return cameralibs::samplesPerRow(format, width); }

    /// Size of the image data. No conversion reads beyond it.
    [[nodiscard]] std::uint64_t bytes() const noexcept { return imageBytes(format, width, height); }

    /// Whether the rows follow one another without padding, so that the image can be converted as one row.
    [[nodiscard]] bool gapless() const noexcept;
};

void convertMono(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept;

/// Malvar, He, Cutler: High-quality linear interpolation for demosaicing of Bayer-patterned color images, 2004.
void convertBayer(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept;

void convertRgb(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept;

void convertYCbCr(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept;

/// What ConvImage does, with the given kernels.
[[nodiscard]] Orvo::CAM_API_STATUS convertImage(const RowKernels& kernels, std::uint32_t pfnc, void* destination,
                                                const void* source, std::uint32_t width, std::uint32_t height) noexcept;

/// Number of pixels that are reduced to bytes at a time: a multiple of every group, and small enough for the
/// first-level cache.
constexpr std::uint32_t kPixelsPerPiece = 2048;

/// Calls `convert(x, y, pixels, bgra)` for every piece of an image, from left to right and from top to bottom. With
/// 8-bit samples a piece is a whole row, and without padding the whole image is one row.
template <typename Convert> void forEachPiece(const SourceImage& image, std::uint8_t* bgra, Convert convert)
{
    const bool gapless = image.gapless();
    const auto width = gapless ? static_cast<std::uint32_t>(image.pixels()) : image.width;
    const std::uint32_t height = gapless ? 1 : image.height;
    const std::uint32_t largest = image.format.bits == 8 ? width : kPixelsPerPiece;
    std::uint8_t* const end = bgra + kBytesPerBgra * image.pixels();
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; x += largest) {
            const std::uint32_t rest = width - x;
            const std::uint64_t first = std::uint64_t{y} * width + x;
            convert(x, y, rest < largest ? rest : largest, WritableBytes{bgra + kBytesPerBgra * first, end});
        }
    }
}

} // namespace cameralibs
