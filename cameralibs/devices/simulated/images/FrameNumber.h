#pragma once

/// The frame number that stands in the upper left corner of an image, in the digits of a seven-segment display.

#include "cameralibs/devices/simulated/images/Scene.h"

#include <cstdint>

namespace cameralibs::simulated {

class FrameNumber {
public:
    FrameNumber(std::uint64_t number, std::uint32_t imageWidth, std::uint32_t imageHeight);

    /// The box around the digits, cut to the image; left side and width are multiples of kPixelGroup.
    [[nodiscard]] Rect box() const { return m_box; }

    /// One row of the box.
    void paint(int y, Sample* row) const;

private:
    [[nodiscard]] bool isLit(int column, int row) const;

    std::uint64_t m_number;
    int m_digits;
    int m_unit; ///< pixels of a segment's thickness
    Rect m_box;
};

} // namespace cameralibs::simulated
