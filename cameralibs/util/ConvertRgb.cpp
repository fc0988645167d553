#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"

#include <array>

namespace orvo {

namespace {

using Piece = std::array<std::uint8_t, pixelsPerPiece>;

// The places of the colours among the samples of a pixel, or of their planes among the planes.
struct ColourOrder {
    explicit ColourOrder(std::string_view order)
        : blue(order.find('B'))
        , green(order.find('G'))
        , red(order.find('R'))
    {
    }

    std::size_t blue;
    std::size_t green;
    std::size_t red;
};

template <std::size_t SamplesPerPixel>
void writeInterleaved(const std::uint8_t* __restrict samples, ColourOrder order, std::size_t pixels,
                      std::uint8_t* __restrict bgra)
{
    for (std::size_t i = 0; i < pixels; ++i, samples += SamplesPerPixel, bgra += bytesPerBgra) {
        bgra[0] = samples[order.blue];
        bgra[1] = samples[order.green];
        bgra[2] = samples[order.red];
        bgra[3] = 255;
    }
}

template <std::size_t SamplesPerPixel> void convertInterleaved(const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(image.format, image.data);
    const ColourOrder order(image.format.order);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<std::uint8_t, SamplesPerPixel * pixelsPerPiece> buffer{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const std::uint64_t first = y * samplesPerRow + x * SamplesPerPixel;
        const std::uint8_t* const samples = reader.read(first, pixels * SamplesPerPixel, buffer.data());
        writeInterleaved<SamplesPerPixel>(samples, order, pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

void convertPlanar(const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(image.format, image.data);
    const ColourOrder order(image.format.order);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<Piece, 3> buffers{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const auto readPlane = [&](std::size_t plane) {
            return reader.read(plane * image.pixels() + y * samplesPerRow + x, pixels, buffers[plane].data());
        };
        writeBgra(readPlane(order.blue), readPlane(order.green), readPlane(order.red), pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

} // namespace

void convertRgb(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    if (image.format.packing == SamplePacking::Planar) {
        convertPlanar(image, bgra);
    } else if (image.format.order.size() == 4) {
        convertInterleaved<4>(image, bgra);
    } else {
        convertInterleaved<3>(image, bgra);
    }
}

} // namespace orvo
