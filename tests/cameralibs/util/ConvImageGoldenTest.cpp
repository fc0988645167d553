#include "camera/OrvoCamUtl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <ostream>
#include <utility>
#include <vector>

// Small images of every family, calculated by hand. They would reveal a misunderstanding that the library and the
// reference implementation of the other tests share.

namespace {

using testing::Each;
using testing::ElementsAre;

struct Bgr {
    int blue;
    int green;
    int red;

    friend bool operator==(const Bgr& a, const Bgr& b)
    {
        return a.blue == b.blue && a.green == b.green && a.red == b.red;
    }
    friend std::ostream& operator<<(std::ostream& out, const Bgr& colour)
    {
        return out << '(' << colour.blue << ", " << colour.green << ", " << colour.red << ')';
    }
};

Bgr gray(int level)
{
    return {level, level, level};
}

std::vector<Bgr> convert(std::uint32_t format, const std::vector<std::uint8_t>& source, std::uint32_t width,
                         std::uint32_t height)
{
    std::vector<std::uint8_t> bgra(std::size_t{width} * height * 4);
    EXPECT_EQ(Orvo::ConvImage(0, format, 1, bgra.data(), source.data(), width, height), 0U);
    std::vector<Bgr> pixels;
    for (std::size_t i = 0; i < bgra.size(); i += 4) {
        pixels.push_back({bgra[i], bgra[i + 1], bgra[i + 2]});
        EXPECT_EQ(bgra[i + 3], 255);
    }
    return pixels;
}

TEST(ConvImageGolden, Mono)
{
    EXPECT_THAT(convert(0x01080001, {0, 128, 255}, 3, 1), ElementsAre(gray(0), gray(128), gray(255)));
    // Mono10: the upper six bits are ignored.
    EXPECT_THAT(convert(0x01100003, {0xFF, 0xFD, 0x03, 0x02}, 1, 2), ElementsAre(gray(0x7F), gray(0x80)));
    // Mono16
    EXPECT_THAT(convert(0x01100007, {0xFF, 0x80}, 1, 1), ElementsAre(gray(0x80)));
}

TEST(ConvImageGolden, MonoRunsOfBits)
{
    // Mono10p: 0x3FF, 0x201, 0x004, 0x003
    EXPECT_THAT(convert(0x010A0046, {0xFF, 0x07, 0x48, 0xC0, 0x00}, 4, 1),
                ElementsAre(gray(255), gray(128), gray(1), gray(0)));
    // Mono12p: 0xABC, 0x123, 0x456; the second row starts within a byte.
    EXPECT_THAT(convert(0x010C0047, {0xBC, 0x3A, 0x12, 0x56, 0x04}, 1, 3),
                ElementsAre(gray(0xAB), gray(0x12), gray(0x45)));
    // Mono14p: 0x2AAA, 0x1FFF
    EXPECT_THAT(convert(0x010E0104, {0xAA, 0xEA, 0xFF, 0x07}, 2, 1), ElementsAre(gray(0xAA), gray(0x7F)));
}

TEST(ConvImageGolden, MonoPairsArePaddedPerRow)
{
    // Mono12Packed: 0xABC, 0x123 and 0x456, a pair padded with zero; then the same with the rows swapped.
    const std::vector<std::uint8_t> twelve{0xAB, 0x3C, 0x12, 0x45, 0x06, 0x00, 0x45, 0x36, 0x12, 0xAB, 0x0C, 0x00};
    EXPECT_THAT(convert(0x010C0006, twelve, 3, 2),
                ElementsAre(gray(0xAB), gray(0x12), gray(0x45), gray(0x45), gray(0x12), gray(0xAB)));
    // Mono10Packed: 0x3FC, 0x203
    EXPECT_THAT(convert(0x010C0004, {0xFF, 0x30, 0x80}, 2, 1), ElementsAre(gray(0xFF), gray(0x80)));
}

// All pixels are 100, except one of 116: each filter changes a pixel by its weight in sixteenths.
constexpr int kLevel = 100;
constexpr std::uint32_t kSide = 9;

std::vector<std::uint8_t> levelWithPeak(std::size_t x, std::size_t y, std::uint8_t peak = kLevel + 16)
{
    std::vector<std::uint8_t> mosaic(std::size_t{kSide} * kSide, std::uint8_t{kLevel});
    mosaic[y * kSide + x] = peak;
    return mosaic;
}

// The pixels that differ from the common level, by column and row.
std::map<std::pair<int, int>, Bgr> changes(const std::vector<Bgr>& pixels)
{
    std::map<std::pair<int, int>, Bgr> result;
    for (int i = 0; i < static_cast<int>(pixels.size()); ++i) {
        const Bgr& pixel = pixels[static_cast<std::size_t>(i)];
        if (!(pixel == gray(kLevel))) {
            const int width = static_cast<int>(kSide);
            result[{i % width, i / width}] = {pixel.blue - kLevel, pixel.green - kLevel, pixel.red - kLevel};
        }
    }
    return result;
}

std::map<std::pair<int, int>, Bgr> aroundRed(int x, int y)
{
    return {
        {{x, y}, {12, 8, 16}},       {{x - 1, y}, {0, 0, 8}},     {{x + 1, y}, {0, 0, 8}},
        {{x, y - 1}, {0, 0, 8}},     {{x, y + 1}, {0, 0, 8}},     {{x - 1, y - 1}, {0, 0, 4}},
        {{x + 1, y - 1}, {0, 0, 4}}, {{x - 1, y + 1}, {0, 0, 4}}, {{x + 1, y + 1}, {0, 0, 4}},
        {{x - 2, y}, {-3, -2, 0}},   {{x + 2, y}, {-3, -2, 0}},   {{x, y - 2}, {-3, -2, 0}},
        {{x, y + 2}, {-3, -2, 0}},
    };
}

std::map<std::pair<int, int>, Bgr> aroundGreenOfRedRow(int x, int y)
{
    return {
        {{x, y}, {10, 16, 10}},        {{x - 1, y}, {0, 4, 0}},       {{x + 1, y}, {0, 4, 0}},
        {{x, y - 1}, {0, 4, 0}},       {{x, y + 1}, {0, 4, 0}},       {{x - 1, y - 1}, {-2, 0, -2}},
        {{x + 1, y - 1}, {-2, 0, -2}}, {{x - 1, y + 1}, {-2, 0, -2}}, {{x + 1, y + 1}, {-2, 0, -2}},
        {{x - 2, y}, {1, 0, -2}},      {{x + 2, y}, {1, 0, -2}},      {{x, y - 2}, {-2, 0, 1}},
        {{x, y + 2}, {-2, 0, 1}},
    };
}

std::map<std::pair<int, int>, Bgr> redAndBlueSwapped(std::map<std::pair<int, int>, Bgr> pixels)
{
    for (auto& [place, pixel] : pixels)
        std::swap(pixel.blue, pixel.red);
    return pixels;
}

constexpr std::uint32_t kBayerGr8 = 0x01080008;
constexpr std::uint32_t kBayerRg8 = 0x01080009;
constexpr std::uint32_t kBayerGb8 = 0x0108000A;
constexpr std::uint32_t kBayerBg8 = 0x0108000B;

TEST(ConvImageGolden, BayerWeightsOfRedAndBlue)
{
    EXPECT_EQ(changes(convert(kBayerRg8, levelWithPeak(4, 4), kSide, kSide)), aroundRed(4, 4));
    EXPECT_EQ(changes(convert(kBayerGr8, levelWithPeak(5, 4), kSide, kSide)), aroundRed(5, 4));
    EXPECT_EQ(changes(convert(kBayerGb8, levelWithPeak(4, 5), kSide, kSide)), aroundRed(4, 5));
    EXPECT_EQ(changes(convert(kBayerBg8, levelWithPeak(5, 5), kSide, kSide)), aroundRed(5, 5));

    EXPECT_EQ(changes(convert(kBayerBg8, levelWithPeak(4, 4), kSide, kSide)), redAndBlueSwapped(aroundRed(4, 4)));
    EXPECT_EQ(changes(convert(kBayerGb8, levelWithPeak(5, 4), kSide, kSide)), redAndBlueSwapped(aroundRed(5, 4)));
    EXPECT_EQ(changes(convert(kBayerGr8, levelWithPeak(4, 5), kSide, kSide)), redAndBlueSwapped(aroundRed(4, 5)));
    EXPECT_EQ(changes(convert(kBayerRg8, levelWithPeak(5, 5), kSide, kSide)), redAndBlueSwapped(aroundRed(5, 5)));
}

TEST(ConvImageGolden, BayerWeightsOfGreen)
{
    EXPECT_EQ(changes(convert(kBayerRg8, levelWithPeak(5, 4), kSide, kSide)), aroundGreenOfRedRow(5, 4));
    EXPECT_EQ(changes(convert(kBayerGr8, levelWithPeak(4, 4), kSide, kSide)), aroundGreenOfRedRow(4, 4));
    EXPECT_EQ(changes(convert(kBayerGb8, levelWithPeak(4, 4), kSide, kSide)),
              redAndBlueSwapped(aroundGreenOfRedRow(4, 4)));
    EXPECT_EQ(changes(convert(kBayerBg8, levelWithPeak(5, 4), kSide, kSide)),
              redAndBlueSwapped(aroundGreenOfRedRow(5, 4)));
}

TEST(ConvImageGolden, BayerIsMirroredWithoutItsEdge)
{
    // Mirrored, the blue pixel at 1, 1 is beside the corner on every side.
    const auto pixels = convert(kBayerRg8, levelWithPeak(1, 1), kSide, kSide);
    EXPECT_EQ(pixels[0], (Bgr{kLevel + 16, kLevel, kLevel}));
    EXPECT_EQ(pixels[1], (Bgr{kLevel + 16, kLevel, kLevel}));
    EXPECT_EQ(pixels[kSide], (Bgr{kLevel + 16, kLevel, kLevel}));
    EXPECT_EQ(pixels[kSide + 1], (Bgr{kLevel + 16, kLevel + 8 - 2 * 2, kLevel + 12 - 2 * 3}));
    // The red pixel in the corner is not duplicated.
    const auto corner = convert(kBayerRg8, levelWithPeak(0, 0), kSide, kSide);
    EXPECT_EQ(corner[0], (Bgr{kLevel + 12, kLevel + 8, kLevel + 16}));
    EXPECT_EQ(corner[1], (Bgr{kLevel, kLevel, kLevel + 8}));
    EXPECT_EQ(corner[2], (Bgr{kLevel - 3, kLevel - 2, kLevel}));
    EXPECT_EQ(corner[kSide + 1], (Bgr{kLevel, kLevel, kLevel + 4}));
}

TEST(ConvImageGolden, BayerOfOnePixelRepeatsIt)
{
    for (const std::uint32_t format : {kBayerGr8, kBayerRg8, kBayerGb8, kBayerBg8}) {
        EXPECT_THAT(convert(format, {77}, 1, 1), ElementsAre(gray(77)));
    }
    // R G, mirrored: the same row above and below, and the other column on both sides. Green of the red pixel is
    // (8 * 32 + 4 * (64 + 64 + 32 + 32) - 2 * 4 * 32) / 16, its blue (12 * 32 + 4 * 4 * 64 - 3 * 4 * 32) / 16.
    EXPECT_THAT(convert(kBayerRg8, {32, 64}, 2, 1), ElementsAre(Bgr{64, 48, 32}, Bgr{80, 64, 48}));
}

TEST(ConvImageGolden, BayerIsRoundedAndClamped)
{
    // A peak of one level: eight sixteenths are rounded up, four down; negative ones are rounded to zero.
    const auto pixels = convert(kBayerRg8, levelWithPeak(4, 4, kLevel + 1), kSide, kSide);
    EXPECT_EQ(pixels[4 * kSide + 4], (Bgr{kLevel + 1, kLevel + 1, kLevel + 1}));
    EXPECT_EQ(pixels[4 * kSide + 3], (Bgr{kLevel, kLevel, kLevel + 1}));
    EXPECT_EQ(pixels[3 * kSide + 3], gray(kLevel));
    EXPECT_EQ(pixels[4 * kSide + 2], gray(kLevel));

    std::vector<std::uint8_t> mosaic(std::size_t{kSide} * kSide, 0);
    mosaic[4 * kSide + 4] = 255;
    EXPECT_EQ(convert(kBayerRg8, mosaic, kSide, kSide)[4 * kSide + 2], gray(0));
    for (std::uint8_t& pixel : mosaic)
        pixel = static_cast<std::uint8_t>(255 - pixel);
    EXPECT_EQ(convert(kBayerRg8, mosaic, kSide, kSide)[4 * kSide + 2], gray(255));
}

TEST(ConvImageGolden, Rgb)
{
    EXPECT_THAT(convert(0x02180014, {1, 2, 3, 4, 5, 6}, 2, 1), ElementsAre(Bgr{3, 2, 1}, Bgr{6, 5, 4}));        // RGB8
    EXPECT_THAT(convert(0x02180015, {1, 2, 3, 4, 5, 6}, 2, 1), ElementsAre(Bgr{1, 2, 3}, Bgr{4, 5, 6}));        // BGR8
    EXPECT_THAT(convert(0x02200016, {1, 2, 3, 99, 4, 5, 6, 0}, 2, 1), ElementsAre(Bgr{3, 2, 1}, Bgr{6, 5, 4})); // RGBa8
    EXPECT_THAT(convert(0x02200017, {1, 2, 3, 99, 4, 5, 6, 0}, 2, 1), ElementsAre(Bgr{1, 2, 3}, Bgr{4, 5, 6})); // BGRa8
    // RGB8_Planar
    EXPECT_THAT(convert(0x02180021, {1, 2, 3, 4, 5, 6}, 2, 1), ElementsAre(Bgr{5, 3, 1}, Bgr{6, 4, 2}));
    // RGB10p and RGB10p32: 0x3FF, 0x200, 0x004
    EXPECT_THAT(convert(0x021E005C, {0xFF, 0x03, 0x48, 0x00}, 1, 1), ElementsAre(Bgr{1, 128, 255}));
    EXPECT_THAT(convert(0x0220001D, {0xFF, 0x03, 0x48, 0xC0, 0xFF, 0x03, 0x48, 0x00}, 1, 2), Each(Bgr{1, 128, 255}));
    // BGR12p: 0x123, 0x456, 0x789, then 0xABC, 0xDEF, 0xFED
    EXPECT_THAT(convert(0x02240049, {0x23, 0x61, 0x45, 0x89, 0xC7, 0xAB, 0xEF, 0xDD, 0xFE}, 1, 2),
                ElementsAre(Bgr{0x12, 0x45, 0x78}, Bgr{0xAB, 0xDE, 0xFE}));
}

// Within one level of the standard's equations.
testing::Matcher<Bgr> near(double blue, double green, double red)
{
    const auto within = [](double exact) { return testing::AllOf(testing::Ge(exact - 1), testing::Le(exact + 1)); };
    return testing::AllOf(testing::Field(&Bgr::blue, within(blue)), testing::Field(&Bgr::green, within(green)),
                          testing::Field(&Bgr::red, within(red)));
}

TEST(ConvImageGolden, YCbCrRangesAndMatrices)
{
    // YCbCr8, full range: 0 and 255 are black and white; red is 76.2, 85.0, 255.5.
    EXPECT_THAT(convert(0x0218005B, {0, 128, 128, 255, 128, 128, 76, 85, 255}, 3, 1),
                ElementsAre(gray(0), gray(255), near(0, 0.1, 254.1)));
    // YCbCr601_8_CbYCr, limited range: 16 and 235; red is 81, 90, 240.
    EXPECT_THAT(convert(0x0218003D, {128, 16, 128, 128, 235, 128, 90, 81, 240}, 3, 1),
                ElementsAre(gray(0), gray(255), near(0, 0, 254.4)));
    // Blacker than black and whiter than white.
    EXPECT_THAT(convert(0x0218003D, {128, 0, 128, 128, 255, 128}, 2, 1), ElementsAre(gray(0), gray(255)));
    // YCbCr709_8_CbYCr: red is 63, 102, 240.
    EXPECT_THAT(convert(0x02180040, {128, 16, 128, 128, 235, 128, 102, 63, 240}, 3, 1),
                ElementsAre(gray(0), gray(255), near(0, 0.6, 255)));
    // Medium luma with chroma that affects all colours: the equations of BT.601 and BT.709.
    EXPECT_THAT(convert(0x0218005B, {128, 108, 148}, 1, 1), ElementsAre(near(92.6, 120.6, 156.0)));
    EXPECT_THAT(convert(0x0218003D, {108, 128, 148}, 1, 1), ElementsAre(near(90.1, 122.0, 162.3)));
    EXPECT_THAT(convert(0x02180040, {108, 128, 148}, 1, 1), ElementsAre(near(88.2, 124.0, 166.3)));
}

// With neutral chroma a pixel is as gray as its Y.
TEST(ConvImageGolden, YCbCrOrdersOfLuma)
{
    constexpr std::uint8_t kN = 128;
    const auto grays = [](int first) { return ElementsAre(gray(first), gray(first + 1)); };
    EXPECT_THAT(convert(0x02100032, {10, kN, 11, kN}, 2, 1), grays(10));         // YUV422_8
    EXPECT_THAT(convert(0x0210001F, {kN, 10, kN, 11}, 2, 1), grays(10));         // YUV422_8_UYVY
    EXPECT_THAT(convert(0x0210003B, {10, kN, 11, kN}, 2, 1), grays(10));         // YCbCr422_8
    EXPECT_THAT(convert(0x02100043, {kN, 10, kN, 11}, 2, 1), grays(10));         // YCbCr422_8_CbYCrY
    EXPECT_THAT(convert(0x02180020, {kN, 10, kN, kN, 11, kN}, 2, 1), grays(10)); // YUV8_UYV
    EXPECT_THAT(convert(0x0218003A, {kN, 10, kN, kN, 11, kN}, 2, 1), grays(10)); // YCbCr8_CbYCr
    const auto four = ElementsAre(gray(10), gray(11), gray(12), gray(13));
    EXPECT_THAT(convert(0x020C001E, {kN, 10, 11, kN, 12, 13}, 4, 1), four);         // YUV411_8_UYYVYY
    EXPECT_THAT(convert(0x020C003C, {kN, 10, 11, kN, 12, 13}, 4, 1), four);         // YCbCr411_8_CbYYCrYY
    EXPECT_THAT(convert(0x020C005A, {10, 11, kN, 12, 13, kN}, 4, 1), four);         // YCbCr411_8
    EXPECT_THAT(convert(0x020C0112, {10, 11, 12, 13, kN, kN}, 2, 2), four);         // YCbCr420_8_YY_CbCr_Semiplanar
    EXPECT_THAT(convert(0x02100113, {10, 11, 12, 13, kN, kN, kN, kN}, 2, 2), four); // YCbCr422_8_YY_CbCr_Semiplanar
}

// Y 128, Cb 108, Cr 148 is reddish, the reverse bluish.
TEST(ConvImageGolden, YCbCrOrdersOfChroma)
{
    constexpr std::uint8_t kY = 128;
    constexpr std::uint8_t kCb = 108;
    constexpr std::uint8_t kCr = 148;
    const auto reddish = Each(near(92.6, 120.6, 156.0));
    EXPECT_THAT(convert(0x02100032, {kY, kCb, kY, kCr}, 2, 1), reddish);         // YUV422_8
    EXPECT_THAT(convert(0x0210001F, {kCb, kY, kCr, kY}, 2, 1), reddish);         // YUV422_8_UYVY
    EXPECT_THAT(convert(0x0210003B, {kY, kCb, kY, kCr}, 2, 1), reddish);         // YCbCr422_8
    EXPECT_THAT(convert(0x02100043, {kCb, kY, kCr, kY}, 2, 1), reddish);         // YCbCr422_8_CbYCrY
    EXPECT_THAT(convert(0x02180020, {kCb, kY, kCr}, 1, 1), reddish);             // YUV8_UYV
    EXPECT_THAT(convert(0x020C001E, {kCb, kY, kY, kCr, kY, kY}, 4, 1), reddish); // YUV411_8_UYYVYY
    EXPECT_THAT(convert(0x020C005A, {kY, kY, kCb, kY, kY, kCr}, 4, 1), reddish); // YCbCr411_8
    EXPECT_THAT(convert(0x020C0112, {kY, kY, kY, kY, kCb, kCr}, 2, 2), reddish); // YCbCr420_8_YY_CbCr_Semiplanar
    EXPECT_THAT(convert(0x020C0114, {kY, kY, kY, kY, kCr, kCb}, 2, 2), reddish); // YCbCr420_8_YY_CrCb_Semiplanar
    EXPECT_THAT(convert(0x02100113, {kY, kY, kCb, kCr}, 2, 1), reddish);         // YCbCr422_8_YY_CbCr_Semiplanar
    EXPECT_THAT(convert(0x02100115, {kY, kY, kCr, kCb}, 2, 1), reddish);         // YCbCr422_8_YY_CrCb_Semiplanar
    // YCbCr422_10: the lower two bits are dropped first.
    EXPECT_THAT(convert(0x02200065, {0x03, 0x02, 0xB3, 0x01, 0x03, 0x02, 0x53, 0x02}, 2, 1), reddish);
}

TEST(ConvImageGolden, YCbCrGroupsArePaddedPerRow)
{
    constexpr std::uint8_t kN = 128;
    // YUV422_8, three pixels wide
    EXPECT_THAT(convert(0x02100032, {1, kN, 2, kN, 3, kN, 99, kN, 4, kN, 5, kN, 6, kN, 99, kN}, 3, 2),
                ElementsAre(gray(1), gray(2), gray(3), gray(4), gray(5), gray(6)));
    // YUV411_8_UYYVYY, one pixel wide
    EXPECT_THAT(convert(0x020C001E, {kN, 1, 99, kN, 99, 99, kN, 2, 99, kN, 99, 99}, 1, 2),
                ElementsAre(gray(1), gray(2)));
    // YCbCr422_10p, one pixel wide: 4 x 10 bits a row; Y 4, Cb 512, Y 1023, Cr 512, then Y 8.
    EXPECT_THAT(convert(0x02140087, {0x04, 0x00, 0xF8, 0x3F, 0x80, 0x08, 0x00, 0xF8, 0x3F, 0x80}, 1, 2),
                ElementsAre(gray(1), gray(2)));
}

} // namespace
