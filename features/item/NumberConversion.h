#pragma once

#include <cstdint>

/// Truncates toward zero. NaN and values that do not fit into 32 bits give -2147483648: slider positions and step
/// counts rely on that, and the language leaves the plain conversion undefined.
[[nodiscard]] std::int32_t doubleToInt(double value);

/// The same to 64 bits: NaN and values that do not fit give INT64_MIN.
[[nodiscard]] std::int64_t doubleToInt64(double value);

/// The step for an increment: 1 if the increment is 0, negative or NaN. Such a node has no usable steps, and
/// multiplying by its increment would turn every value into the minimum. Texts show the increment as the camera reports
/// it.
[[nodiscard]] double stepOf(double increment);

/// Clamps `value` to the minimum, rounds it to the nearest number of increments above the minimum (halves up), then
/// clamps it to the maximum, which need not be a multiple. Exact for every range of 64-bit numbers. An increment of 0
/// or less counts as 1, as in stepOf().
[[nodiscard]] long snapToIncrement(long value, long minimum, long maximum, long increment);
