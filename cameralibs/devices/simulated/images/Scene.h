#pragma once

/// The test scene of the simulated cameras: a chart of colours, greys and fine detail with a moving ball in front.
/// Depends only on the position on the sensor and the time.

#include "cameralibs/devices/simulated/images/PixelPacking.h"

#include <cstdint>

namespace cameralibs::simulated {

/// The brightest value of a channel in the scene.
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

    /// The columns that the ball covers, at least partly, in any of these rows.
    [[nodiscard]] Columns columnsOf(int firstRow, int endRow) const;

    /// The columns that the ball covers completely in a row.
    [[nodiscard]] Columns coveredOf(int row) const;

    /// Paints the ball over `count` pixels of row `y` from column `x`.
    void paint(int x, int y, int count, Sample* light) const;

private:
    [[nodiscard]] double halfWidthAt(double row) const;
};

class Scene {
public:
    Scene(std::uint32_t width, std::uint32_t height);

    /// Renders the static part: `count` pixels of row `y` from column `x`, all within the sensor.
    void render(int x, int y, int count, Sample* light) const;

    [[nodiscard]] Ball ballAt(double seconds) const;

private:
    int m_width;
    int m_height;
    double m_unit; ///< 1/1200 of the height, in pixels
};

} // namespace cameralibs::simulated
