#include "cameralibs/util/conversion/Conversion.h"
#include "cameralibs/util/conversion/SampleReader.h"

namespace cameralibs {

namespace {

// The conversion equations of a standard, scaled as high as 16-bit products allow.
constexpr ChromaWeights weightsOf(double kr, double kb, bool fullRange)
{
    const double kg = 1 - kr - kb;
    const double luma = fullRange ? 1.0 : 255.0 / 219;
    const double chroma = fullRange ? 1.0 : 255.0 / 224;
    const int black = fullRange ? 0 : 16;
    // Rounds half away from zero; std::round is not constexpr.
    const auto rounded = [](double value) {
        return static_cast<std::int16_t>(static_cast<int>(value * 2 + (value < 0 ? -1 : 1)) / 2);
    };
    const auto weight = [rounded](double value) { return rounded(value * (1 << 13)); };
    return {weight(luma),
            rounded(16 - black * luma * 32),
            weight(2 * (1 - kr) * chroma),
            weight(-2 * (1 - kb) * kb / kg * chroma),
            weight(-2 * (1 - kr) * kr / kg * chroma),
            weight(2 * (1 - kb) * chroma)};
}

constexpr ChromaWeights kBt601Full = weightsOf(0.299, 0.114, true);
constexpr ChromaWeights kBt601Limited = weightsOf(0.299, 0.114, false);
constexpr ChromaWeights kBt709Limited = weightsOf(0.2126, 0.0722, false);

const ChromaWeights& weightsOf(PixelFamily family)
{
    switch (family) {
    case PixelFamily::YCbCr601:
        return kBt601Limited;
    case PixelFamily::YCbCr709:
        return kBt709Limited;
    default:
        return kBt601Full;
    }
}

ChromaLayout layoutOf(const PixelFormat& format)
{
    const std::string_view order = format.order;
    ChromaLayout layout{};
    layout.pixels = pixelsPerGroup(format);
    layout.samples = order.size();
    std::size_t chroma = 0; // index of the first chroma sample; in semiplanar formats that after the last Y
    for (std::size_t pixel = 0, place = 0; pixel < layout.pixels; ++pixel) {
        place = order.find('Y', place);
        layout.luma[pixel] = static_cast<std::uint8_t>(place++);
        chroma = format.packing == SamplePacking::Semiplanar ? place : 0;
    }
    layout.cb = static_cast<std::uint8_t>(order.find('U') - chroma);
    layout.cr = static_cast<std::uint8_t>(order.find('V') - chroma);
    return layout;
}

void convertInterleaved(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(kernels, image);
    const ChromaWeights& weights = weightsOf(image.format.family);
    const ChromaLayout layout = layoutOf(image.format);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    PieceBuffer<3> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): a buffer
    forEachPiece(image, bgra, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels, WritableBytes target) {
        const std::uint64_t first = y * samplesPerRow + x / layout.pixels * layout.samples;
        const std::size_t samples = (pixels + layout.pixels - 1) / layout.pixels * layout.samples;
        kernels.bgraFromGroups(reader.read(first, samples, buffer.bytes()), layout, weights, pixels, target);
    });
}

// All semiplanar formats of the PFNC have 8 bits. The Y plane has no padding; chroma rows are padded to whole pairs.
void convertSemiplanar(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra)
{
    const ChromaWeights& weights = weightsOf(image.format.family);
    const ChromaLayout layout = layoutOf(image.format);
    const bool rowsShareChroma = layout.pixels == 4;
    const std::uint64_t chromaPerRow = (std::uint64_t{image.width} + 1) / 2 * 2;
    const std::uint8_t* const end = image.data + image.bytes();
    forEachPiece(image, bgra, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels, WritableBytes target) {
        const std::uint8_t* const luma = image.data + std::uint64_t{y} * image.width + x;
        const std::uint32_t chromaRow = rowsShareChroma ? y / 2 : y;
        const std::uint8_t* const chroma = image.data + image.pixels() + chromaRow * chromaPerRow + x;
        kernels.bgraFromSemiplanar({luma, end}, {chroma, end}, layout, weights, pixels, target);
    });
}

} // namespace

void convertYCbCr(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept
{
    if (image.format.packing == SamplePacking::Semiplanar) {
        convertSemiplanar(kernels, image, bgra);
    } else {
        convertInterleaved(kernels, image, bgra);
    }
}

} // namespace cameralibs
