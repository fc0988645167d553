#pragma once

#include "cameralibs/base/PixelFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// The inner loops of ConvImage. Each exists twice: as plain code that reads like its formula, and as vector code for
/// every instruction set that pays. Both give the same bytes.

namespace cameralibs {

constexpr std::size_t bytesPerBgra = 4;

/// Samples from `begin` on. An operation may read up to `end`, further than its samples reach.
struct ReadableBytes {
    const std::uint8_t* begin;
    const std::uint8_t* end;
};

/// Results go to `begin` and on. An operation may leave anything in the bytes between its last result and `end`, so
/// the rows of an image are written from top to bottom.
struct WritableBytes {
    std::uint8_t* begin;
    std::uint8_t* end;
};

/// Where blue, green and red lie in a pixel of three or four bytes.
struct PixelLayout {
    std::size_t bytes;
    std::uint8_t blue;
    std::uint8_t green;
    std::uint8_t red;
};

/// The samples of pixels that share chroma. In semiplanar images luma has a plane of its own, and the places of Cb and
/// Cr are those in the other plane.
struct ChromaLayout {
    std::size_t pixels;  ///< of a group: 1, 2 or 4
    std::size_t samples; ///< of a group
    std::array<std::uint8_t, 4> luma;
    std::uint8_t cb;
    std::uint8_t cr;
};

/// What Y adds to the colours, and what Cb and Cr do, counted from 128: 2^-13 levels for each level.
struct ChromaWeights {
    std::int16_t luma;
    std::int16_t offset; ///< that black becomes 0, in 2^-5 levels, and a half for rounding
    std::int16_t redFromCr;
    std::int16_t greenFromCb;
    std::int16_t greenFromCr;
    std::int16_t blueFromCb;
};

/// The colours of the first pixels of a row with red, or of one with blue.
enum class BayerRow : std::uint8_t { RedGreen, GreenRed, BlueGreen, GreenBlue };

/// The two rows at [2] and [3] and those that the filters look at above and below. Readable from two columns before
/// the first pixel to `bayerMargin` after the last one.
using BayerRows = std::array<const std::uint8_t*, 6>;
constexpr std::size_t bayerMargin = 128;
constexpr std::size_t bayerImageWidth = 128;

struct RowKernels {
    /// Samples of more than 8 bits, reduced to the upper 8: words of two bytes whose bits above `bits` mean nothing,
    /// runs of 10, 12 or 14 bits of which the first sample begins with a byte, or pairs in three bytes.
    void (*bytesFromSamples)(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t samples,
                             WritableBytes bytes);

    /// The same, and pixels of them.
    void (*bgraFromGraySamples)(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t pixels,
                                WritableBytes bgra);

    // Bytes to B, G, R, 255.

    void (*bgraFromGray)(ReadableBytes gray, std::size_t pixels, WritableBytes bgra);

    void (*bgraFromPixels)(ReadableBytes samples, const PixelLayout& layout, std::size_t pixels, WritableBytes bgra);

    /// Red, green and blue of 10 bits in the lower 30 of each word of four bytes.
    void (*bgraFromWords30)(ReadableBytes words, std::size_t pixels, WritableBytes bgra);

    void (*bgraFromPlanes)(ReadableBytes blue, ReadableBytes green, ReadableBytes red, std::size_t pixels,
                           WritableBytes bgra);

    /// The last group may be needed in part only, but it is there as a whole.
    void (*bgraFromGroups)(ReadableBytes samples, const ChromaLayout& layout, const ChromaWeights& weights,
                           std::size_t pixels, WritableBytes bgra);

    void (*bgraFromSemiplanar)(ReadableBytes luma, ReadableBytes chroma, const ChromaLayout& layout,
                               const ChromaWeights& weights, std::size_t pixels, WritableBytes bgra);

    /// Two rows at once, which share much of the work. `first` is the kind of the first one. Nothing but the pixels is
    /// written; where both rows are to go to one place, the first one stays.
    void (*bgraFromBayer)(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                          std::uint8_t* secondBgra);

    /// The same for rows where they are, in the middle of an image of bytes: what stands beside them is readable, but
    /// belongs to other rows. The width is even and at least `bayerImageWidth`. Null for kernels that want lines.
    void (*bgraFromBayerImage)(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                               std::uint8_t* secondBgra);
};

[[nodiscard]] const RowKernels& scalarRowKernels() noexcept;

/// The fastest ones that the processor has.
[[nodiscard]] const RowKernels& rowKernels() noexcept;

} // namespace cameralibs
