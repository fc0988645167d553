#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"

#include <array>

namespace orvo {

namespace {

// Blue, Green, Red: their places among the samples of a pixel.
template <std::size_t SamplesPerPixel, std::size_t Blue, std::size_t Green, std::size_t Red>
void writeInterleaved(const std::uint8_t* __restrict samples, std::size_t pixels, std::uint8_t* __restrict bgra)
{
    for (std::size_t i = 0; i < pixels; ++i, samples += SamplesPerPixel) {
        writePixel(samples[Blue], samples[Green], samples[Red], bgra + bytesPerBgra * i);
    }
}

template <std::size_t SamplesPerPixel, std::size_t Blue, std::size_t Green, std::size_t Red>
void convertInterleaved(const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(image.format, image.data);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<std::uint8_t, SamplesPerPixel * pixelsPerPiece> buffer{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const std::uint64_t first = y * samplesPerRow + x * SamplesPerPixel;
        const std::uint8_t* const samples = reader.read(first, pixels * SamplesPerPixel, buffer.data());
        writeInterleaved<SamplesPerPixel, Blue, Green, Red>(samples, pixels, bgra);
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
        convertInterleaved<3, 2, 1, 0>(image, bgra);
    } else if (order == "BGR") {
        convertInterleaved<3, 0, 1, 2>(image, bgra);
    } else if (order == "RGBa") {
        convertInterleaved<4, 2, 1, 0>(image, bgra);
    } else {
        convertInterleaved<4, 0, 1, 2>(image, bgra);
    }
}

} // namespace orvo
