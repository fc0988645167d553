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

void convertMono(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    const RowKernels& kernels = rowKernels();
    const ReadableBytes all{image.data, image.data + image.bytes()};
    const WritableBytes result{bgra, bgra + kBytesPerBgra * image.pixels()};
    if (image.format.bits == 8) {
        kernels.bgraFromGray(all, image.pixels(), result);
        return;
    }
    // Only rows of pairs may have padding.
    const std::uint64_t bytesPerRow = image.samplesPerRow() / 2 * 3;
    const std::uint64_t pixels = image.gapless() ? image.pixels() : image.width;
    const std::uint64_t rows = image.gapless() ? 1 : image.height;
    for (std::uint64_t y = 0; y < rows; ++y) {
        kernels.bgraFromGraySamples({all.begin + y * bytesPerRow, all.end}, image.format.packing, image.format.bits,
                                    pixels, {bgra + kBytesPerBgra * y * pixels, result.end});
    }
}

} // namespace cameralibs

namespace Orvo {

// Nothing to do: the conversion needs no tables that are made at run time.
CAM_API_STATUS PrepareLUT()
{
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS ConvImage(std::uint32_t dstFormat, std::uint32_t srcPixelFormat, std::uint32_t /*option*/, void* dst,
                         const void* src, std::uint32_t width, std::uint32_t height)
{
    const cameralibs::PixelFormat* const format = cameralibs::findPixelFormat(srcPixelFormat);
    if (dstFormat != 0 || format == nullptr)
        return CAM_API_STS_NOT_IMPLEMENTED;
    const cameralibs::SourceImage image{*format, static_cast<const std::uint8_t*>(src), width, height};
    constexpr std::uint64_t kPixelLimit = (std::uint64_t{1} << 32) / cameralibs::kBytesPerBgra;
    if (image.pixels() == 0 || image.pixels() >= kPixelLimit || dst == nullptr || src == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;

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
