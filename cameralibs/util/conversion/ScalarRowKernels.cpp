#include "cameralibs/util/conversion/RowKernels.h"

#include <algorithm>
#include <array>

namespace cameralibs {

namespace {

void writePixel(std::uint8_t blue, std::uint8_t green, std::uint8_t red, std::uint8_t* bgra)
{
    bgra[0] = blue;
    bgra[1] = green;
    bgra[2] = red;
    bgra[3] = 255;
}

// Samples to bytes

std::uint8_t upperBits(const std::uint8_t* from, SamplePacking packing, unsigned bits, std::size_t sample)
{
    if (packing == SamplePacking::Pairs)
        return from[sample / 2 * 3 + sample % 2 * 2];
    // The position of the upper 8 bits of a sample, in a run of bits or in 16-bit words.
    const std::size_t bit = packing == SamplePacking::Bits ? (sample + 1) * bits - 8 : 16 * sample + bits - 8;
    const std::uint8_t* const byte = from + bit / 8;
    const unsigned shift = bit % 8;
    // Do not read byte[1] if the sample ends at a byte boundary: it may lie outside the image.
    return shift == 0 ? *byte : static_cast<std::uint8_t>(byte[0] >> shift | byte[1] << (8 - shift));
}

void bytesFromSamples(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t samples,
                      WritableBytes bytes)
{
    for (std::size_t i = 0; i < samples; ++i)
        bytes.begin[i] = upperBits(from.begin, packing, bits, i);
}

void bgraFromGraySamples(ReadableBytes from, SamplePacking packing, unsigned bits, std::size_t pixels,
                         WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t level = upperBits(from.begin, packing, bits, i);
        writePixel(level, level, level, bgra.begin + kBytesPerBgra * i);
    }
}

// Gray and colours

void bgraFromGray(ReadableBytes gray, std::size_t pixels, WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t level = gray.begin[i];
        writePixel(level, level, level, bgra.begin + kBytesPerBgra * i);
    }
}

void bgraFromPixels(ReadableBytes samples, const PixelLayout& layout, std::size_t pixels, WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* const pixel = samples.begin + layout.bytes * i;
        writePixel(pixel[layout.blue], pixel[layout.green], pixel[layout.red], bgra.begin + kBytesPerBgra * i);
    }
}

void bgraFromWords30(ReadableBytes words, std::size_t pixels, WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* const word = words.begin + 4 * i;
        const unsigned bits = word[0] | unsigned{word[1]} << 8 | unsigned{word[2]} << 16 | unsigned{word[3]} << 24;
        const auto upper = [bits](unsigned sample) { return static_cast<std::uint8_t>(bits >> (10 * sample + 2)); };
        writePixel(upper(2), upper(1), upper(0), bgra.begin + kBytesPerBgra * i);
    }
}

void bgraFromPlanes(ReadableBytes blue, ReadableBytes green, ReadableBytes red, std::size_t pixels, WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i)
        writePixel(blue.begin[i], green.begin[i], red.begin[i], bgra.begin + kBytesPerBgra * i);
}

// Luma and chroma

std::uint8_t fromThirtySeconds(int sum)
{
    return static_cast<std::uint8_t>(std::clamp(sum >> 5, 0, 255));
}

// Products are truncated to units of 2^-5, so that every sum fits 16 bits. The error is less than a tenth of a level.
void writeYCbCr(std::uint8_t y, std::uint8_t cb, std::uint8_t cr, const ChromaWeights& weights, std::uint8_t* bgra)
{
    const int gray = (y * weights.luma >> 8) + weights.offset;
    const int blue = (cb - 128) * weights.blueFromCb >> 8;
    const int green = ((cb - 128) * weights.greenFromCb + (cr - 128) * weights.greenFromCr) >> 8;
    const int red = (cr - 128) * weights.redFromCr >> 8;
    writePixel(fromThirtySeconds(gray + blue), fromThirtySeconds(gray + green), fromThirtySeconds(gray + red), bgra);
}

