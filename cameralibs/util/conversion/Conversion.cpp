#include "cameralibs/util/conversion/Conversion.h"

namespace cameralibs {

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

} // namespace cameralibs
