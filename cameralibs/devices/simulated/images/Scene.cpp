#include "cameralibs/devices/simulated/images/Scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace cameralibs::simulated {

namespace {

constexpr double kPi = 3.14159265358979323846;

constexpr Sample light8(unsigned red, unsigned green, unsigned blue)
{
    return {static_cast<std::uint16_t>(red * 16), static_cast<std::uint16_t>(green * 16),
            static_cast<std::uint16_t>(blue * 16)};
}

constexpr Sample grey8(unsigned level)
{
    return light8(level, level, level);
}

constexpr int kChartColumns = 6;
constexpr int kChartRows = 4;
constexpr Sample kChart[kChartRows][kChartColumns] = {
    {light8(214, 40, 40), light8(240, 130, 30), light8(236, 208, 46), light8(60, 160, 70), light8(40, 90, 190),
     light8(110, 50, 150)},
    {light8(190, 60, 120), light8(30, 160, 170), light8(150, 190, 50), light8(120, 76, 46), light8(232, 184, 150),
     light8(90, 120, 160)},
    {light8(250, 200, 200), light8(252, 230, 190), light8(206, 236, 204), light8(196, 226, 240), light8(214, 204, 240),
     light8(150, 110, 90)},
    {grey8(243), grey8(200), grey8(160), grey8(121), grey8(84), grey8(50)},
};

// Position of a pixel within an element of the chart, and the size of the element.
struct Place {
    int x;
    int y;
    int width;
    int height;
};

Sample colours(const Place& at)
{
    const int column = at.x * kChartColumns / at.width;
    const int row = at.y * kChartRows / at.height;
    const int gap = at.width / (kChartColumns * 24);
    const int cellX = at.x - column * at.width / kChartColumns;
    const int cellY = at.y - row * at.height / kChartRows;
    const bool inGap =
        cellX < gap || cellY < gap || cellX + gap >= at.width / kChartColumns || cellY + gap >= at.height / kChartRows;
    return inGap ? grey8(12) : kChart[row][column];
}

Sample greySteps(const Place& at)
{
    constexpr unsigned kSteps = 12;
    const auto step = static_cast<unsigned>(at.x) * kSteps / static_cast<unsigned>(at.width);
    return grey8(step * 255 / (kSteps - 1));
}

Sample greyRamp(const Place& at)
{
    const auto last = static_cast<unsigned>(std::max(1, at.width - 1));
    const auto level = static_cast<std::uint16_t>(static_cast<unsigned>(at.x) * kFullLight / last);
    return {level, level, level};
}

// Blocks of bars 1, 2, 3, 4, 6 and 8 pixels wide: vertical in the upper row, horizontal in the lower one.
Sample bars(const Place& at)
{
    constexpr std::array kBarWidths{1, 2, 3, 4, 6, 8};
    constexpr int kBlocks = kBarWidths.size();
    const int block = at.x * kBlocks / at.width;
    const int blockX = at.x - block * at.width / kBlocks;
    const bool inGap = blockX < at.width / (kBlocks * 12) || std::abs(at.y * 2 - at.height) < at.height / 12;
    if (inGap)
        return grey8(40);
    const int along = at.y * 2 < at.height ? at.x : at.y;
    return along / kBarWidths[static_cast<std::size_t>(block)] % 2 == 0 ? grey8(20) : grey8(235);
}

// Concentric rings whose spatial frequency rises to the pixel limit at the rim.
Sample zonePlate(const Place& at)
{
    static const auto kWave = [] {
        std::array<std::uint16_t, 1024> wave{};
        for (std::size_t i = 0; i < wave.size(); ++i)
            wave[i] = static_cast<std::uint16_t>(2040 + 1800 * std::cos(2 * kPi * static_cast<double>(i) / 1024));
        return wave;
    }();
    const int radius = at.width / 2;
    const int x = at.x - radius;
    const int y = at.y - radius;
    const std::int64_t squared = static_cast<std::int64_t>(x) * x + static_cast<std::int64_t>(y) * y;
    const std::uint16_t level = kWave[static_cast<std::size_t>(squared * 256 / std::max(1, radius) % 1024)];
    return {level, level, level};
}

Sample star(const Place& at)
{
    constexpr int kSpokes = 36;
    const int radius = at.width / 2;
    const double turn = std::atan2(at.y - radius + 0.5, at.x - radius + 0.5) / (2 * kPi) + 0.5;
    return static_cast<int>(turn * 2 * kSpokes) % 2 == 0 ? light8(24, 22, 30) : light8(238, 234, 220);
}

// The wall behind the chart: a vertical gradient with grid lines.
void paintWall(int x, int y, int count, int height, int pitch, Sample* light)
{
    constexpr unsigned kLine = 18;
    const auto fall = [&](int top, int foot) { return static_cast<unsigned>(top + (foot - top) * y / height); };
    const auto colour = [&](unsigned line) {
        return light8(fall(70, 26) + line, fall(84, 32) + line, fall(104, 44) + line);
    };
    std::fill_n(light, count, colour(y % pitch == 0 ? kLine : 0));
    for (int column = (x + pitch - 1) / pitch * pitch; column < x + count; column += pitch)
        light[column - x] = colour(kLine);
}

// In units of 1/1200 of the image height. A negative `left` counts from the right edge.
struct Element {
    int left;
    int top;
    int width;
    int height;
    bool round;
    Sample (*colour)(const Place&);
};

constexpr Element kElements[] = {
    {80, 180, 660, 440, false, colours}, {80, 650, 660, 90, false, greySteps},  {80, 750, 660, 70, false, greyRamp},
    {80, 850, 660, 260, false, bars},    {-640, 60, 560, 560, true, zonePlate}, {-600, 660, 480, 480, true, star},
};

/// The light of the ball, indexed by how much its surface faces the lamp. There is a highlight at the maximum.
constexpr std::size_t kBallSteps = 2048;
constexpr auto kBallLight = [] {
    std::array<Sample, kBallSteps + 1> result{};
    for (std::size_t step = 0; step < result.size(); ++step) {
        const double facing = static_cast<double>(step) / kBallSteps;
        const double squared = facing * facing;
        const double shine = squared * squared * squared * squared;
        const double body = 0.18 + 0.72 * facing;
        const auto channel = [&](double base) {
            return static_cast<std::uint16_t>(std::min<double>(kFullLight, base * body + 1500 * shine * shine));
        };
        result[step] = {channel(3900), channel(1750), channel(420)};
    }
    return result;
}();

} // namespace

