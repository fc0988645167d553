#include "cameralibs/util/Conversion.h"
#include "cameralibs/util/SampleReader.h"

#include <algorithm>
#include <array>

namespace orvo {

namespace {

using Piece = std::array<std::uint8_t, pixelsPerPiece>;

// What one level of Y, Cb and Cr adds to the colours, in 2^-14 and 2^-13: as large as 16-bit products allow.
struct Matrix {
    constexpr Matrix(double kr, double kb, bool fullRange)
        : black(fullRange ? 0 : 16)
        , luma(fixed(fullRange ? 1.0 : 255.0 / 219, 14))
        , redFromCr(chroma(2 * (1 - kr), fullRange))
        , greenFromCb(chroma(2 * (1 - kb) * kb / (1 - kr - kb), fullRange))
        , greenFromCr(chroma(2 * (1 - kr) * kr / (1 - kr - kb), fullRange))
        , blueFromCb(chroma(2 * (1 - kb), fullRange))
    {
    }

    std::int16_t black;
    std::int16_t luma;
    std::int16_t redFromCr;
    std::int16_t greenFromCb;
    std::int16_t greenFromCr;
    std::int16_t blueFromCb;

private:
    static constexpr std::int16_t fixed(double value, unsigned fraction)
    {
        return static_cast<std::int16_t>((static_cast<int>(value * (2U << fraction)) + 1) / 2);
    }
    static constexpr std::int16_t chroma(double value, bool fullRange)
    {
        return fixed(fullRange ? value : value * 255 / 224, 13);
    }
};

constexpr Matrix bt601Full(0.299, 0.114, true);
constexpr Matrix bt601Limited(0.299, 0.114, false);
constexpr Matrix bt709Limited(0.2126, 0.0722, false);

const Matrix& matrixOf(PixelFamily family)
{
    switch (family) {
    case PixelFamily::YCbCr601:
        return bt601Limited;
    case PixelFamily::YCbCr709:
        return bt709Limited;
    default:
        return bt601Full;
    }
}

// The upper half of a product of 16-bit numbers: one instruction for eight of them, as long as no number in between
// is wider. Hence the casts here and below.
inline std::int16_t upperHalf(std::int16_t a, std::int16_t b)
{
    return static_cast<std::int16_t>(a * b >> 16);
}

inline std::uint8_t fromThirtySeconds(std::int16_t sum)
{
    const auto rounded = static_cast<std::int16_t>(static_cast<std::int16_t>(sum + 16) >> 5);
    return static_cast<std::uint8_t>(rounded < 0 ? 0 : rounded > 255 ? 255 : rounded);
}

struct Planes {
    Piece y;
    Piece cb;
    Piece cr;
};

struct Colours {
    Piece blue;
    Piece green;
    Piece red;
};

// Sums of 2^-5 levels hold every result in 16 bits, and cutting the products down to them costs less than a tenth of
// a level.
void toColours(const Planes& planes, const Matrix& matrix, std::size_t pixels, Colours& colours)
{
    const Matrix m = matrix;
    for (std::size_t i = 0; i < pixels; ++i) {
        const auto y = upperHalf(static_cast<std::int16_t>((planes.y[i] - m.black) * 128), m.luma);
        const auto cb = static_cast<std::int16_t>((planes.cb[i] - 128) * 256);
        const auto cr = static_cast<std::int16_t>((planes.cr[i] - 128) * 256);
        const auto blue = static_cast<std::int16_t>(y + upperHalf(cb, m.blueFromCb));
        const auto green = static_cast<std::int16_t>(y - upperHalf(cb, m.greenFromCb) - upperHalf(cr, m.greenFromCr));
        const auto red = static_cast<std::int16_t>(y + upperHalf(cr, m.redFromCr));
        colours.blue[i] = fromThirtySeconds(blue);
        colours.green[i] = fromThirtySeconds(green);
        colours.red[i] = fromThirtySeconds(red);
    }
}

// Takes the samples of groups apart and repeats chroma over the pixels of its group, the last one completed.
template <std::size_t PixelsPerGroup, std::size_t SamplesPerGroup>
void splitGroups(const std::uint8_t* __restrict samples, std::string_view order, std::size_t groups, Planes& planes)
{
    std::array<std::size_t, PixelsPerGroup> luma{};
    for (std::size_t pixel = 0, place = 0; pixel < PixelsPerGroup; ++pixel, ++place) {
        place = order.find('Y', place);
        luma[pixel] = place;
    }
    const std::size_t cb = order.find('U');
    const std::size_t cr = order.find('V');
    for (std::size_t group = 0; group < groups; ++group, samples += SamplesPerGroup) {
        for (std::size_t pixel = 0; pixel < PixelsPerGroup; ++pixel) {
            planes.y[group * PixelsPerGroup + pixel] = samples[luma[pixel]];
            planes.cb[group * PixelsPerGroup + pixel] = samples[cb];
            planes.cr[group * PixelsPerGroup + pixel] = samples[cr];
        }
    }
}

template <std::size_t PixelsPerGroup, std::size_t SamplesPerGroup>
void convertInterleaved(const SourceImage& image, std::uint8_t* bgra)
{
    static_assert(pixelsPerPiece % PixelsPerGroup == 0);
    const SampleReader reader(image.format, image.data);
    const Matrix& matrix = matrixOf(image.format.family);
    const std::uint64_t samplesPerRow = image.samplesPerRow();
    std::array<std::uint8_t, pixelsPerPiece / PixelsPerGroup * SamplesPerGroup> buffer{};
    Planes planes{};
    Colours colours{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const std::uint64_t first = y * samplesPerRow + x / PixelsPerGroup * SamplesPerGroup;
        const std::size_t groups = (pixels + PixelsPerGroup - 1) / PixelsPerGroup;
        const std::uint8_t* const samples = reader.read(first, groups * SamplesPerGroup, buffer.data());
        splitGroups<PixelsPerGroup, SamplesPerGroup>(samples, image.format.order, groups, planes);
        toColours(planes, matrix, pixels, colours);
        writePixels(colours.blue.data(), colours.green.data(), colours.red.data(), pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

// Of 8 bits in every format of the PFNC. The plane of Y has no padding, the rows of chroma are completed.
void convertSemiplanar(const SourceImage& image, std::uint8_t* bgra)
{
    const Matrix& matrix = matrixOf(image.format.family);
    const bool rowsShareChroma = pixelsPerGroup(image.format) == 4;
    const std::uint64_t lumaPerRow = image.samplesPerRow();
    const std::uint64_t chromaPerRow = (std::uint64_t{image.width} + 1) / 2 * 2;
    const std::size_t cb = image.format.order.find('U') < image.format.order.find('V') ? 0 : 1;
    Planes planes{};
    Colours colours{};
    forEachPiece(image, [&](std::uint32_t x, std::uint32_t y, std::uint32_t pixels) {
        const std::uint8_t* const luma = image.data + y * lumaPerRow + x;
        const std::uint32_t chromaRow = rowsShareChroma ? y / 2 : y;
        const std::uint8_t* const chroma = image.data + image.pixels() + chromaRow * chromaPerRow + x;
        std::copy_n(luma, pixels, planes.y.data());
        for (std::size_t pair = 0; pair < (pixels + 1) / 2; ++pair) {
            planes.cb[2 * pair] = planes.cb[2 * pair + 1] = chroma[2 * pair + cb];
            planes.cr[2 * pair] = planes.cr[2 * pair + 1] = chroma[2 * pair + 1 - cb];
        }
        toColours(planes, matrix, pixels, colours);
        writePixels(colours.blue.data(), colours.green.data(), colours.red.data(), pixels, bgra);
        bgra += bytesPerBgra * pixels;
    });
}

} // namespace

void convertYCbCr(const SourceImage& image, std::uint8_t* bgra) noexcept
{
    if (image.format.packing == SamplePacking::Semiplanar) {
        convertSemiplanar(image, bgra);
        return;
    }
    switch (pixelsPerGroup(image.format)) {
    case 1:
        convertInterleaved<1, 3>(image, bgra);
        break;
    case 2:
        convertInterleaved<2, 4>(image, bgra);
        break;
    default:
        convertInterleaved<4, 6>(image, bgra);
        break;
    }
}

} // namespace orvo