void bgraFromGroups(ReadableBytes samples, const ChromaLayout& layout, const ChromaWeights& weights, std::size_t pixels,
                    WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* const group = samples.begin + i / layout.pixels * layout.samples;
        writeYCbCr(group[layout.luma[i % layout.pixels]], group[layout.cb], group[layout.cr], weights,
                   bgra.begin + kBytesPerBgra * i);
    }
}

void bgraFromSemiplanar(ReadableBytes luma, ReadableBytes chroma, const ChromaLayout& layout,
                        const ChromaWeights& weights, std::size_t pixels, WritableBytes bgra)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* const pair = chroma.begin + i / 2 * 2;
        writeYCbCr(luma.begin[i], pair[layout.cb], pair[layout.cr], weights, bgra.begin + kBytesPerBgra * i);
    }
}

// Bayer

std::uint8_t fromSixteenths(int sum)
{
    return static_cast<std::uint8_t>(std::clamp((sum + 8) >> 4, 0, 255));
}

// A row between the two rows above and the two rows below it.
using FilterRows = std::array<const std::uint8_t*, 5>;

// The four filters of Malvar, He and Cutler: "High-quality linear interpolation for demosaicing of Bayer-patterned
// color images", 2004; in sixteenths.
void writeBayerRow(const FilterRows& rows, BayerRow kind, std::size_t pixels, std::uint8_t* bgra)
{
    const bool greenFirst = kind == BayerRow::GreenRed || kind == BayerRow::GreenBlue;
    const bool redRow = kind == BayerRow::GreenRed || kind == BayerRow::RedGreen;
    for (std::ptrdiff_t x = 0; x < static_cast<std::ptrdiff_t>(pixels); ++x, bgra += kBytesPerBgra) {
        const std::uint8_t here = rows[2][x];
        const int inRow = rows[2][x - 1] + rows[2][x + 1];
        const int inColumn = rows[1][x] + rows[3][x];
        const int farInRow = rows[2][x - 2] + rows[2][x + 2];
        const int farInColumn = rows[0][x] + rows[4][x];
        const int diagonal = rows[1][x - 1] + rows[1][x + 1] + rows[3][x - 1] + rows[3][x + 1];
        const bool atGreen = greenFirst == (x % 2 == 0);
        if (atGreen) {
            const auto rowColour = fromSixteenths(10 * here + 8 * inRow - 2 * (diagonal + farInRow) + farInColumn);
            const auto columnColour =
                fromSixteenths(10 * here + 8 * inColumn - 2 * (diagonal + farInColumn) + farInRow);
            writePixel(redRow ? columnColour : rowColour, here, redRow ? rowColour : columnColour, bgra);
        } else {
            const int far = farInRow + farInColumn;
            const auto green = fromSixteenths(8 * here + 4 * (inRow + inColumn) - 2 * far);
            const auto opposite = fromSixteenths(12 * here + 4 * diagonal - 3 * far);
            writePixel(redRow ? opposite : here, green, redRow ? here : opposite, bgra);
        }
    }
}

BayerRow rowBelow(BayerRow row)
{
    switch (row) {
    case BayerRow::RedGreen:
        return BayerRow::GreenBlue;
    case BayerRow::GreenRed:
        return BayerRow::BlueGreen;
    case BayerRow::BlueGreen:
        return BayerRow::GreenRed;
    case BayerRow::GreenBlue:
        return BayerRow::RedGreen;
    }
    return row;
}

void bgraFromBayer(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                   std::uint8_t* secondBgra)
{
    writeBayerRow({rows[1], rows[2], rows[3], rows[4], rows[5]}, rowBelow(first), pixels, secondBgra);
    writeBayerRow({rows[0], rows[1], rows[2], rows[3], rows[4]}, first, pixels, firstBgra);
}

} // namespace

const RowKernels& scalarRowKernels() noexcept
{
    static constexpr RowKernels kKernels{
        bytesFromSamples, bgraFromGraySamples, bgraFromGray,       bgraFromPixels, bgraFromWords30,
        bgraFromPlanes,   bgraFromGroups,      bgraFromSemiplanar, bgraFromBayer,  nullptr};
    return kKernels;
}

} // namespace cameralibs