Rect Ball::bounds() const
{
    return {static_cast<int>(std::floor(x - radius)), static_cast<int>(std::floor(y - radius)),
            static_cast<int>(std::ceil(x + radius)) + 1, static_cast<int>(std::ceil(y + radius)) + 1};
}

double Ball::halfWidthAt(double row) const
{
    return std::sqrt(std::max(0.0, radius * radius - (row - y) * (row - y)));
}

Columns Ball::columnsOf(int firstRow, int endRow) const
{
    const double widest = std::clamp(y, static_cast<double>(firstRow), static_cast<double>(endRow - 1));
    const double half = halfWidthAt(widest);
    return {static_cast<int>(std::floor(x - half)), static_cast<int>(std::ceil(x + half)) + 1};
}

Columns Ball::coveredOf(int row) const
{
    const double half = halfWidthAt(row);
    const int first = static_cast<int>(std::ceil(x - half)) + 1;
    return {first, std::max(first, static_cast<int>(std::floor(x + half)))};
}

void Ball::paint(int x0, int row, int count, Sample* light) const
{
    const Columns reached = columnsOf(row, row + 1);
    const double v = (row - y) / radius;
    for (int column = std::max(x0, reached.first); column < std::min(x0 + count, reached.end); ++column) {
        const double u = (column - x) / radius;
        const double depth = 1 - u * u - v * v;
        if (depth <= 0)
            continue;
        // Lit from the upper left.
        const double facing = std::max(0.0, -0.5 * u - 0.6 * v + 0.62 * std::sqrt(depth));
        light[column - x0] = kBallLight[static_cast<std::size_t>(facing * kBallSteps)];
    }
}

Scene::Scene(std::uint32_t width, std::uint32_t height)
    : m_width(static_cast<int>(width))
    , m_height(static_cast<int>(height))
    , m_unit(height / 1200.0)
{
}

void Scene::render(int x, int y, int count, Sample* light) const
{
    const auto scaled = [&](int units) { return static_cast<int>(units * m_unit); };
    const int pitch = std::max(2, scaled(60));
    paintWall(x, y, count, m_height, pitch, light);

    for (const Element& element : kElements) {
        const int left = scaled(element.left) + (element.left < 0 ? m_width : 0);
        const int width = std::max(1, scaled(element.width));
        const int height = std::max(1, scaled(element.height));
        const int row = y - scaled(element.top);
        if (row < 0 || row >= height)
            continue;
        int inset = 0;
        if (element.round) {
            const double half = width / 2.0;
            inset = static_cast<int>(half - std::sqrt(std::max(0.0, half * half - (row - half) * (row - half))));
        }
        const int first = std::max(x, left + inset);
        const int last = std::min(x + count, left + width - inset);
        for (int column = first; column < last; ++column)
            light[column - x] = element.colour({column - left, row, width, height});
    }
}

Ball Scene::ballAt(double seconds) const
{
    Ball ball;
    ball.radius = 90 * m_unit;
    ball.x = m_width * (0.5 + 0.42 * std::sin(0.9 * seconds));
    ball.y = m_height * (0.5 + 0.38 * std::sin(1.3 * seconds + 0.7));
    return ball;
}

} // namespace cameralibs::simulated
