#include "tests/cameralibs/util/ReferenceConversion.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <stdexcept>
#include <string_view>

namespace {

// The filters in sixteenths. Green at red and blue (twice the values in the paper):
constexpr int kGreenAtColour[5][5] = {
    {0, 0, -2, 0, 0}, {0, 0, 4, 0, 0}, {-2, 4, 8, 4, -2}, {0, 0, 4, 0, 0}, {0, 0, -2, 0, 0},
};
// The colour to the left and right of a green pixel; transposed, the one above and below:
constexpr int kColourAtGreen[5][5] = {
    {0, 0, 1, 0, 0}, {0, -2, 0, -2, 0}, {-2, 8, 10, 8, -2}, {0, -2, 0, -2, 0}, {0, 0, 1, 0, 0},
};
// Red at blue, and blue at red:
constexpr int kColourAtOpposite[5][5] = {
    {0, 0, -3, 0, 0}, {0, 4, 0, 4, 0}, {-3, 0, 12, 0, -3}, {0, 4, 0, 4, 0}, {0, 0, -3, 0, 0},
};

long mirror(long index, long size)
{
    if (size == 1)
        return 0;
    const long period = 2 * (size - 1);
    const long folded = ((index % period) + period) % period;
    return folded < size ? folded : period - folded;
}

int bitsAt(const std::uint8_t* source, std::size_t position, std::size_t count)
{
    int value = 0;
    for (std::size_t bit = 0; bit < count; ++bit) {
        const std::size_t place = position + bit;
        value |= (source[place / 8] >> (place % 8) & 1) << bit;
    }
    return value;
}

std::size_t dividedUp(std::size_t a, std::size_t b)
{
    return (a + b - 1) / b;
}

// Removes the first of these prefixes that the text has, and returns it.
std::string take(std::string_view& text, std::initializer_list<std::string_view> words)
{
    for (const std::string_view word : words) {
        if (text.substr(0, word.size()) == word) {
            text.remove_prefix(word.size());
            return std::string(word);
        }
    }
    return {};
}

std::string replaced(std::string text, std::string_view word, std::string_view by)
{
    for (std::size_t place = text.find(word); place != std::string::npos; place = text.find(word, place))
        text.replace(place, word.size(), by);
    return text;
}

} // namespace

ReferenceConversion::ReferenceConversion(const std::string& formatName, std::size_t width, std::size_t height)
    : m_width(width)
    , m_height(height)
{
    std::string_view rest = formatName;
    const std::string family = take(rest, {"Mono", "BayerGR", "BayerRG", "BayerGB", "BayerBG", "RGBa", "RGB", "BGRa",
                                           "BGR", "YUV", "YCbCr601", "YCbCr709", "YCbCr"});
    take(rest, {"_"});
    const std::string sampling = take(rest, {"411", "420", "422"});
    take(rest, {"_"});
    const std::string bits = take(rest, {"8", "10", "12", "14", "16"});
    const std::string packing = take(rest, {"Packed", "p32", "p", "_Planar"});
    take(rest, {"_"});
    std::string order(rest);
    if (family.empty() || bits.empty())
        throw std::invalid_argument("not understood: " + formatName);

    m_bits = std::stoul(bits);
    m_padded32 = packing == "p32";
    m_pairs = packing == "Packed";
    m_planar = packing == "_Planar";
    m_chroma = family[0] == 'Y';
    if (m_chroma) {
        m_fullRange = family == "YUV" || family == "YCbCr";
        if (family == "YCbCr709") {
            m_kr = 0.2126;
            m_kb = 0.0722;
        }
        m_pixelsPerGroup = sampling == "411" ? 4 : sampling.empty() ? 1 : 2;
        if (order.empty()) {
            order = sampling == "422" ? "YUYV" : sampling == "411" ? "YYUYYV" : "YUV";
        } else if (order.find("Semiplanar") != std::string::npos) {
            m_chromaRows = sampling == "420" ? 2 : 1;
            order = order == "YY_CbCr_Semiplanar" ? "UV" : "VU";
        }
        m_order = replaced(replaced(order, "Cb", "U"), "Cr", "V");
    } else if (family.rfind("Bayer", 0) == 0) {
        m_bayer = family.substr(5);
        m_order = "C";
    } else {
        m_order = family == "Mono" ? "Y" : family;
    }
    m_containerBits = packing == "p" ? m_bits : m_bits == 8 ? 8 : 16;
}

std::size_t ReferenceConversion::samplesPerRow() const
{
    return dividedUp(m_width, m_pixelsPerGroup) * m_order.size();
}

std::size_t ReferenceConversion::sourceBytes() const
{
    if (m_pairs)
        return dividedUp(m_width, 2) * 3 * m_height;
    if (m_padded32)
        return m_width * m_height * 4;
    if (m_chromaRows != 0)
        return m_width * m_height + dividedUp(m_width, 2) * 2 * dividedUp(m_height, m_chromaRows);
    return dividedUp(samplesPerRow() * m_height * m_containerBits, 8);
}

std::size_t ReferenceConversion::bitsPerPixel() const
{
    if (m_pairs)
        return 12;
    if (m_padded32)
        return 32;
    if (m_chromaRows != 0)
        return 8 + 8 / m_chromaRows;
    return m_order.size() * m_containerBits / m_pixelsPerGroup;
}

