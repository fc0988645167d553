#include "tests/cameralibs/util/PfncFormats.h"
#include "tests/cameralibs/util/ReferenceConversion.h"

#include "camera/OrvoCamUtl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <utility>

// Compares every format at many sizes with the reference. The buffers are exactly as large as needed, so the address
// sanitizer detects every access beyond them.

namespace {

struct Size {
    std::uint32_t width;
    std::uint32_t height;
};

// The last ones are wider than the pieces that the library converts at a time.
constexpr Size kSizes[] = {
    {1, 1}, {1, 2}, {2, 1},  {2, 2},  {3, 1},  {1, 3},  {3, 3},   {4, 1},    {5, 7},    {7, 5},
    {8, 3}, {9, 2}, {16, 2}, {17, 3}, {33, 9}, {35, 4}, {64, 48}, {2047, 2}, {2049, 3}, {4099, 5},
};

enum class Content { Random, Zero, Full, Extremes };

class ConvImageReference : public testing::TestWithParam<PfncFormat> {
protected:
    static std::unique_ptr<std::uint8_t[]> sourceImage(std::size_t bytes, Content content)
    {
        auto image = std::make_unique<std::uint8_t[]>(bytes);
        std::mt19937 random(static_cast<unsigned>(bytes));
        std::generate_n(image.get(), bytes, [&]() -> std::uint8_t {
            switch (content) {
            case Content::Random:
                return static_cast<std::uint8_t>(random());
            case Content::Extremes: // the largest sums, and results outside 0 to 255
                return random() % 2 == 0 ? 0 : 255;
            default:
                return content == Content::Zero ? 0 : 255;
            }
        });
        return image;
    }

    static void check(const PfncFormat& format, Size size, Content content)
    {
        SCOPED_TRACE(testing::Message() << format.name << ' ' << size.width << 'x' << size.height << ", content "
                                        << static_cast<int>(content));
        const ReferenceConversion reference(format.name, size.width, size.height);
        const auto source = sourceImage(reference.sourceBytes(), content);
        const std::size_t pixels = std::size_t{size.width} * size.height;
        const auto bgra = std::make_unique<std::uint8_t[]>(pixels * 4);
        ASSERT_EQ(Orvo::ConvImage(0, format.value, 1, bgra.get(), source.get(), size.width, size.height), 0U);

        const auto expected = reference.convert(source.get());
        for (std::size_t i = 0; i < pixels; ++i) {
            const std::uint8_t* const pixel = bgra.get() + 4 * i;
            const double deviation =
                std::max({std::abs(pixel[0] - expected[i].blue), std::abs(pixel[1] - expected[i].green),
                          std::abs(pixel[2] - expected[i].red)});
            ASSERT_LE(deviation, reference.tolerance())
                << "at " << i % size.width << ", " << i / size.width << ": " << int{pixel[0]} << ' ' << int{pixel[1]}
                << ' ' << int{pixel[2]} << " for " << expected[i].blue << ' ' << expected[i].green << ' '
                << expected[i].red;
            ASSERT_EQ(pixel[3], 255) << "at " << i;
        }
    }
};

TEST_P(ConvImageReference, EveryPixelAtEverySize)
{
    for (const Size size : kSizes) {
        check(GetParam(), size, Content::Random);
        if (HasFatalFailure())
            return;
    }
}

TEST_P(ConvImageReference, Extremes)
{
    for (const Content content : {Content::Zero, Content::Full, Content::Extremes}) {
        check(GetParam(), {33, 9}, content);
        check(GetParam(), {6, 4}, content);
    }
}

TEST_P(ConvImageReference, ValueContainsTheBitsPerPixel)
{
    EXPECT_EQ(GetParam().value >> 16 & 0xFF, ReferenceConversion(GetParam().name, 8, 8).bitsPerPixel());
}

INSTANTIATE_TEST_SUITE_P(Formats, ConvImageReference, testing::ValuesIn(kPfncFormats),
                         [](const auto& format) { return std::string(format.param.name); });

} // namespace
