#pragma once

/// Draws the frame number into the upper left corner of an image in seven-segment digits.

#include "cameralibs/devices/simulated/images/Scene.h"

#include <cstdint>

namespace cameralibs::simulated {

class FrameNumber {
public:
    FrameNumber(std::uint64_t number, std::uint32_t imageWidth, std::uint32_t imageHeight);

    /// The box around the digits, clipped to the image. Its left edge and width are multiples of kPixelGroup.
    [[nodiscard]] Rect box() const { return m_box; }

    /// Paints one row of the box.
    void paint(int y, Sample* row) const;

private:
    [[nodiscard]] bool isLit(int column, int row) const;

    std::uint64_t m_number;
    int m_digits;
    int m_unit; ///< pixels per unit of the layout
    Rect m_box;
};

} // namespace cameralibs::simulated
