// The picture that the simulated cameras show. At a height of 1200 pixels its measures are round numbers of pixels.

#include "cameralibs/devices/simulated/images/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <vector>

using namespace cameralibs::simulated;

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1200;
constexpr double kPi = 3.14159265358979323846;

class SceneTest : public ::testing::Test {
protected:
    SceneTest()
    {
        const Scene scene(kWidth, kHeight);
        for (int y = 0; y < kHeight; ++y)
            scene.render(0, y, kWidth, &m_pixels[index(0, y)]);
    }

    [[nodiscard]] static std::size_t index(int x, int y)
    {
        return static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x);
    }
    [[nodiscard]] const Sample& at(int x, int y) const { return m_pixels[index(x, y)]; }
    /// The green channel in steps of 8 bits.
    [[nodiscard]] int level(int x, int y) const { return at(x, y).green / 16; }

    /// The lengths of the dark and bright bars in a strip that starts at a pixel, without those that its ends cut.
    [[nodiscard]] std::vector<int> bars(int x, int y, int length, bool across) const
    {
        std::vector<int> lengths;
        const auto bright = [&](int i) { return across ? level(x + i, y) > 128 : level(x, y + i) > 128; };
        int begin = 0;
        for (int i = 1; i < length; ++i) {
            if (bright(i) == bright(i - 1))
                continue;
            if (begin > 0)
                lengths.push_back(i - begin);
            begin = i;
        }
        return lengths;
    }

    std::vector<Sample> m_pixels = std::vector<Sample>(std::size_t{kWidth} * kHeight);
};

} // namespace

TEST_F(SceneTest, PatchesAreSeparatedByDarkGaps)
{
    for (int column = 0; column < 6; ++column) {
        for (int row = 0; row < 4; ++row) {
            SCOPED_TRACE(std::to_string(column) + ", " + std::to_string(row));
            const int left = 80 + 110 * column;
            const int top = 180 + 110 * row;
            for (const int edge : {0, 3, 106, 109}) {
                EXPECT_EQ(level(left + edge, top + 50), 12);
                EXPECT_EQ(level(left + 50, top + edge), 12);
            }
            for (const int inside : {4, 105}) {
                EXPECT_EQ(level(left + inside, top + 50), level(left + 55, top + 55));
                EXPECT_EQ(level(left + 50, top + inside), level(left + 55, top + 55));
            }
            EXPECT_GT(level(left + 55, top + 55), 12);
        }
    }
}

TEST_F(SceneTest, ChartHasEighteenColoursAndSixGreysThatGetDarker)
{
    const auto patch = [this](int column, int row) { return at(80 + 110 * column + 55, 180 + 110 * row + 55); };
    std::set<std::tuple<int, int, int>> different;
    for (int column = 0; column < 6; ++column) {
        for (int row = 0; row < 3; ++row) {
            const Sample colour = patch(column, row);
            const auto [least, greatest] = std::minmax({colour.red, colour.green, colour.blue});
            EXPECT_GE(greatest - least, 32 * 16) << column << ", " << row;
            different.emplace(colour.red / 16, colour.green / 16, colour.blue / 16);
        }
        const Sample grey = patch(column, 3);
        EXPECT_EQ(grey.red, grey.green) << column;
        EXPECT_EQ(grey.blue, grey.green) << column;
        if (column > 0) {
            EXPECT_LE(grey.green, patch(column - 1, 3).green - 32 * 16) << column;
        }
    }
    EXPECT_EQ(different.size(), 18U);
}

// Users compare colours of different formats, versions and machines.
TEST_F(SceneTest, ChartHasKnownColours)
{
    constexpr std::uint32_t kRgb[4][6] = {
        {0xd62828, 0xf0821e, 0xecd02e, 0x3ca046, 0x285abe, 0x6e3296},
        {0xbe3c78, 0x1ea0aa, 0x96be32, 0x784c2e, 0xe8b896, 0x5a78a0},
        {0xfac8c8, 0xfce6be, 0xceeccc, 0xc4e2f0, 0xd6ccf0, 0x966e5a},
        {0xf3f3f3, 0xc8c8c8, 0xa0a0a0, 0x797979, 0x545454, 0x323232},
    };
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 6; ++column) {
            const Sample& patch = at(80 + 110 * column + 55, 180 + 110 * row + 55);
            const auto rgb = static_cast<std::uint32_t>(patch.red / 16 << 16 | patch.green / 16 << 8 | patch.blue / 16);
            EXPECT_EQ(rgb, kRgb[row][column]) << column << ", " << row;
        }
    }
}

