#include "cameralibs/util/Conversion.h"

namespace orvo {

std::uint64_t SourceImage::samplesPerRow() const noexcept
{
    if (format.packing == SamplePacking::Pairs) {
        return std::uint64_t{width} + width % 2;
    }
    if (format.family == PixelFamily::Mono || format.family == PixelFamily::Bayer ||
        format.packing == SamplePacking::Planar || format.packing == SamplePacking::Semiplanar) {
        return width;
    }
    const unsigned group = pixelsPerGroup(format);
    return (std::uint64_t{width} + group - 1) / group * format.order.size();
}

} // namespace orvo