int ReferenceConversion::sample(const std::uint8_t* source, char component, std::size_t x, std::size_t y) const
{
    if (m_pairs) {
        const std::uint8_t* const pair = source + (y * dividedUp(m_width, 2) + x / 2) * 3;
        const std::size_t lowBits = m_bits - 8;
        const int low = bitsAt(pair, x % 2 == 0 ? 8 : 12, lowBits);
        const int whole = pair[x % 2 == 0 ? 0 : 2] << lowBits | low;
        return whole >> lowBits;
    }
    std::size_t position = 0;
    if (m_padded32) {
        position = (y * m_width + x) * 32 + m_order.find(component) * m_bits;
    } else if (m_planar) {
        position = ((m_order.find(component) * m_height + y) * m_width + x) * m_containerBits;
    } else if (m_chromaRows != 0 && component == 'Y') {
        position = (y * m_width + x) * 8;
    } else if (m_chromaRows != 0) {
        const std::size_t row = y / m_chromaRows * dividedUp(m_width, 2) * 2;
        position = (m_width * m_height + row + x / 2 * 2 + m_order.find(component)) * 8;
    } else {
        // The n-th pixel of a group has the n-th Y sample.
        std::size_t place = m_order.find(component);
        if (component == 'Y') {
            for (std::size_t n = 0; n < x % m_pixelsPerGroup; ++n)
                place = m_order.find('Y', place + 1);
        }
        const std::size_t group = x / m_pixelsPerGroup * m_order.size();
        position = (y * samplesPerRow() + group + place) * m_containerBits;
    }
    return bitsAt(source, position + m_bits - 8, 8);
}

ReferenceConversion::Colour ReferenceConversion::bayer(const std::vector<int>& mosaic, std::size_t x,
                                                       std::size_t y) const
{
    const auto apply = [&](const int(&filter)[5][5], bool turned) {
        int sum = 0;
        for (int dy = -2; dy <= 2; ++dy) {
            for (int dx = -2; dx <= 2; ++dx) {
                const long row = mirror(static_cast<long>(y) + dy, static_cast<long>(m_height));
                const long column = mirror(static_cast<long>(x) + dx, static_cast<long>(m_width));
                const int weight = turned ? filter[dx + 2][dy + 2] : filter[dy + 2][dx + 2];
                sum += weight * mosaic[static_cast<std::size_t>(row) * m_width + static_cast<std::size_t>(column)];
            }
        }
        return std::clamp(std::floor((sum + 8) / 16.0), 0.0, 255.0);
    };
    // The second row of a GR mosaic is BG, that of an RG mosaic is GB, and vice versa.
    const auto colourAt = [&](std::size_t column, std::size_t row) {
        std::string colours = m_bayer;
        if (row % 2 == 1) {
            const char other = colours.find('R') != std::string::npos ? 'B' : 'R';
            colours = colours[0] == 'G' ? std::string{other, 'G'} : std::string{'G', other};
        }
        return colours[column % 2];
    };
    const double here = mosaic[y * m_width + x];
    const char colour = colourAt(x, y);
    if (colour == 'G') {
        const double beside = apply(kColourAtGreen, false);
        const double above = apply(kColourAtGreen, true);
        return colourAt(x + 1, y) == 'R' ? Colour{above, here, beside} : Colour{beside, here, above};
    }
    const double green = apply(kGreenAtColour, false);
    const double opposite = apply(kColourAtOpposite, false);
    return colour == 'R' ? Colour{opposite, green, here} : Colour{here, green, opposite};
}

ReferenceConversion::Colour ReferenceConversion::yCbCr(int y, int cb, int cr) const
{
    const double luma = m_fullRange ? y / 255.0 : (y - 16) / 219.0;
    const double pb = (cb - 128) / (m_fullRange ? 255.0 : 224.0);
    const double pr = (cr - 128) / (m_fullRange ? 255.0 : 224.0);
    const double red = luma + 2 * (1 - m_kr) * pr;
    const double blue = luma + 2 * (1 - m_kb) * pb;
    const double green = (luma - m_kr * red - m_kb * blue) / (1 - m_kr - m_kb);
    const auto level = [](double value) { return std::clamp(value * 255, 0.0, 255.0); };
    return {level(blue), level(green), level(red)};
}

std::vector<ReferenceConversion::Colour> ReferenceConversion::convert(const std::uint8_t* source) const
{
    std::vector<int> mosaic;
    std::vector<Colour> result;
    for (std::size_t y = 0; !m_bayer.empty() && y < m_height; ++y) {
        for (std::size_t x = 0; x < m_width; ++x)
            mosaic.push_back(sample(source, 'C', x, y));
    }
    for (std::size_t y = 0; y < m_height; ++y) {
        for (std::size_t x = 0; x < m_width; ++x) {
            const auto component = [&](char name) { return sample(source, name, x, y); };
            if (!m_bayer.empty()) {
                result.push_back(bayer(mosaic, x, y));
            } else if (m_chroma) {
                result.push_back(yCbCr(component('Y'), component('U'), component('V')));
            } else if (m_order == "Y") {
                const double gray = component('Y');
                result.push_back({gray, gray, gray});
            } else {
                result.push_back({double(component('B')), double(component('G')), double(component('R'))});
            }
        }
    }
    return result;
}
