// The digits in the corner of simulated images, drawn here once more.

#include "cameralibs/devices/simulated/images/FrameNumber.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace cameralibs::simulated;

namespace {

/// 0 to 9, from left to right.
const std::vector<std::string> kDigits = {
    "########         ##   ########   ########   ##    ##   ########   ########   ########   ########   ########",
    "########         ##   ########   ########   ##    ##   ########   ########   ########   ########   ########",
    "##    ##         ##         ##         ##   ##    ##   ##         ##               ##   ##    ##   ##    ##",
    "##    ##         ##         ##         ##   ##    ##   ##         ##               ##   ##    ##   ##    ##",
    "##    ##         ##         ##         ##   ##    ##   ##         ##               ##   ##    ##   ##    ##",
    "##    ##         ##         ##         ##   ##    ##   ##         ##               ##   ##    ##   ##    ##",
    "##    ##         ##   ########   ########   ########   ########   ########         ##   ########   ########",
    "##    ##         ##   ########   ########   ########   ########   ########         ##   ########   ########",
    "##    ##         ##   ##               ##         ##         ##   ##    ##         ##   ##    ##         ##",
    "##    ##         ##   ##               ##         ##         ##   ##    ##         ##   ##    ##         ##",
    "##    ##         ##   ##               ##         ##         ##   ##    ##         ##   ##    ##         ##",
    "##    ##         ##   ##               ##         ##         ##   ##    ##         ##   ##    ##         ##",
    "########         ##   ########   ########         ##   ########   ########         ##   ########   ########",
    "########         ##   ########   ########         ##   ########   ########         ##   ########   ########",
};
constexpr std::size_t kWidth = 8;
constexpr std::size_t kHeight = 14;
constexpr std::size_t kPitch = 11; ///< from one digit to the next
constexpr std::size_t kMargin = 3; ///< around the digits

/// Whether a point of the box, in units of the layout, is bright.
bool isBright(const std::string& digits, std::size_t x, std::size_t y)
{
    if (x < kMargin || y < kMargin || y - kMargin >= kHeight)
        return false;
    const std::size_t digit = (x - kMargin) / kPitch;
    const std::size_t column = (x - kMargin) % kPitch;
    if (digit >= digits.size() || column >= kWidth)
        return false;
    return kDigits[y - kMargin][static_cast<std::size_t>(digits[digit] - '0') * kPitch + column] == '#';
}

/// Expects these digits in an image in which a unit is so many pixels.
void expectDigits(std::uint64_t number, const std::string& digits, std::uint32_t size, std::size_t unit)
{
    const FrameNumber drawn(number, size, size);
    const Rect box = drawn.box();
    ASSERT_EQ(static_cast<std::size_t>(box.left), 4 * unit);
    ASSERT_EQ(static_cast<std::size_t>(box.top), 4 * unit);
    ASSERT_EQ(static_cast<std::size_t>(box.bottom - box.top), (kHeight + 2 * kMargin) * unit);
    // As wide as the digits and the margins are, in whole groups of four pixels.
    const std::size_t width = ((digits.size() - 1) * kPitch + kWidth + 2 * kMargin) * unit / 4 * 4;
    ASSERT_EQ(static_cast<std::size_t>(box.right - box.left), width);
    std::vector<Sample> row(width);
    for (int y = box.top; y < box.bottom; ++y) {
        drawn.paint(y, row.data());
        for (std::size_t x = 0; x < width; ++x) {
            const bool bright = isBright(digits, x / unit, static_cast<std::size_t>(y - box.top) / unit);
            ASSERT_EQ(row[x].red > 0x8000, bright) << digits << " at " << x << ", " << y;
            ASSERT_EQ(row[x].red, row[x].green);
            ASSERT_EQ(row[x].red, row[x].blue);
        }
    }
}

} // namespace

TEST(FrameNumberTest, EveryDigitIsDrawn)
{
    expectDigits(9876543210, "9876543210", 300, 1);
}

TEST(FrameNumberTest, ThereAreSixDigitsUnlessTheNumberHasMore)
{
    expectDigits(0, "000000", 300, 1);
    expectDigits(10, "000010", 300, 1);
    expectDigits(999999, "999999", 300, 1);
    expectDigits(1000000, "1000000", 300, 1);
}

TEST(FrameNumberTest, LargeImagesHaveLargeDigits)
{
    expectDigits(405, "000405", 599, 1);
    expectDigits(405, "000405", 600, 2);
    expectDigits(405, "000405", 900, 3);
}

TEST(FrameNumberTest, SmallImagesShowWhatFits)
{
    const Rect cut = FrameNumber(1, 40, 10).box();
    EXPECT_EQ(cut.left, 4);
    EXPECT_EQ(cut.top, 4);
    EXPECT_EQ(cut.right, 40);
    EXPECT_EQ(cut.bottom, 10);
    const Rect none = FrameNumber(1, 3, 2).box();
    EXPECT_EQ(none.left, none.right);
    EXPECT_EQ(none.top, none.bottom);
}
