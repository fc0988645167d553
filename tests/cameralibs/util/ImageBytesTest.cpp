#include "cameralibs/base/PixelFormat.h"
#include "tests/cameralibs/util/PfncFormats.h"
#include "tests/cameralibs/util/ReferenceConversion.h"

#include "camera/OrvoCamUtl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

// The size of an image in bytes. Memory is allocated accordingly, so conversions must not read more.

namespace {

class ImageBytes : public testing::TestWithParam<PfncFormat> {};

TEST_P(ImageBytes, EqualTheReferenceAndConversionsReadNoMore)
{
    const PfncFormat& format = GetParam();
    for (std::uint32_t width = 1; width <= 70; ++width) {
        for (std::uint32_t height = 1; height <= 70; ++height) {
            const std::uint64_t bytes = cameralibs::imageBytes(format.value, width, height);
            ASSERT_EQ(bytes, ReferenceConversion(format.name, width, height).sourceBytes()) << width << " x " << height;
            // The blocks are exactly as large as needed, so the address sanitizer detects every access beyond them.
            const auto source = std::make_unique<std::uint8_t[]>(bytes);
            const auto bgra = std::make_unique<std::uint8_t[]>(std::size_t{4} * width * height);
            ASSERT_EQ(Orvo::ConvImage(0, format.value, 1, bgra.get(), source.get(), width, height), 0U);
        }
    }
}

TEST_P(ImageBytes, DoNotOverflowForTheLargestImages)
{
    constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
    const std::uint64_t bytes = cameralibs::imageBytes(GetParam().value, kLargest, kLargest);
    EXPECT_GE(bytes, std::uint64_t{kLargest} * kLargest);
    EXPECT_GE(cameralibs::imageBytes(GetParam().value, kLargest, 1), kLargest);
    EXPECT_GE(cameralibs::imageBytes(GetParam().value, 1, kLargest), kLargest);
}

INSTANTIATE_TEST_SUITE_P(Formats, ImageBytes, testing::ValuesIn(kPfncFormats),
                         [](const auto& format) { return std::string(format.param.name); });

TEST(ImageBytesTest, UnknownFormatsCountAsRunsOfBits)
{
    EXPECT_EQ(cameralibs::imageBytes(0x01040039, 3, 3), 5U) << "4 bits"; // Mono4p
    EXPECT_EQ(cameralibs::imageBytes(0x01080002, 5, 7), 35U);            // Mono8s
    EXPECT_EQ(cameralibs::imageBytes(0xFFFFFFFF, 1, 1), 32U);
    EXPECT_EQ(cameralibs::imageBytes(0, 100, 100), 0U) << "nothing is known of it";
}

TEST(ImageBytesTest, FormatsAreFoundByValueAndByName)
{
    for (const PfncFormat& format : kPfncFormats) {
        const cameralibs::PixelFormat* const found = cameralibs::findPixelFormat(format.value);
        ASSERT_NE(found, nullptr) << format.name;
        EXPECT_EQ(found->name, format.name);
        EXPECT_EQ(cameralibs::findPixelFormat(format.name), found);
    }
    EXPECT_EQ(cameralibs::findPixelFormat("Mono8s"), nullptr);
    EXPECT_EQ(cameralibs::findPixelFormat(""), nullptr);
}

} // namespace
