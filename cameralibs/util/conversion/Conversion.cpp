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

void convertMono(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept
{
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

Orvo::CAM_API_STATUS convertImage(const RowKernels& kernels, std::uint32_t pfnc, void* destination, const void* source,
                                  std::uint32_t width, std::uint32_t height) noexcept
{
    const PixelFormat* const format = findPixelFormat(pfnc);
    if (format == nullptr)
        return Orvo::CAM_API_STS_NOT_IMPLEMENTED;
    const SourceImage image{*format, static_cast<const std::uint8_t*>(source), width, height};
    constexpr std::uint64_t kPixelLimit = (std::uint64_t{1} << 32) / kBytesPerBgra;
    if (image.pixels() == 0 || image.pixels() >= kPixelLimit || destination == nullptr || source == nullptr)
        return Orvo::CAM_API_STS_INVALID_PARAMETER;

    auto* const bgra = static_cast<std::uint8_t*>(destination);
    switch (format->family) {
    case PixelFamily::Mono:
        convertMono(kernels, image, bgra);
        break;
    case PixelFamily::Bayer:
        convertBayer(kernels, image, bgra);
        break;
    case PixelFamily::Rgb:
        convertRgb(kernels, image, bgra);
        break;
    case PixelFamily::YCbCr:
    case PixelFamily::YCbCr601:
    case PixelFamily::YCbCr709:
        convertYCbCr(kernels, image, bgra);
        break;
    }
    return Orvo::CAM_API_STS_SUCCESS;
}

} // namespace cameralibs
