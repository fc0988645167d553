#include "cameralibs/devices/simulated/images/PixelPacking.h"

#include "cameralibs/base/PixelFormat.h"

#include <algorithm>
#include <iterator>

namespace cameralibs::simulated {

namespace {

// Sources: the 16-bit sample of one pixel in a row.

struct Mono {
    static std::uint32_t component(const Sample& pixel, std::size_t, std::uint32_t)
    {
        return (77U * pixel.red + 150U * pixel.green + 29U * pixel.blue) >> 8;
    }
};

struct BayerRG {
    static std::uint32_t component(const Sample& pixel, std::size_t x, std::uint32_t y)
    {
        if (((x ^ y) & 1) != 0)
            return pixel.green;
        return (y & 1) != 0 ? pixel.blue : pixel.red;
    }
};

// Packings: how the samples of a row are stored.

template <typename Source>
void packBytes(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out, unsigned)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = static_cast<std::uint8_t>(Source::component(pixels[x], x, y) >> 8);
}

template <typename Source, unsigned Depth>
void packWords(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out, unsigned)
{
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t word = Source::component(pixels[x], x, y) >> (16 - Depth);
        out[2 * x] = static_cast<std::uint8_t>(word);
        out[2 * x + 1] = static_cast<std::uint8_t>(word >> 8);
    }
}

template <typename Source, unsigned Depth>
void packBits(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out, unsigned firstBit)
{
    const auto below = [](unsigned bit) { return (1U << bit) - 1; };
    std::uint32_t bits = firstBit == 0 ? 0 : *out & below(firstBit);
    unsigned held = firstBit;
    for (std::size_t x = 0; x < count; ++x) {
        bits |= Source::component(pixels[x], x, y) >> (16 - Depth) << held;
        for (held += Depth; held >= 8; held -= 8) {
            *out++ = static_cast<std::uint8_t>(bits);
            bits >>= 8;
        }
    }
    if (held != 0)
        *out = static_cast<std::uint8_t>((*out & ~below(held)) | bits);
}

void packRgb8(const Sample* pixels, std::size_t count, std::uint32_t, std::uint8_t* out, unsigned)
{
    for (std::size_t x = 0; x < count; ++x) {
        *out++ = static_cast<std::uint8_t>(pixels[x].red >> 8);
        *out++ = static_cast<std::uint8_t>(pixels[x].green >> 8);
        *out++ = static_cast<std::uint8_t>(pixels[x].blue >> 8);
    }
}

// Full-range BT.601 in fixed point with 14 fractional bits. The chroma of a pair is that of its mean. In an odd row the
// last pixel is its own partner.
void packYuv422(const Sample* pixels, std::size_t count, std::uint32_t, std::uint8_t* out, unsigned)
{
    const auto weigh = [](const Sample& pixel, int red, int green, int blue, int offset) {
        return static_cast<std::uint8_t>(
            ((red * pixel.red + green * pixel.green + blue * pixel.blue) / 16384 + offset) >> 8);
    };
    const auto mean = [](std::uint16_t a, std::uint16_t b) { return static_cast<std::uint16_t>((a + b) / 2); };
    for (std::size_t x = 0; x < count; x += 2) {
        const Sample& first = pixels[x];
        const Sample& second = pixels[x + 1 < count ? x + 1 : x];
        const Sample both{mean(first.red, second.red), mean(first.green, second.green), mean(first.blue, second.blue)};
        *out++ = weigh(first, 4899, 9617, 1868, 0);
        *out++ = weigh(both, -2765, -5427, 8192, 0x8000);
        *out++ = weigh(second, 4899, 9617, 1868, 0);
        *out++ = weigh(both, 8192, -6860, -1332, 0x8000);
    }
}

constexpr PixelPacking kPackings[] = {
    {"Mono8", packBytes<Mono>},
    {"Mono10", packWords<Mono, 10>},
    {"Mono10p", packBits<Mono, 10>},
    {"Mono12", packWords<Mono, 12>},
    {"Mono12p", packBits<Mono, 12>},
    {"Mono16", packWords<Mono, 16>},
    {"BayerRG8", packBytes<BayerRG>},
    {"BayerRG10", packWords<BayerRG, 10>},
    {"BayerRG12", packWords<BayerRG, 12>},
    {"BayerRG12p", packBits<BayerRG, 12>},
    {"RGB8", packRgb8},
    {"YUV422_8", packYuv422},
};

} // namespace

const PixelPacking* findPacking(std::uint32_t format)
{
    const PixelFormat* const known = findPixelFormat(format);
    if (known == nullptr)
        return nullptr;
    const auto* const found = std::find_if(std::begin(kPackings), std::end(kPackings),
                                           [&](const PixelPacking& packing) { return packing.format == known->name; });
    return found != std::end(kPackings) ? found : nullptr;
}

} // namespace cameralibs::simulated