TEST_F(SceneTest, TwelveGreyStepsReachFromBlackToWhite)
{
    for (int step = 0; step < 12; ++step) {
        for (const int x : {80 + 55 * step, 80 + 55 * step + 54})
            EXPECT_EQ(level(x, 700), step * 255 / 11);
    }
}

TEST_F(SceneTest, RampRisesEvenlyToFullLight)
{
    for (int i = 0; i < 660; ++i)
        EXPECT_NEAR(at(80 + i, 780).green, kFullLight * static_cast<unsigned>(i) / 659.0, 1);
}

TEST_F(SceneTest, LinesHaveTheirWidths)
{
    const int widths[] = {1, 2, 3, 4, 6, 8};
    for (int block = 0; block < 6; ++block) {
        const int left = 80 + 110 * block;
        for (const bool across : {true, false}) {
            // Vertical lines above, horizontal ones below; behind the gap at the left and between the rows.
            const std::vector<int> lengths = across ? bars(left + 9, 900, 101, true) : bars(left + 50, 992, 118, false);
            ASSERT_GT(lengths.size(), 8U);
            EXPECT_EQ(*std::min_element(lengths.begin(), lengths.end()), widths[block]);
            EXPECT_EQ(*std::max_element(lengths.begin(), lengths.end()), widths[block]);
        }
    }
}

TEST_F(SceneTest, GapsSeparateTheBlocksOfLines)
{
    const auto isGap = [this](int x, int y) { return level(x, y) == 40; };
    for (int x = 80; x < 740; ++x) {
        EXPECT_TRUE(isGap(x, 970)) << x;
        EXPECT_TRUE(isGap(x, 990)) << x;
        EXPECT_EQ(isGap(x, 969), (x - 80) % 110 < 9) << x;
        EXPECT_EQ(isGap(x, 991), (x - 80) % 110 < 9) << x;
    }
}

TEST_F(SceneTest, RingsBecomeFinerUpToThePixelLimit)
{
    // Half a period per pixel at the rim.
    for (int y = -279; y < 280; ++y) {
        for (int x = -200; x <= 200; ++x) {
            const int squared = x * x + y * y;
            if (squared >= 278 * 278)
                continue;
            ASSERT_NEAR(at(1560 + x, 340 + y).green, 2040 + 1800 * std::cos(2 * kPi * squared / 1120), 12)
                << x << ", " << y;
        }
    }
}

TEST_F(SceneTest, StarHas36DarkAndBrightSpokes)
{
    constexpr int kSteps = 100'000;
    const auto bright = [this](int step) {
        const double angle = 2 * kPi * step / kSteps;
        return level(static_cast<int>(std::lround(1559.5 + 200 * std::cos(angle))),
                     static_cast<int>(std::lround(899.5 + 200 * std::sin(angle)))) > 128;
    };
    int spokes = 0;
    // Neighbouring pixels of a slanted edge alternate, so a spoke counts only after many equal steps.
    int equal = 0;
    bool last = bright(0);
    bool counted = last;
    for (int step = 1; step < kSteps; ++step) {
        equal = bright(step) == last ? equal + 1 : 0;
        last = bright(step);
        if (equal == 400 && last != counted) {
            counted = last;
            ++spokes;
        }
    }
    EXPECT_NEAR(spokes, 72, 1);
}

