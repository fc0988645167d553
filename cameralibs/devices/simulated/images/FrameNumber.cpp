#include "cameralibs/devices/simulated/images/FrameNumber.h"

#include <algorithm>

namespace cameralibs::simulated {

namespace {

// In units: the box begins at (4, 4) with a margin of 3. Digits are 8 x 14 and 3 apart; segments are 2 thick.
constexpr int kOrigin = 4;
constexpr int kMargin = 3;
constexpr int kDigitWidth = 8;
constexpr int kDigitHeight = 14;
constexpr int kThickness = 2;
constexpr int kDigitPitch = 11;
constexpr int kMinDigits = 6;

// Bits, lowest first: top, upper right, lower right, bottom, lower left, upper left, middle.
constexpr unsigned kSegments[10] = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};

constexpr Sample kLit{0xFFFF, 0xFFFF, 0xFFFF};
constexpr Sample kDark{0x0A00, 0x0A00, 0x0A00};

// The segments that cover a point of a digit. Corners belong to more than one.
unsigned segmentsAt(int x, int y)
{
    constexpr int kMiddle = kDigitHeight / 2 - kThickness / 2;
    const auto bit = [](bool covers, unsigned segment) { return covers ? 1U << segment : 0U; };
    const bool left = x < kThickness;
    const bool right = x >= kDigitWidth - kThickness;
    const bool upper = y < kMiddle + kThickness;
    const bool lower = y >= kMiddle;
    return bit(y < kThickness, 0) | bit(right && upper, 1) | bit(right && lower, 2) |
           bit(y >= kDigitHeight - kThickness, 3) | bit(left && lower, 4) | bit(left && upper, 5) |
           bit(upper && lower, 6);
}

int digitsOf(std::uint64_t number)
{
    int digits = 1;
    for (; number >= 10; number /= 10)
        ++digits;
    return std::max(digits, kMinDigits);
}

int wholeGroups(int pixels)
{
    constexpr int kGroup = kPixelGroup;
    return pixels / kGroup * kGroup;
}

} // namespace

FrameNumber::FrameNumber(std::uint64_t number, std::uint32_t imageWidth, std::uint32_t imageHeight)
    : m_number(number)
    , m_digits(digitsOf(number))
    , m_unit(std::max(1, static_cast<int>(std::min(imageWidth, imageHeight)) / 300))
{
    const int width = static_cast<int>(imageWidth);
    const int height = static_cast<int>(imageHeight);
    const int boxWidth = (m_digits * kDigitPitch - (kDigitPitch - kDigitWidth) + 2 * kMargin) * m_unit;
    m_box.left = std::min(kOrigin * m_unit, width);
    m_box.top = std::min(kOrigin * m_unit, height);
    m_box.right = std::min(m_box.left + wholeGroups(boxWidth), width);
    m_box.bottom = std::min(m_box.top + (kDigitHeight + 2 * kMargin) * m_unit, height);
}

bool FrameNumber::isLit(int column, int row) const
{
    const int x = column / m_unit - kMargin;
    const int y = row / m_unit - kMargin;
    if (x < 0 || y < 0 || y >= kDigitHeight || x >= m_digits * kDigitPitch || x % kDigitPitch >= kDigitWidth)
        return false;
    std::uint64_t rest = m_number;
    for (int i = x / kDigitPitch + 1; i < m_digits; ++i)
        rest /= 10;
    return (kSegments[rest % 10] & segmentsAt(x % kDigitPitch, y)) != 0;
}

void FrameNumber::paint(int y, Sample* row) const
{
    for (int x = 0; x < m_box.right - m_box.left; ++x)
        row[x] = isLit(x, y - m_box.top) ? kLit : kDark;
}

} // namespace cameralibs::simulated
