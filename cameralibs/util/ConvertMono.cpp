#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"

#include <array>

namespace orvo {

void convertMono(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    const SampleReader reader(image.format, image.data);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<std::uint8_t, pixelsPerPiece> buffer{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const std::uint8_t* const gray = reader.read(y * samplesPerRow + x, pixels, buffer.data());
        writePixels(gray, gray, gray, pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

} // namespace orvo
