// Images of simulated cameras whose rows are no whole number of bytes or groups of pixels.

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

/// The colours of an image, without what the format makes of them: the upper 8 bits.
std::vector<ReferenceConversion::Colour> make(const std::string& format, Size size, TestPattern pattern, bool color)
{
    ImageSettings settings;
    settings.format = findPixelFormat(format)->value;
    settings.packing = findPacking(settings.format);
    settings.color = color;
    settings.pattern = pattern;
    settings.width = settings.sensorWidth = size.width;
    settings.height = settings.sensorHeight = size.height;
    ImageMaker maker;
    const std::size_t bytes = ImageMaker::sizeOf(settings);
    const auto image = std::make_unique<std::uint8_t[]>(bytes);
    // What an earlier image left behind is not part of this one.
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

TEST(ImageMakerTest, RunsOfBitsShowWhatWordsShow)
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

TEST(ImageMakerTest, TheLastPixelOfAnOddRowHasItsOwnChroma)
{
    for (const Size size : kSizes) {
        for (const TestPattern pattern : kPatterns) {
            SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + ", pattern " +
                         std::to_string(static_cast<int>(pattern)));
            // A grey image has nothing that the pixels of a group share.
            const TestPattern grey = pattern == TestPattern::ColorBar ? TestPattern::GreyVerticalRamp : pattern;
            expectEqual(make("YUV422_8", size, grey, false), make("RGB8", size, grey, false), 2);
        }
    }
}

TEST(ImageMakerTest, AFormatThatIsShownInAnotherOneEndsWithZeros)
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
