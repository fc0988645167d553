#include "cameralibs/devices/simulated/images/ImageMaker.h"

#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/devices/simulated/images/FrameNumber.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <numeric>

namespace cameralibs::simulated {

namespace {

Sample luma(const Sample& light)
{
    const auto level = static_cast<std::uint16_t>((77U * light.red + 150U * light.green + 29U * light.blue) >> 8);
    return {level, level, level};
}

// Up to 16 pixels are binned; their sum must fit 16 bits.
static_assert(16 * kFullLight <= std::numeric_limits<std::uint16_t>::max());

Sample sum(const Sample& a, const Sample& b)
{
    const auto add = [](std::uint16_t x, std::uint16_t y) { return static_cast<std::uint16_t>(x + y); };
    return {add(a.red, b.red), add(a.green, b.green), add(a.blue, b.blue)};
}

// Interpolates between table entries, so that formats with more than 8 bits keep their resolution.
double lookUp(const std::array<std::uint8_t, 256>& table, double value)
{
    const double place = value * 255;
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min<std::size_t>(below + 1, 255);
    const double part = place - static_cast<double>(below);
    return (table[below] * (1 - part) + table[above] * part) / 255;
}

int groupBelow(int x)
{
    constexpr int kGroup = kPixelGroup;
    return x / kGroup * kGroup;
}

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

constexpr std::uint32_t kPatternRowKinds = 256;

/// Paints row `y` of a test pattern. Moving patterns depend on the frame number.
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

/// Rows of an image with the same kind are identical in every pixel format, so each kind is packed only once. Less than
/// kPatternRowKinds.
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

} // namespace

std::size_t ImageMaker::sizeOf(const ImageSettings& settings)
{
    return static_cast<std::size_t>(imageBytes(settings.format, settings.width, settings.height));
}

void ImageMaker::make(const ImageSettings& settings, std::uint64_t frameNumber, double seconds, std::uint8_t* out)
{
    if (settings != m_settings)
        prepare(settings);
    if (m_settings.pattern == TestPattern::Off) {
        makeScene(frameNumber, seconds, out);
    } else {
        makePattern(frameNumber, out);
    }
}

void ImageMaker::prepare(const ImageSettings& settings)
{
    m_settings = settings;
    m_scene = Scene(settings.sensorWidth, settings.sensorHeight);
    m_row.resize(static_cast<std::size_t>(settings.width) * settings.binningX);
    m_light.resize(m_row.size());
    m_still.clear();
    const PixelFormat& packed = *findPixelFormat(settings.packing->format);
    m_bitsPerPixel = bitsPerPixel(packed.value);
    m_bitsPerRow = packed.packing == SamplePacking::Bits ? std::size_t{settings.width} * m_bitsPerPixel
                                                         : imageBytes(packed, settings.width, 1) * 8;
    if (settings.pattern != TestPattern::Off)
        return;

    buildTone();
    m_still.resize(sizeOf(settings));
    const int width = static_cast<int>(settings.width);
    for (int y = 0; y < static_cast<int>(settings.height); ++y) {
        renderSpan(0, y, width, nullptr);
        packSpan(0, y, width, m_still.data());
    }
}

void ImageMaker::buildTone()
{
    const std::array factors{m_settings.red, m_settings.green, m_settings.blue};
    for (std::size_t channel = 0; channel < factors.size(); ++channel) {
        const double factor = factors[channel];
        auto& tone = m_tone[channel];
        tone.resize(kFullLight + 1);
        for (std::size_t light = 0; light < tone.size(); ++light) {
            const double linear = static_cast<double>(light) / kFullLight * factor + m_settings.blackLevel;
            double value = std::pow(std::clamp(linear, 0.0, 1.0), m_settings.gamma);
            if (m_settings.useTable)
                value = lookUp(m_settings.table, value);
            tone[light] = static_cast<std::uint16_t>(std::lround(value * std::numeric_limits<std::uint16_t>::max()));
        }
    }
}

void ImageMaker::makeScene(std::uint64_t frameNumber, double seconds, std::uint8_t* out)
{
    std::memcpy(out, m_still.data(), m_still.size());
    drawBall(seconds, out);
    drawNumber(frameNumber, out);
}

void ImageMaker::makePattern(std::uint64_t frameNumber, std::uint8_t* out)
{
    // Packing preserves the other bits of a byte that two rows share, and the image may be larger than its packed rows:
    // clear what packing does not overwrite.
    const bool wholeBytes = m_bitsPerRow % 8 == 0;
    const std::size_t rowBytes = m_bitsPerRow / 8;
    const std::size_t filled = wholeBytes ? rowBytes * m_settings.height : 0;
    std::memset(out + filled, 0, sizeOf(m_settings) - filled);
    std::array<const std::uint8_t*, kPatternRowKinds> made{};
    for (std::uint32_t y = 0; y < m_settings.height; ++y) {
        const std::uint8_t*& like = made[patternRowKind(m_settings, frameNumber, y)];
        if (like != nullptr && wholeBytes) {
            std::memcpy(out + y * rowBytes, like, rowBytes);
            continue;
        }
        paintPattern(m_settings, frameNumber, y, m_row.data());
        packSpan(0, static_cast<int>(y), static_cast<int>(m_settings.width), out);
        like = out + y * rowBytes;
    }
}

void ImageMaker::drawBall(double seconds, std::uint8_t* out)
{
    const Ball ball = m_scene.ballAt(seconds);
    const Rect onSensor = ball.bounds();

    // Converts sensor coordinates to image coordinates, applying ReverseX and ReverseY, the offset and binning.
    const auto toImage = [](int low, int high, bool reversed, std::uint32_t sensor, std::uint32_t binning,
                            std::uint32_t offset, std::uint32_t size, int& first, int& last) {
        const int end = static_cast<int>(sensor);
        if (reversed) {
            std::swap(low, high);
            low = end - low;
            high = end - high;
        }
        const int step = static_cast<int>(binning);
        first = std::clamp(low / step - static_cast<int>(offset) - 1, 0, static_cast<int>(size));
        last = std::clamp(high / step - static_cast<int>(offset) + 1, 0, static_cast<int>(size));
    };
    const ImageSettings& s = m_settings;
    int top = 0;
    int bottom = 0;
    toImage(onSensor.top, onSensor.bottom, s.reverseY, s.sensorHeight, s.binningY, s.offsetY, s.height, top, bottom);
    const int step = static_cast<int>(s.binningY);
    for (int y = top; y < bottom; ++y) {
        int row = (y + static_cast<int>(s.offsetY)) * step;
        if (s.reverseY)
            row = static_cast<int>(s.sensorHeight) - row - step;
        const Columns columns = ball.columnsOf(row, row + step);
        int left = 0;
        int right = 0;
        toImage(columns.first, columns.end, s.reverseX, s.sensorWidth, s.binningX, s.offsetX, s.width, left, right);
        left = groupBelow(left);
        const int whole = groupBelow(right - left + static_cast<int>(kPixelGroup) - 1);
        const int count = std::min(whole, static_cast<int>(s.width) - left);
        if (count == 0)
            continue;
        renderSpan(left, y, count, &ball);
        packSpan(left, y, count, out);
    }
}

void ImageMaker::drawNumber(std::uint64_t frameNumber, std::uint8_t* out)
{
    const FrameNumber number(frameNumber, m_settings.width, m_settings.height);
    const Rect box = number.box();
    for (int y = box.top; y < box.bottom; ++y) {
        number.paint(y, m_row.data());
        packSpan(box.left, y, box.right - box.left, out);
    }
}

void ImageMaker::renderSpan(int x, int y, int count, const Ball* ball)
{
    const int stepX = static_cast<int>(m_settings.binningX);
    const int stepY = static_cast<int>(m_settings.binningY);
    const int sensorCount = count * stepX;
    int sensorX = (x + static_cast<int>(m_settings.offsetX)) * stepX;
    if (m_settings.reverseX)
        sensorX = static_cast<int>(m_settings.sensorWidth) - sensorX - sensorCount;
    const int sensorY = (y + static_cast<int>(m_settings.offsetY)) * stepY;

    readSensor(sensorX, sensorY, sensorCount, ball, m_row.data());
    if (stepX * stepY > 1) {
        for (int row = 1; row < stepY; ++row) {
            readSensor(sensorX, sensorY + row, sensorCount, ball, m_light.data());
            std::transform(m_light.begin(), m_light.begin() + sensorCount, m_row.begin(), m_row.begin(), sum);
        }
        binColumns(count, stepX, stepX * stepY);
    }
    for (int i = 0; i < count; ++i) {
        Sample& pixel = m_row[static_cast<std::size_t>(i)];
        pixel = {m_tone[0][pixel.red], m_tone[1][pixel.green], m_tone[2][pixel.blue]};
    }
}

void ImageMaker::binColumns(int count, int columns, int pixelsPerBin)
{
    const auto mean = [&](std::uint16_t light) { return static_cast<std::uint16_t>(light / pixelsPerBin); };
    const Sample* first = m_row.data();
    for (int i = 0; i < count; ++i, first += columns) {
        const Sample total = std::accumulate(first, first + columns, Sample{}, sum);
        m_row[static_cast<std::size_t>(i)] = {mean(total.red), mean(total.green), mean(total.blue)};
    }
}

void ImageMaker::readSensor(int x, int y, int count, const Ball* ball, Sample* light) const
{
    const int row = m_settings.reverseY ? static_cast<int>(m_settings.sensorHeight) - 1 - y : y;
    if (ball == nullptr) {
        m_scene.render(x, row, count, light);
    } else {
        const Columns covered = ball->coveredOf(row);
        const int first = std::clamp(covered.first, x, x + count);
        const int end = std::clamp(covered.end, x, x + count);
        m_scene.render(x, row, first - x, light);
        m_scene.render(end, row, x + count - end, light + (end - x));
        ball->paint(x, row, count, light);
    }
    if (!m_settings.colour)
        std::transform(light, light + count, light, luma);
    if (m_settings.reverseX)
        std::reverse(light, light + count);
}

void ImageMaker::packSpan(int x, int y, int count, std::uint8_t* image) const
{
    const std::size_t begin = static_cast<std::size_t>(y) * m_bitsPerRow + static_cast<std::size_t>(x) * m_bitsPerPixel;
    m_settings.packing->pack(m_row.data(), static_cast<std::size_t>(count), static_cast<std::uint32_t>(y),
                             image + begin / 8, begin % 8);
}

} // namespace cameralibs::simulated
