#pragma once

#include "cameralibs/base/PixelFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// The inner loops of ConvImage. They exist as scalar code that reads like its formula, and as vector code that is
/// compiled once per instruction set. Both produce the same bytes.

namespace cameralibs {

constexpr std::size_t kBytesPerBgra = 4;

/// The samples start at `begin`. A kernel may read beyond its last sample, but not beyond `end`.
struct ReadableBytes {
    const std::uint8_t* begin;
    const std::uint8_t* end;
};

/// The results start at `begin`. A kernel may overwrite the bytes between its last result and `end`, so the rows of an
/// image must be written from top to bottom.
struct WritableBytes {
    std::uint8_t* begin;
    std::uint8_t* end;
};

/// The offsets of blue, green and red in a pixel of three or four bytes.
struct PixelLayout {
    std::size_t bytes;
    std::uint8_t blue;
    std::uint8_t green;
    std::uint8_t red;
};

/// The order of the samples in a group of pixels that share their chroma. In semiplanar images, luma has a separate
/// plane, and `cb` and `cr` are offsets in the chroma plane.
struct ChromaLayout {
    std::size_t pixels;  ///< per group: 1, 2 or 4
    std::size_t samples; ///< per group
    std::array<std::uint8_t, 4> luma;
    std::uint8_t cb;
    std::uint8_t cr;
};

/// The coefficients of Y, Cb - 128 and Cr - 128 in units of 2^-13.
struct ChromaWeights {
    std::int16_t luma;
    std::int16_t offset; ///< in units of 2^-5: maps black to 0 and rounds to nearest
    std::int16_t redFromCr;
    std::int16_t greenFromCb;
    std::int16_t greenFromCr;
    std::int16_t blueFromCb;
};

/// The colours of the first two pixels of a row.
enum class BayerRow : std::uint8_t { RedGreen, GreenRed, BlueGreen, GreenBlue };

/// The two rows to convert, at [2] and [3], with the two rows above and the two below that the filters need. Readable
/// from two columns before the first pixel to `kBayerMargin` columns after the last one.
using BayerRows = std::array<const std::uint8_t*, 6>;
constexpr std::size_t kBayerMargin = 128;
constexpr std::size_t kMinBayerImageWidth = 128;

struct RowKernels {
    /// Reduces samples of more than 8 bits to their upper 8. The input consists of 16-bit words whose bits above `bits`
    /// are ignored, of a run of 10, 12 or 14-bit samples that starts at a byte boundary, or of pairs in three bytes.
    void (*bytesFromSamples)(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t samples,
                             WritableBytes bytes);

    /// The same, but writes gray pixels.
    void (*bgraFromGraySamples)(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t pixels,
                                WritableBytes bgra);

    // The following convert 8-bit samples to B, G, R, 255.

    void (*bgraFromGray)(ReadableBytes gray, std::size_t pixels, WritableBytes bgra);

    void (*bgraFromPixels)(ReadableBytes samples, const PixelLayout& layout, std::size_t pixels, WritableBytes bgra);

    /// Red, green and blue, 10 bits each, in the lower 30 bits of each 32-bit word.
    void (*bgraFromWords30)(ReadableBytes words, std::size_t pixels, WritableBytes bgra);

    void (*bgraFromPlanes)(ReadableBytes blue, ReadableBytes green, ReadableBytes red, std::size_t pixels,
                           WritableBytes bgra);

    /// The last group is complete even if only some of its pixels are wanted.
    void (*bgraFromGroups)(ReadableBytes samples, const ChromaLayout& layout, const ChromaWeights& weights,
                           std::size_t pixels, WritableBytes bgra);

    void (*bgraFromSemiplanar)(ReadableBytes luma, ReadableBytes chroma, const ChromaLayout& layout,
                               const ChromaWeights& weights, std::size_t pixels, WritableBytes bgra);

    /// Converts two rows at once, because they share most of the work. `first` describes the first one. Writes only the
    /// pixels. If both rows have the same destination, it receives the first one.
    void (*bgraFromBayer)(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                          std::uint8_t* secondBgra);

    /// The same for rows in the middle of an 8-bit image, read in place: the bytes beside them are readable but belong
    /// to other rows. The width is even and at least `kMinBayerImageWidth`. Null if the kernels need copied lines.
    void (*bgraFromBayerImage)(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                               std::uint8_t* secondBgra);
};

[[nodiscard]] const RowKernels& scalarRowKernels() noexcept;

/// The fastest kernels that the processor supports.
[[nodiscard]] const RowKernels& rowKernels() noexcept;

} // namespace cameralibs
