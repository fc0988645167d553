#include "cameralibs/util/conversion/Conversion.h"

#include "camera/OrvoCamUtl.h"

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

namespace Orvo {

// The tables of the conversion are part of the library.
CAM_API_STATUS PrepareLUT()
{
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS ConvImage(std::uint32_t dstFormat, std::uint32_t srcPixelFormat, std::uint32_t /*option*/, void* dst,
                         const void* src, std::uint32_t width, std::uint32_t height)
{
    const cameralibs::PixelFormat* const format = cameralibs::findPixelFormat(srcPixelFormat);
    if (dstFormat != 0 || format == nullptr) {
        return CAM_API_STS_NOT_IMPLEMENTED;
    }
    const cameralibs::SourceImage image{*format, static_cast<const std::uint8_t*>(src), width, height};
    constexpr std::uint64_t pixelLimit = (std::uint64_t{1} << 32) / cameralibs::bytesPerBgra;
    if (image.pixels() == 0 || image.pixels() >= pixelLimit || dst == nullptr || src == nullptr) {
        return CAM_API_STS_INVALID_PARAMETER;
    }

    auto* const bgra = static_cast<std::uint8_t*>(dst);
    switch (format->family) {
    case cameralibs::PixelFamily::Mono:
        cameralibs::convertMono(image, bgra);
        break;
    case cameralibs::PixelFamily::Bayer:
        cameralibs::convertBayer(image, bgra);
        break;
    case cameralibs::PixelFamily::Rgb:
        cameralibs::convertRgb(image, bgra);
        break;
    case cameralibs::PixelFamily::YCbCr:
    case cameralibs::PixelFamily::YCbCr601:
    case cameralibs::PixelFamily::YCbCr709:
        cameralibs::convertYCbCr(image, bgra);
        break;
    }
    return CAM_API_STS_SUCCESS;
}

} // namespace Orvo
