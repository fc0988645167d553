#include "cameralibs/util/conversion/Conversion.h"
#include "cameralibs/util/conversion/SampleReader.h"

namespace orvo {

void convertMono(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    const RowKernels& kernels = rowKernels();
    const SampleReader reader(image);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    PieceBuffer<1> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): room
    forEachPiece(image, bgra, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels, WritableBytes target) {
        kernels.bgraFromGray(reader.read(y * samplesPerRow + x, pixels, buffer.bytes()), pixels, target);
    });
}

} // namespace orvo