TEST_F(SceneTest, RoundElementsShowTheWallInTheirCorners)
{
    for (const int top : {60, 660}) {
        const int size = top == 60 ? 560 : 480;
        const int left = top == 60 ? 1280 : 1320;
        for (const int row : {1, size / 4, size / 2, size - 2}) {
            const double half = size / 2.0;
            const int inset = static_cast<int>(half - std::sqrt(half * half - (row - half) * (row - half)));
            SCOPED_TRACE(std::to_string(top) + ", " + std::to_string(row));
            // The wall is blue, the elements are not.
            const auto isWall = [&](int x) { return at(x, top + row).blue - at(x, top + row).red >= 16 * 16; };
            EXPECT_TRUE(isWall(left + inset - 1));
            EXPECT_FALSE(isWall(left + inset));
            EXPECT_FALSE(isWall(left + size - inset - 1));
            EXPECT_TRUE(isWall(left + size - inset));
        }
    }
}

TEST_F(SceneTest, WallHasAGridAndDarkensDownwards)
{
    for (int x = 0; x < kWidth; ++x) {
        EXPECT_EQ(level(x, 30) - level(1, 30), x % 60 == 0 ? 18 : 0) << x;
        EXPECT_EQ(level(x, 0), 84 + 18) << x;
    }
    for (int y = 0; y < kHeight; ++y)
        EXPECT_NEAR(level(1, y) - (y % 60 == 0 ? 18 : 0), 84 - 52 * y / 1200.0, 1) << y;
}

TEST_F(SceneTest, PartOfARowEqualsThatOfTheWholeRow)
{
    const Scene scene(kWidth, kHeight);
    for (const int y : {0, 30, 300, 700, 900, 1050}) {
        for (const int x : {1, 59, 60, 61, 300, 1400, 1800}) {
            std::vector<Sample> part(121);
            scene.render(x, y, 120, part.data());
            for (int i = 0; i < 120; ++i)
                ASSERT_EQ(part[static_cast<std::size_t>(i)].green, at(x + i, y).green) << x + i << ", " << y;
            EXPECT_EQ(part[120].green, 0) << "behind the end";
        }
    }
}

TEST_F(SceneTest, BallStaysInTheImageAndCrossesItsMiddle)
{
    const Scene scene(kWidth, kHeight);
    for (const int minute : {0, 1, 60}) {
        SCOPED_TRACE(minute);
        double left = kWidth;
        double right = 0;
        double top = kHeight;
        double bottom = 0;
        for (int tenth = 0; tenth < 600; ++tenth) {
            const Ball ball = scene.ballAt(60.0 * minute + tenth / 10.0);
            EXPECT_EQ(ball.radius, 90);
            left = std::min(left, ball.x - 90);
            right = std::max(right, ball.x + 90);
            top = std::min(top, ball.y - 90);
            bottom = std::max(bottom, ball.y + 90);
        }
        EXPECT_GE(left, 0);
        EXPECT_LT(left, kWidth / 8);
        EXPECT_LE(right, kWidth);
        EXPECT_GT(right, kWidth - kWidth / 8);
        EXPECT_GE(top, 0);
        EXPECT_LT(top, kHeight / 8);
        EXPECT_LE(bottom, kHeight);
        EXPECT_GT(bottom, kHeight - kHeight / 8);
    }
}

TEST_F(SceneTest, BallIsADiscLitFromTheUpperLeft)
{
    const Ball ball{150, 140, 90};
    std::vector<Sample> row(300);
    const auto painted = [&](int y) {
        std::fill(row.begin(), row.end(), Sample{0, 0, 9999});
        ball.paint(0, y, 300, row.data());
        std::vector<bool> columns;
        for (const Sample& pixel : row)
            columns.push_back(pixel.blue != 9999);
        return columns;
    };
    for (int y = 0; y < 300; ++y) {
        const std::vector<bool> columns = painted(y);
        for (int x = 0; x < 300; ++x) {
            ASSERT_EQ(columns[static_cast<std::size_t>(x)], (x - 150) * (x - 150) + (y - 140) * (y - 140) < 90 * 90)
                << x << ", " << y;
        }
    }
    (void)painted(100);
    const Sample lit = row[110];
    (void)painted(180);
    const Sample shaded = row[190];
    EXPECT_GT(lit.red, 2 * shaded.red);
}
