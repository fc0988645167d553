#pragma once

#include "cameralibs/util/PixelFormat.h"

#include <cstddef>
#include <cstdint>

namespace orvo {

/// Reads the samples of an image as bytes: of samples with more than 8 bits the upper 8. Samples are numbered in the
/// order in which they are stored. Touches no byte that holds nothing of the samples asked for.
class SampleReader {
public:
    SampleReader(const PixelFormat& format, const std::uint8_t* image) noexcept;

    /// `count` samples from number `first` on, the first of a pair where they are packed in pairs: where they are if
    /// the image holds bytes, else in `buffer`.
    [[nodiscard]] const std::uint8_t* read(std::uint64_t first, std::size_t count, std::uint8_t* buffer) const noexcept;

private:
    const std::uint8_t* m_image;
    SamplePacking m_packing;
    unsigned m_bits;
};

} // namespace orvo
