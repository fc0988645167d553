// The test patterns, pixel by pixel.

#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/BuiltInTest.h"
#include "tests/cameralibs/devices/FrameNumberReader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using Level = int (*)(std::uint64_t x, std::uint64_t y, const Picture& picture);

struct Pattern {
    const char* name;
    Level level;
};

int ramp(std::uint64_t place)
{
    return static_cast<int>(place % 256);
}

const Pattern kPatterns[] = {
    {"Black", [](std::uint64_t, std::uint64_t, const Picture&) { return 0; }},
    {"White", [](std::uint64_t, std::uint64_t, const Picture&) { return 255; }},
    {"GreyHorizontalRamp", [](std::uint64_t x, std::uint64_t, const Picture&) { return ramp(x); }},
    {"GreyVerticalRamp", [](std::uint64_t, std::uint64_t y, const Picture&) { return ramp(y); }},
    {"GreyHorizontalRampMoving", [](std::uint64_t x, std::uint64_t, const Picture& p) { return ramp(x + p.number); }},
    {"GreyVerticalRampMoving", [](std::uint64_t, std::uint64_t y, const Picture& p) { return ramp(y + p.number); }},
    {"HorizontalLineMoving",
     [](std::uint64_t, std::uint64_t y, const Picture& p) { return y == p.number % p.height ? 255 : 0; }},
    {"VerticalLineMoving",
     [](std::uint64_t x, std::uint64_t, const Picture& p) { return x == p.number % p.width ? 255 : 0; }},
};

std::size_t wrongPixels(const Picture& picture, Level level)
{
    std::size_t wrong = 0;
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        for (std::uint32_t x = 0; x < picture.width; ++x)
            wrong += picture.at(x, y) != level(x, y, picture) ? 1 : 0;
    }
    return wrong;
}

class TestPatternTest : public BuiltInTest {};

TEST_F(TestPatternTest, GreyPatternsHaveTheirLevels)
{
    const SimulatedCamera& camera = switchedOn(kMono);
    StreamRecorder stream(camera.handle());
    camera.setReal("ExposureTime", 100); // has no effect on a pattern
    for (const Pattern& pattern : kPatterns) {
        camera.choose("TestPattern", pattern.name);
        (void)stream.take(2); // the first may still have the old settings
        const auto pictures = stream.take(1);
        ASSERT_EQ(pictures.size(), 1U);
        EXPECT_EQ(wrongPixels(pictures.front(), pattern.level), 0U) << pattern.name;
    }
}

TEST_F(TestPatternTest, EveryPatternInAnOddRegion)
{
    const SimulatedCamera& camera = switchedOn(kMono);
    camera.setInteger("Width", 100);
    camera.setInteger("Height", 38);
    StreamRecorder stream(camera.handle());
    for (const Pattern& pattern : kPatterns) {
        camera.choose("TestPattern", pattern.name);
        (void)stream.take(2);
        const auto pictures = stream.take(1);
        ASSERT_EQ(pictures.size(), 1U);
        EXPECT_EQ(wrongPixels(pictures.front(), pattern.level), 0U) << pattern.name;
    }
}

TEST_F(TestPatternTest, ColorBarsInEveryFormat)
{
    constexpr std::uint32_t kBars[] = {0xFFFFFFFF, 0xFFFFFF00, 0xFF00FFFF, 0xFF00FF00,
                                       0xFFFF00FF, 0xFFFF0000, 0xFF0000FF, 0xFF000000};
    const SimulatedCamera& camera = switchedOn(kColour);
    camera.choose("TestPattern", "ColorBar");
    for (const std::string& format : camera.entries("PixelFormat")) {
        SCOPED_TRACE(format);
        camera.choose("PixelFormat", format);
        const Picture picture = takePicture(camera.handle());
        const std::vector<std::uint32_t> pixels = convert(picture, 20);
        for (std::uint32_t bar = 0; bar < 8; ++bar) {
            const std::uint32_t pixel = pixels[10U * 1920 + bar * 240 + 120];
            for (unsigned shift = 0; shift < 32; shift += 8) {
                const auto level = static_cast<int>(pixel >> shift & 0xFF);
                EXPECT_NEAR(level, static_cast<int>(kBars[bar] >> shift & 0xFF), 2) << "bar " << bar;
            }
        }
    }
}

TEST_F(TestPatternTest, MonochromeBarsAreGrey)
{
    const SimulatedCamera& camera = switchedOn(kMono);
    camera.choose("TestPattern", "ColorBar");
    const Picture picture = takePicture(camera.handle());
    EXPECT_EQ(picture.at(80, 500), 255);
    EXPECT_NEAR(picture.at(80 + 3 * 160, 500), 0.587 * 255, 2);
    EXPECT_EQ(picture.at(80 + 7 * 160, 500), 0);
}

} // namespace
