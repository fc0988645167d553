#pragma once

/// What the built-in cameras look at: a chart of colours, greys and fine detail, and a ball that flies over it. Pure
/// functions of the place on the sensor and of the time.

#include "cameralibs/devices/simulated/images/PixelPacking.h"

#include <cstdint>

namespace cameralibs::simulated {

/// Light falling on the sensor, per channel; a Sample of the scene is at most this bright.
constexpr std::uint32_t kFullLight = 4095;

struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;  ///< one past the last column
    int bottom = 0; ///< one past the last row
};

struct Columns {
    int first = 0;
    int end = 0; ///< one past the last
};

struct Ball {
    double x = 0;
    double y = 0;
    double radius = 1;

    [[nodiscard]] Rect bounds() const;

    /// The columns that the ball reaches into in any of these rows.
    [[nodiscard]] Columns columnsOf(int firstRow, int endRow) const;

    /// The columns of a row of which the ball leaves nothing to see.
    [[nodiscard]] Columns coveredOf(int row) const;

    /// Lays the ball over `count` pixels of row `y` from column `x`.
    void paint(int x, int y, int count, Sample* light) const;

private:
    [[nodiscard]] double halfWidthAt(double row) const;
};

class Scene {
public:
    Scene(std::uint32_t width, std::uint32_t height);

    /// The part that stands still: `count` pixels of row `y` from column `x`, all of them on the sensor.
    void render(int x, int y, int count, Sample* light) const;

    [[nodiscard]] Ball ballAt(double seconds) const;

private:
    int m_width;
    int m_height;
    double m_unit; ///< sensor pixels of a 1200th of the height
};

} // namespace cameralibs::simulated
