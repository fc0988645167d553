#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"

#include <array>
#include <cstring>

namespace orvo {

namespace {

// Takes each pixel as a word with a byte of something else at its end, alpha or the next pixel's first sample. After
// the last one of three samples there may be nothing.
template <std::size_t SamplesPerPixel, bool RedFirst>
void writeInterleaved(const std::uint8_t* __restrict samples, std::size_t pixels, std::uint8_t* __restrict bgra)
{
    for (std::size_t i = 0; i + 1 < pixels; ++i) {
        std::uint32_t word = 0;
        std::memcpy(&word, samples + SamplesPerPixel * i, sizeof word);
        word = (RedFirst ? __builtin_bswap32(word) >> 8 : word) | 0xFF000000U;
        std::memcpy(bgra + bytesPerBgra * i, &word, sizeof word);
    }
    const std::uint8_t* const last = samples + SamplesPerPixel * (pixels - 1);
    writePixel(last[RedFirst ? 2 : 0], last[1], last[RedFirst ? 0 : 2], bgra + bytesPerBgra * (pixels - 1));
}

template <std::size_t SamplesPerPixel, bool RedFirst>
void convertInterleaved(const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(image.format, image.data);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<std::uint8_t, SamplesPerPixel * pixelsPerPiece> buffer{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const std::uint64_t first = y * samplesPerRow + x * SamplesPerPixel;
        const std::uint8_t* const samples = reader.read(first, pixels * SamplesPerPixel, buffer.data());
        writeInterleaved<SamplesPerPixel, RedFirst>(samples, pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

// Red, green, blue in every format of the PFNC.
void convertPlanar(const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(image.format, image.data);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<std::array<std::uint8_t, pixelsPerPiece>, 3> buffers{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const auto readPlane = [&](std::size_t plane) {
            return reader.read(plane * image.pixels() + y * samplesPerRow + x, pixels, buffers[plane].data());
        };
        writePixels(readPlane(2), readPlane(1), readPlane(0), pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

} // namespace

void convertRgb(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    const std::string_view order = image.format.order;
    if (image.format.packing == SamplePacking::Planar) {
        convertPlanar(image, bgra);
    } else if (order == "RGB") {
        convertInterleaved<3, true>(image, bgra);
    } else if (order == "BGR") {
        convertInterleaved<3, false>(image, bgra);
    } else if (order == "RGBa") {
        convertInterleaved<4, true>(image, bgra);
    } else {
        convertInterleaved<4, false>(image, bgra);
    }
}

} // namespace orvo
