#include "cameralibs/util/conversion/Conversion.h"
#include "cameralibs/util/conversion/SampleReader.h"

#include <array>

namespace cameralibs {

namespace {

PixelLayout layoutOf(const PixelFormat& format)
{
    const auto place = [&format](char colour) { return static_cast<std::uint8_t>(format.order.find(colour)); };
    return {format.order.size(), place('B'), place('G'), place('R')};
}

void convertInterleaved(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(kernels, image);
    const PixelLayout layout = layoutOf(image.format);
    PieceBuffer<4> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): a buffer
    forEachPiece(image, bgra, [&](std::uint32_t x, std::uint32_t, std::uint32_t pixels, WritableBytes target) {
        const std::uint64_t first = std::uint64_t{x} * layout.bytes;
        kernels.bgraFromPixels(reader.read(first, pixels * layout.bytes, buffer.bytes()), layout, pixels, target);
    });
}

// All planar formats of the PFNC store red, green and blue in this order.
void convertPlanar(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra)
{
    const SampleReader reader(kernels, image);
    std::array<PieceBuffer<1>, 3> buffers; // NOLINT(cppcoreguidelines-pro-type-member-init): a buffer
    forEachPiece(image, bgra, [&](std::uint32_t x, std::uint32_t, std::uint32_t pixels, WritableBytes target) {
        const auto readPlane = [&](std::size_t plane) {
            return reader.read(plane * image.pixels() + x, pixels, buffers[plane].bytes());
        };
        kernels.bgraFromPlanes(readPlane(2), readPlane(1), readPlane(0), pixels, target);
    });
}

} // namespace

void convertRgb(const RowKernels& kernels, const SourceImage& image, std::uint8_t* bgra) noexcept
{
    switch (image.format.packing) {
    case SamplePacking::Planar:
        convertPlanar(kernels, image, bgra);
        break;
    case SamplePacking::Bits32:
        kernels.bgraFromWords30({image.data, image.data + image.bytes()}, image.pixels(),
                                {bgra, bgra + kBytesPerBgra * image.pixels()});
        break;
    default:
        convertInterleaved(kernels, image, bgra);
        break;
    }
}

} // namespace cameralibs
