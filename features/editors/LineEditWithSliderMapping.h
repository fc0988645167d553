#pragma once

#include <cstdint>

/// The conversion between a node's values and slider positions, without widgets.
///
/// The position of a linear slider is value x scale, where scale is a power of ten; a logarithmic one has the positions
/// 0 to 10000. Positions have 32 bits: larger values become INT_MIN, and the rules below rely on that.
struct SliderMapping {
    double scale = 1.0;     ///< slider units per unit of value
    double logOffset = 0.0; ///< added before taking the logarithm
    double logRange = 0.0;  ///< natural logarithm of the scaled span plus one
    std::int64_t minInt = 0;
    std::int64_t maxInt = 0;
    std::int64_t incInt = 1;
    double minFloat = 0.0;
    double maxFloat = 0.0;
    double incFloat = 1.0;
    bool hasIncFloat = false;
};

/// The limits and the position of a slider.
struct SliderPositions {
    int minimum = 0;
    int maximum = 0;
    int position = 0;
};

/// Each sets scale, offset and logarithmic range for the integer or float range in `mapping`, and returns the slider's
/// limits and position. If the range is empty (the minimum is not below the maximum) the position is the minimum's. The
/// position of a logarithmic slider follows `logarithmic`, which is false if the node is not logarithmic.
[[nodiscard]] SliderPositions loadIntLinear(SliderMapping& mapping, std::int64_t value);
[[nodiscard]] SliderPositions loadIntLog(SliderMapping& mapping, bool logarithmic, std::int64_t value);
[[nodiscard]] SliderPositions loadFloatLinear(SliderMapping& mapping, double value);
[[nodiscard]] SliderPositions loadFloatLog(SliderMapping& mapping, bool logarithmic, double value);

[[nodiscard]] int intToPosition(const SliderMapping& mapping, bool logarithmic, std::int64_t value);
[[nodiscard]] int floatToPosition(const SliderMapping& mapping, bool logarithmic, double value);

/// The valid value at a position.
[[nodiscard]] std::int64_t positionToInt(const SliderMapping& mapping, bool logarithmic, int position);
[[nodiscard]] double positionToFloat(const SliderMapping& mapping, bool logarithmic, int position);

/// The value clamped to the range and snapped to a step. An integer takes the nearest step, halves upward. The steps of
/// a float are deliberately its increment squared, which is ordinary snapping only for an increment of 1.
[[nodiscard]] std::int64_t validInt(const SliderMapping& mapping, std::int64_t value);
[[nodiscard]] double validFloat(const SliderMapping& mapping, double value);
