#pragma once

#include "cameralibs/util/conversion/Conversion.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace cameralibs {

/// Reads the samples of an image as bytes: of samples with more than 8 bits the upper 8. Samples are numbered in the
/// order in which they are stored; where they are packed in pairs, the first one asked for is the first of a pair.
class SampleReader {
public:
    explicit SampleReader(const SourceImage& image) noexcept;

    /// `count` samples from number `first` on.
    void copy(std::uint64_t first, std::size_t count, WritableBytes bytes) const noexcept;

    /// The same where they are if the image holds bytes, else in `buffer`.
    [[nodiscard]] ReadableBytes read(std::uint64_t first, std::size_t count, WritableBytes buffer) const noexcept;

private:
    void copyBits(std::uint64_t first, std::size_t count, WritableBytes bytes) const noexcept;

    const RowKernels& m_kernels;
    ReadableBytes m_image;
    SamplePacking m_packing;
    unsigned m_bits;
};

/// Room for the samples of a piece. Nothing is read that was not written, but for results that are thrown away.
template <std::size_t SamplesPerPixel> class PieceBuffer {
public:
    [[nodiscard]] WritableBytes bytes() noexcept { return {m_bytes.data(), m_bytes.data() + m_bytes.size()}; }

private:
    std::array<std::uint8_t, SamplesPerPixel * pixelsPerPiece> m_bytes;
};

} // namespace cameralibs
