#include "cameralibs/devices/simulated/images/TestPatterns.h"

#include <cstddef>
#include <iterator>

namespace cameralibs::simulated {

namespace {

constexpr Sample kBlack{0, 0, 0};
constexpr Sample kWhite{0xFFFF, 0xFFFF, 0xFFFF};

constexpr Sample kBars[] = {
    kWhite,
    {0xFFFF, 0xFFFF, 0},
    {0, 0xFFFF, 0xFFFF},
    {0, 0xFFFF, 0},
    {0xFFFF, 0, 0xFFFF},
    {0xFFFF, 0, 0},
    {0, 0, 0xFFFF},
    kBlack,
};
constexpr std::uint32_t kBarCount = std::size(kBars);

// A repeating ramp of 256 levels, one pixel each.
Sample rampLevel(std::uint64_t position)
{
    const auto level = static_cast<std::uint16_t>((position & 0xFF) * 0x101);
    return {level, level, level};
}

} // namespace

void paintPattern(const ImageSettings& settings, std::uint64_t frameNumber, std::uint32_t y, Sample* row)
{
    const std::uint32_t width = settings.width;
    const auto fill = [&](auto&& pixelAt) {
        for (std::uint32_t x = 0; x < width; ++x)
            row[x] = pixelAt(x);
    };
    switch (settings.pattern) {
    case TestPattern::Off:
    case TestPattern::Black:
        return fill([](std::uint32_t) { return kBlack; });
    case TestPattern::White:
        return fill([](std::uint32_t) { return kWhite; });
    case TestPattern::GreyHorizontalRamp:
        return fill([](std::uint32_t x) { return rampLevel(x); });
    case TestPattern::GreyVerticalRamp:
        return fill([&](std::uint32_t) { return rampLevel(y); });
    case TestPattern::GreyHorizontalRampMoving:
        return fill([&](std::uint32_t x) { return rampLevel(x + frameNumber); });
    case TestPattern::GreyVerticalRampMoving:
        return fill([&](std::uint32_t) { return rampLevel(y + frameNumber); });
    case TestPattern::HorizontalLineMoving:
        return fill([&](std::uint32_t) { return y == frameNumber % settings.height ? kWhite : kBlack; });
    case TestPattern::VerticalLineMoving:
        return fill([&](std::uint32_t x) { return x == frameNumber % width ? kWhite : kBlack; });
    case TestPattern::ColorBar:
        return fill([&](std::uint32_t x) { return kBars[static_cast<std::uint64_t>(x) * kBarCount / width]; });
    }
}

std::uint32_t patternRowKind(const ImageSettings& settings, std::uint64_t frameNumber, std::uint32_t y)
{
    switch (settings.pattern) {
    case TestPattern::GreyVerticalRamp:
        return y & 0xFF;
    case TestPattern::GreyVerticalRampMoving:
        return static_cast<std::uint32_t>((y + frameNumber) & 0xFF);
    case TestPattern::HorizontalLineMoving:
        return y == frameNumber % settings.height ? 1 : 0;
    case TestPattern::ColorBar:
        return y & 1; // the colours of a Bayer sensor alternate
    default:
        return 0;
    }
}

} // namespace cameralibs::simulated
