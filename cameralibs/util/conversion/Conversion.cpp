#include "cameralibs/util/conversion/Conversion.h"

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

std::uint64_t SourceImage::bytes() const noexcept
{
    const std::uint64_t samples = samplesPerRow() * height;
    const std::uint64_t bytesPerSample = format.bits > 8 ? 2 : 1;
    switch (format.packing) {
    case SamplePacking::Unpacked:
        return samples * bytesPerSample;
    case SamplePacking::Planar:
        return samples * format.order.size() * bytesPerSample;
    case SamplePacking::Semiplanar: {
        const std::uint64_t chromaPerRow = (std::uint64_t{width} + 1) / 2 * 2;
        const std::uint64_t chromaRows = pixelsPerGroup(format) == 4 ? (std::uint64_t{height} + 1) / 2 : height;
        return samples + chromaPerRow * chromaRows;
    }
    case SamplePacking::Bits:
        return (samples * format.bits + 7) / 8;
    case SamplePacking::Bits32:
        return samples / 3 * 4;
    case SamplePacking::Pairs:
        return samples / 2 * 3;
    }
    return 0;
}

bool SourceImage::gapless() const noexcept
{
    switch (format.packing) {
    case SamplePacking::Planar:
        return true;
    case SamplePacking::Semiplanar:
        return false;
    case SamplePacking::Pairs:
        return width % 2 == 0;
    default:
        return width % pixelsPerGroup(format) == 0;
    }
}

} // namespace orvo
