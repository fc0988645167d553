#include "FrameNumber.h"

#include <algorithm>

namespace orvo::simulated {

namespace {

// In units: the box begins at (4, 4), a digit is 6 x 11 with a gap of 2 beside it and a frame of 2 around all of them.
constexpr int kOrigin = 4;
constexpr int kFrame = 2;
constexpr int kDigitWidth = 6;
constexpr int kDigitHeight = 11;
constexpr int kDigitPitch = 8;
constexpr int kMinDigits = 6;

// Bits: top, upper right, lower right, bottom, lower left, upper left, middle.
constexpr unsigned kSegments[10] = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};

constexpr Sample kLit{0xFFFF, 0xFFFF, 0xFFFF};
constexpr Sample kDark{0x0A00, 0x0A00, 0x0A00};

// The segment at a place within a digit, one unit thick; 7 where there is none.
constexpr int segmentAt(int x, int y)
{
    constexpr int kMiddle = kDigitHeight / 2;
    const bool inner = x > 0 && x < kDigitWidth - 1;
    if (y == 0 || y == kMiddle || y == kDigitHeight - 1)
        return !inner ? 7 : y == 0 ? 0 : y == kMiddle ? 6 : 3;
    if (inner)
        return 7;
    const bool upper = y < kMiddle;
    return x == 0 ? (upper ? 5 : 4) : (upper ? 1 : 2);
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
    , m_unit(std::max(1, static_cast<int>(std::min(imageWidth, imageHeight)) / 240))
{
    const int width = static_cast<int>(imageWidth);
    const int height = static_cast<int>(imageHeight);
    const int boxWidth = (m_digits * kDigitPitch + 2 * kFrame) * m_unit;
    m_box.left = std::min(kOrigin * m_unit, width);
    m_box.top = std::min(kOrigin * m_unit, height);
    m_box.right = std::min(m_box.left + wholeGroups(boxWidth), width);
    m_box.bottom = std::min(m_box.top + (kDigitHeight + 2 * kFrame) * m_unit, height);
}

bool FrameNumber::isLit(int column, int row) const
{
    const int x = column / m_unit - kFrame;
    const int y = row / m_unit - kFrame;
    if (x < 0 || y < 0 || y >= kDigitHeight || x >= m_digits * kDigitPitch || x % kDigitPitch >= kDigitWidth)
        return false;
    std::uint64_t rest = m_number;
    for (int i = x / kDigitPitch + 1; i < m_digits; ++i)
        rest /= 10;
    return ((kSegments[rest % 10] >> segmentAt(x % kDigitPitch, y)) & 1) != 0;
}

void FrameNumber::paint(int y, Sample* row) const
{
    for (int x = 0; x < m_box.right - m_box.left; ++x)
        row[x] = isLit(x, y - m_box.top) ? kLit : kDark;
}

} // namespace orvo::simulated
