#include "cameralibs/util/conversion/Conversion.h"

#include "camera/OrvoCamUtl.h"

namespace Orvo {

// Nothing to do: the conversion needs no tables that are made at run time.
CAM_API_STATUS PrepareLUT()
{
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS ConvImage(std::uint32_t dstFormat, std::uint32_t srcPixelFormat, std::uint32_t /*option*/, void* dst,
                         const void* src, std::uint32_t width, std::uint32_t height)
{
    if (dstFormat != 0)
        return CAM_API_STS_NOT_IMPLEMENTED;
    return cameralibs::convertImage(cameralibs::rowKernels(), srcPixelFormat, dst, src, width, height);
}

} // namespace Orvo
