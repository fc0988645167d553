#pragma once

#include <cstdint>

/// Truncates toward zero. What does not fit 32 bits, and NaN, gives -2147483648: slider positions and step counts rely
/// on it, and the plain conversion of the language leaves it open.
[[nodiscard]] std::int32_t doubleToInt(double value);

/// The same to 64 bits: what does not fit, and NaN, gives INT64_MIN.
[[nodiscard]] std::int64_t doubleToInt64(double value);

/// The step that an increment makes: 1 of one that is 0 or less, or no number. That is chosen: such a node has no steps
/// of its own, and where its bare increment were multiplied with, every value would be the minimum. Texts tell the
/// increment as the camera does.
[[nodiscard]] double stepOf(double increment);

/// `value` raised to the minimum, brought to the nearest whole number of increments above it (halves upward), then
/// lowered to the maximum, which may lie off the increments. Exact for every range of 64-bit numbers. An increment of
/// 0 or less counts as 1, as in stepOf().
[[nodiscard]] long snapToIncrement(long value, long minimum, long maximum, long increment);
