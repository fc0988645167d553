#include "tests/cameralibs/devices/FrameNumberReader.h"

#include "camera/OrvoCamUtl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace {

// Independent of the code that draws them: the bright segments of each digit, in the order top, upper left, upper
// right, middle, lower left, lower right, bottom.
using Segments = std::array<bool, 7>;

constexpr Segments kDigits[] = {
    {true, true, true, false, true, true, true},     // 0
    {false, false, true, false, false, true, false}, // 1
    {true, false, true, true, true, false, true},    // 2
    {true, false, true, true, false, true, true},    // 3
    {false, true, true, true, false, true, false},   // 4
    {true, true, false, true, false, true, true},    // 5
    {true, true, false, true, true, true, true},     // 6
    {true, false, true, false, false, true, false},  // 7
    {true, true, true, true, true, true, true},      // 8
    {true, true, true, true, false, true, true},     // 9
};

// The centre of each segment, in units from the corner of a digit of 8 x 14.
constexpr std::array<std::array<std::size_t, 2>, 7> kMiddles{
    {{4, 1}, {1, 4}, {7, 4}, {4, 7}, {1, 10}, {7, 10}, {4, 13}}};

constexpr std::size_t kFirstDigit = 7; ///< units from the corner of the image
constexpr std::size_t kDigitPitch = 11;
constexpr std::size_t kDigitCount = 6;
constexpr std::uint32_t kRows = 24; ///< units, down to below the digits

} // namespace

std::vector<std::uint32_t> convert(const Picture& picture, std::uint32_t rows)
{
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(picture.width) * rows);
    EXPECT_EQ(Orvo::ConvImage(0, picture.format, 1, pixels.data(), picture.bytes.data(), picture.width, rows),
              Orvo::CAM_API_STS_SUCCESS);
    return pixels;
}

std::optional<std::uint64_t> readFrameNumber(const Picture& picture)
{
    const std::uint32_t unit = std::max(1U, std::min(picture.width, picture.height) / 300);
    const std::vector<std::uint32_t> pixels = convert(picture, std::min(picture.height, kRows * unit));
    const auto isBright = [&](std::size_t unitsX, std::size_t unitsY) {
        return (pixels[unitsY * unit * picture.width + unitsX * unit] & 0xFF) > 0x80;
    };
    std::uint64_t number = 0;
    for (std::size_t digit = 0; digit < kDigitCount; ++digit) {
        Segments bright{};
        for (std::size_t i = 0; i < bright.size(); ++i)
            bright[i] = isBright(kFirstDigit + digit * kDigitPitch + kMiddles[i][0], kFirstDigit + kMiddles[i][1]);
        const auto* const found = std::find(std::begin(kDigits), std::end(kDigits), bright);
        if (found == std::end(kDigits))
            return std::nullopt;
        number = number * 10 + static_cast<std::uint64_t>(found - std::begin(kDigits));
    }
    return number;
}
