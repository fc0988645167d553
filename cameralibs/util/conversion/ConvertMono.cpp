#include "cameralibs/util/conversion/Conversion.h"

namespace cameralibs {

void convertMono(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    const RowKernels& kernels = rowKernels();
    const ReadableBytes all{image.data, image.data + image.bytes()};
    const WritableBytes result{bgra, bgra + bytesPerBgra * image.pixels()};
    if (image.format.bits == 8) {
        kernels.bgraFromGray(all, image.pixels(), result);
        return;
    }
    // Pairs alone are completed per row.
    const std::uint64_t bytesPerRow = image.samplesPerRow() / 2 * 3;
    const std::uint64_t pixels = image.gapless() ? image.pixels() : image.width;
    const std::uint64_t rows = image.gapless() ? 1 : image.height;
    for (std::uint64_t y = 0; y < rows; ++y) {
        kernels.bgraFromGraySamples({all.begin + y * bytesPerRow, all.end}, image.format.packing, image.format.bits,
                                    pixels, {bgra + bytesPerBgra * y * pixels, result.end});
    }
}

} // namespace cameralibs
