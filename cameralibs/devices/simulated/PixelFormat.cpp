#include "PixelFormat.h"

#include <algorithm>
#include <iterator>

namespace orvo::simulated {

namespace {

// What one pixel of a row says, in 16 bits.

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

// How the pixels of a row follow each other.

template <typename Source> void packBytes(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out)
{
    for (std::size_t x = 0; x < count; ++x)
        out[x] = static_cast<std::uint8_t>(Source::component(pixels[x], x, y) >> 8);
}

template <typename Source, unsigned Depth>
void packWords(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out)
{
    for (std::size_t x = 0; x < count; ++x) {
        const std::uint32_t word = Source::component(pixels[x], x, y) >> (16 - Depth);
        out[2 * x] = static_cast<std::uint8_t>(word);
        out[2 * x + 1] = static_cast<std::uint8_t>(word >> 8);
    }
}

// Four pixels fill whole bytes: five of them with 10 bits, six with 12.
template <typename Source, unsigned Depth>
void packBits(const Sample* pixels, std::size_t count, std::uint32_t y, std::uint8_t* out)
{
    for (std::size_t x = 0; x < count; x += kPixelGroup) {
        std::uint64_t bits = 0;
        for (unsigned i = 0; i < kPixelGroup; ++i)
            bits |= static_cast<std::uint64_t>(Source::component(pixels[x + i], x + i, y) >> (16 - Depth)) << i * Depth;
        for (unsigned i = 0; i < kPixelGroup * Depth / 8; ++i)
            *out++ = static_cast<std::uint8_t>(bits >> 8 * i);
    }
}

void packRgb8(const Sample* pixels, std::size_t count, std::uint32_t, std::uint8_t* out)
{
    for (std::size_t x = 0; x < count; ++x) {
        *out++ = static_cast<std::uint8_t>(pixels[x].red >> 8);
        *out++ = static_cast<std::uint8_t>(pixels[x].green >> 8);
        *out++ = static_cast<std::uint8_t>(pixels[x].blue >> 8);
    }
}

// Full range BT.601 in 14 bits of fraction; the chroma of a pair is that of its mean.
void packYuv422(const Sample* pixels, std::size_t count, std::uint32_t, std::uint8_t* out)
{
    const auto weigh = [](const Sample& pixel, int red, int green, int blue, int offset) {
        return static_cast<std::uint8_t>(
            ((red * pixel.red + green * pixel.green + blue * pixel.blue) / 16384 + offset) >> 8);
    };
    const auto mean = [](std::uint16_t a, std::uint16_t b) { return static_cast<std::uint16_t>((a + b) / 2); };
    for (std::size_t x = 0; x < count; x += 2) {
        const Sample& first = pixels[x];
        const Sample& second = pixels[x + 1];
        const Sample both{mean(first.red, second.red), mean(first.green, second.green), mean(first.blue, second.blue)};
        *out++ = weigh(first, 4899, 9617, 1868, 0);
        *out++ = weigh(both, -2765, -5427, 8192, 0x8000);
        *out++ = weigh(second, 4899, 9617, 1868, 0);
        *out++ = weigh(both, 8192, -6860, -1332, 0x8000);
    }
}

constexpr PixelFormat kFormats[] = {
    {"Mono8", 0x01080001, 8, 8, 1, packBytes<Mono>},
    {"Mono10", 0x01100003, 16, 10, 1, packWords<Mono, 10>},
    {"Mono10p", 0x010A0046, 10, 10, kPixelGroup, packBits<Mono, 10>},
    {"Mono12", 0x01100005, 16, 12, 1, packWords<Mono, 12>},
    {"Mono12p", 0x010C0047, 12, 12, kPixelGroup, packBits<Mono, 12>},
    {"Mono16", 0x01100007, 16, 16, 1, packWords<Mono, 16>},
    {"BayerRG8", 0x01080009, 8, 8, 1, packBytes<BayerRG>},
    {"BayerRG10", 0x0110000D, 16, 10, 1, packWords<BayerRG, 10>},
    {"BayerRG12", 0x01100011, 16, 12, 1, packWords<BayerRG, 12>},
    {"BayerRG12p", 0x010C0059, 12, 12, kPixelGroup, packBits<BayerRG, 12>},
    {"RGB8", 0x02180014, 24, 8, 1, packRgb8},
    {"YUV422_8", 0x02100032, 16, 8, 2, packYuv422},
};

template <typename Key, typename Field> const PixelFormat* find(Key key, Field PixelFormat::*field)
{
    const auto* const found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                           [&](const auto& format) { return format.*field == key; });
    return found != std::end(kFormats) ? found : nullptr;
}

} // namespace

const PixelFormat* pixelFormat(std::uint32_t value)
{
    return find(value, &PixelFormat::value);
}

const PixelFormat* pixelFormat(std::string_view name)
{
    return find(name, &PixelFormat::name);
}

} // namespace orvo::simulated
