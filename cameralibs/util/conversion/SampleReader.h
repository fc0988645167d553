#pragma once

#include "cameralibs/util/conversion/Conversion.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace cameralibs {

/// Reads the samples of an image as bytes, reduced to their upper 8 bits. Samples are numbered in storage order. If
/// they are packed in pairs, `first` must be the first of a pair.
class SampleReader {
public:
    SampleReader(const RowKernels& kernels, const SourceImage& image) noexcept;

    /// Copies `count` samples, starting with number `first`.
    void copy(std::uint64_t first, std::size_t count, WritableBytes bytes) const noexcept;

    /// The same without copying if the samples have 8 bits; otherwise they are copied to `buffer`.
    [[nodiscard]] ReadableBytes read(std::uint64_t first, std::size_t count, WritableBytes buffer) const noexcept;

private:
    void copyBits(std::uint64_t first, std::size_t count, WritableBytes bytes) const noexcept;

    const RowKernels& m_kernels;
    ReadableBytes m_image;
    SamplePacking m_packing;
    unsigned m_bits;
};

/// Room for the samples of a piece. Not initialised: bytes that were never written only affect discarded results.
template <std::size_t SamplesPerPixel> class PieceBuffer {
public:
    [[nodiscard]] WritableBytes bytes() noexcept { return {m_bytes.data(), m_bytes.data() + m_bytes.size()}; }

private:
    std::array<std::uint8_t, SamplesPerPixel * kPixelsPerPiece> m_bytes;
};

} // namespace cameralibs
