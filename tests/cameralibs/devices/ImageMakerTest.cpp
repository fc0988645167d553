// Images of simulated cameras whose rows end within a byte or a group of pixels.

#include "cameralibs/devices/simulated/images/ImageMaker.h"

#include "cameralibs/base/PixelFormat.h"
#include "tests/cameralibs/util/ReferenceConversion.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace cameralibs;
using namespace cameralibs::simulated;

namespace {

struct Size {
    std::uint32_t width;
    std::uint32_t height;
};

constexpr Size kSizes[] = {{1, 1}, {1, 9}, {2, 3}, {3, 5}, {5, 4}, {7, 7}, {321, 301}, {322, 301}, {323, 301}};
constexpr TestPattern kPatterns[] = {TestPattern::Off, TestPattern::GreyHorizontalRamp, TestPattern::ColorBar,
                                     TestPattern::HorizontalLineMoving};

/// Makes an image and decodes it to the upper 8 bits of its colours.
std::vector<ReferenceConversion::Colour> make(const std::string& format, Size size, TestPattern pattern, bool colour)
{
    ImageSettings settings;
    settings.format = findPixelFormat(format)->value;
    settings.packing = findPacking(settings.format);
    settings.colour = colour;
    settings.pattern = pattern;
    settings.width = settings.sensorWidth = size.width;
    settings.height = settings.sensorHeight = size.height;
    ImageMaker maker;
    const std::size_t bytes = ImageMaker::sizeOf(settings);
    const auto image = std::make_unique<std::uint8_t[]>(bytes);
    // The buffer contains remains of an earlier image, which must not show.
    std::fill_n(image.get(), bytes, std::uint8_t{0xFF});
    maker.make(settings, 3, 1.5, image.get());
    const ReferenceConversion reference(format, size.width, size.height);
    EXPECT_EQ(bytes, reference.sourceBytes());
    const std::size_t used = size.width * size.height * bitsPerPixel(settings.format) % 8;
    if (settings.packing->format.back() == 'p' && used != 0) {
        EXPECT_EQ(image[bytes - 1] >> used, 0) << "bits behind the last pixel";
    }
    return reference.convert(image.get());
}

void expectEqual(const std::vector<ReferenceConversion::Colour>& one,
                 const std::vector<ReferenceConversion::Colour>& other, double tolerance)
{
    ASSERT_EQ(one.size(), other.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
        ASSERT_NEAR(one[i].blue, other[i].blue, tolerance) << "pixel " << i;
        ASSERT_NEAR(one[i].green, other[i].green, tolerance) << "pixel " << i;
        ASSERT_NEAR(one[i].red, other[i].red, tolerance) << "pixel " << i;
    }
}

} // namespace

TEST(ImageMakerTest, RunsOfBitsEqualWords)
{
    for (const std::string format : {"Mono10", "Mono12", "BayerRG12"}) {
        for (const Size size : kSizes) {
            for (const TestPattern pattern : kPatterns) {
                SCOPED_TRACE(format + "p " + std::to_string(size.width) + " x " + std::to_string(size.height) +
                             ", pattern " + std::to_string(static_cast<int>(pattern)));
                expectEqual(make(format + "p", size, pattern, true), make(format, size, pattern, true), 0);
            }
        }
    }
}

TEST(ImageMakerTest, LastPixelOfAnOddRowHasItsOwnChroma)
{
    for (const Size size : kSizes) {
        for (const TestPattern pattern : kPatterns) {
            SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + ", pattern " +
                         std::to_string(static_cast<int>(pattern)));
            // In a grey image the pixels of a group share no chroma.
            const TestPattern grey = pattern == TestPattern::ColorBar ? TestPattern::GreyVerticalRamp : pattern;
            expectEqual(make("YUV422_8", size, grey, false), make("RGB8", size, grey, false), 2);
        }
    }
}

TEST(ImageMakerTest, BallIsMirroredClippedAndBinnedLikeTheScene)
{
    constexpr double kBallAtTheRight = 1.5;
    constexpr double kBallElsewhere = 3.5;
    constexpr std::uint32_t kBelowTheNumber = 60;
    ImageSettings plain;
    plain.format = findPixelFormat("Mono8")->value;
    plain.packing = findPacking(plain.format);
    plain.width = plain.sensorWidth = 320;
    plain.height = plain.sensorHeight = 240;
    const auto imageOf = [](const ImageSettings& settings, double seconds) {
        std::vector<std::uint8_t> pixels(ImageMaker::sizeOf(settings));
        ImageMaker().make(settings, 3, seconds, pixels.data());
        return pixels;
    };
    const std::vector<std::uint8_t> wanted = imageOf(plain, kBallAtTheRight);
    const auto at = [&](std::uint32_t x, std::uint32_t y) { return int{wanted[std::size_t{y} * plain.width + x]}; };

    // `level(x, y)` is the level of a pixel in the unmodified image.
    const auto compare = [&](const ImageSettings& settings, std::uint32_t rows, const auto& level) {
        const std::vector<std::uint8_t> image = imageOf(settings, kBallAtTheRight);
        const std::vector<std::uint8_t> other = imageOf(settings, kBallElsewhere);
        int ofTheBall = 0;
        for (std::uint32_t y = kBelowTheNumber; y < rows; ++y) {
            for (std::uint32_t x = 0; x < settings.width; ++x) {
                const std::size_t place = std::size_t{y} * settings.width + x;
                ASSERT_NEAR(image[place], level(x, y), 1) << x << ", " << y;
                ofTheBall += image[place] != other[place] ? 1 : 0;
            }
        }
        EXPECT_GT(ofTheBall, 100);
    };

    ImageSettings mirrored = plain;
    mirrored.reverseX = mirrored.reverseY = true;
    compare(mirrored, 240 - kBelowTheNumber, [&](std::uint32_t x, std::uint32_t y) { return at(319 - x, 239 - y); });

    ImageSettings cut = plain;
    cut.offsetX = 40;
    cut.offsetY = 20;
    cut.width = 272;
    cut.height = 200;
    compare(cut, 200, [&](std::uint32_t x, std::uint32_t y) { return at(x + 40, y + 20); });

    ImageSettings joined = plain;
    joined.binningX = joined.binningY = 2;
    joined.width = 160;
    joined.height = 120;
    compare(joined, 120, [&](std::uint32_t x, std::uint32_t y) {
        return (at(2 * x, 2 * y) + at(2 * x + 1, 2 * y) + at(2 * x, 2 * y + 1) + at(2 * x + 1, 2 * y + 1)) / 4;
    });
}

TEST(ImageMakerTest, ImagesOfAReplacedFormatEndWithZeros)
{
    ImageSettings settings;
    settings.format = findPixelFormat("YCbCr411_8")->value;
    settings.packing = findPacking(findPixelFormat("Mono12p")->value);
    settings.width = settings.sensorWidth = 5;
    settings.height = settings.sensorHeight = 3;
    for (const TestPattern pattern : kPatterns) {
        settings.pattern = pattern;
        ASSERT_EQ(ImageMaker::sizeOf(settings), 36U);
        std::vector<std::uint8_t> image(36, 0xFF);
        ImageMaker().make(settings, 3, 1.5, image.data());
        // 15 pixels of 12 bits.
        EXPECT_EQ(std::vector<std::uint8_t>(image.begin() + 23, image.end()), std::vector<std::uint8_t>(13, 0));
    }
}
