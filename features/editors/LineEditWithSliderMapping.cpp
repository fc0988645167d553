#include "features/editors/LineEditWithSliderMapping.h"

#include "features/item/NumberConversion.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kLogPositions = 10000;
constexpr int kCoarseSpan = 255;       // a slider with fewer positions is too coarse
constexpr int kWidestSpan = 0x1000000; // 24 bits

bool isEmpty(std::int64_t minimum, std::int64_t maximum)
{
    return minimum >= maximum;
}

// NaN also makes a range empty.
bool isEmpty(double minimum, double maximum)
{
    return !(minimum < maximum);
}

/// A product beyond 32 bits becomes negative and ends the loop at once, so the widest ranges keep their scale.
void divideToSpan(double& scale, double span)
{
    for (int i = 0; i < 9 && doubleToInt(span * scale) > kWidestSpan; ++i)
        scale /= 10;
}

double logPosition(const SliderMapping& mapping, double value)
{
    return std::log(value * mapping.scale + mapping.logOffset) / mapping.logRange * double{kLogPositions};
}

double valueAt(const SliderMapping& mapping, bool logarithmic, int position)
{
    if (!logarithmic)
        return position / mapping.scale;
    return (std::exp(position * mapping.logRange / double{kLogPositions}) - mapping.logOffset) / mapping.scale;
}

/// If the maximum is INT64_MAX, the right end of a logarithmic slider rounds to 2^63, which must not wrap.
std::int64_t toInt64(double value)
{
    constexpr double kTwoTo63 = 9223372036854775808.0;
    return value >= kTwoTo63 ? INT64_MAX : doubleToInt64(value);
}

} // namespace

SliderPositions loadIntLinear(SliderMapping& mapping, std::int64_t value)
{
    mapping.scale = 1.0;
    if (isEmpty(mapping.minInt, mapping.maxInt)) {
        const int low = static_cast<int>(mapping.minInt); // the lower 32 bits suffice: a fixed value cannot be dragged
        return {low, low, low};
    }
    // Unsigned: the range may cover all 64-bit numbers.
    const std::uint64_t span = static_cast<std::uint64_t>(mapping.maxInt) - static_cast<std::uint64_t>(mapping.minInt);
    divideToSpan(mapping.scale, static_cast<double>(span));
    return {doubleToInt(static_cast<double>(mapping.minInt) * mapping.scale),
            doubleToInt(static_cast<double>(mapping.maxInt) * mapping.scale),
            doubleToInt(static_cast<double>(value) * mapping.scale)};
}

SliderPositions loadIntLog(SliderMapping& mapping, bool logarithmic, std::int64_t value)
{
    mapping.scale = 1.0;
    if (isEmpty(mapping.minInt, mapping.maxInt))
        return {};
    mapping.logOffset = 1.0 - static_cast<double>(mapping.minInt);
    mapping.logRange = std::log(static_cast<double>(mapping.maxInt) + mapping.logOffset);
    return {0, kLogPositions, intToPosition(mapping, logarithmic, value)};
}

SliderPositions loadFloatLinear(SliderMapping& mapping, double value)
{
    mapping.scale = 1.0;
    if (isEmpty(mapping.minFloat, mapping.maxFloat)) {
        const int low = doubleToInt(mapping.minFloat);
        return {low, low, low};
    }
    const double span = mapping.maxFloat - mapping.minFloat;
    if (doubleToInt(span) > kCoarseSpan) {
        divideToSpan(mapping.scale, span);
    } else {
        int multiplied = 0;
        do {
            mapping.scale *= 10;
        } while (++multiplied < 7 && doubleToInt(span * mapping.scale) <= kCoarseSpan);
    }
    return {doubleToInt(mapping.minFloat * mapping.scale), doubleToInt(mapping.maxFloat * mapping.scale),
            doubleToInt(value * mapping.scale)};
}

SliderPositions loadFloatLog(SliderMapping& mapping, bool logarithmic, double value)
{
    mapping.scale = 1.0;
    if (isEmpty(mapping.minFloat, mapping.maxFloat))
        return {};
    const double span = mapping.maxFloat - mapping.minFloat;
    // Scaled up while the span fits into 24 bits; a linear slider stops as soon as it has enough positions.
    if (doubleToInt(span) <= kCoarseSpan) {
        for (int i = 0; i < 7 && doubleToInt(span * mapping.scale) < kWidestSpan; ++i)
            mapping.scale *= 10;
    }
    mapping.logOffset = 1.0 - mapping.minFloat * mapping.scale;
    mapping.logRange = std::log(mapping.maxFloat * mapping.scale + mapping.logOffset);
    return {0, kLogPositions, floatToPosition(mapping, logarithmic, value)};
}

int intToPosition(const SliderMapping& mapping, bool logarithmic, std::int64_t value)
{
    if (isEmpty(mapping.minInt, mapping.maxInt))
        return logarithmic ? 0 : doubleToInt(static_cast<double>(mapping.minInt) * mapping.scale);
    const auto clamped = static_cast<double>(std::clamp(value, mapping.minInt, mapping.maxInt));
    if (!logarithmic)
        return doubleToInt(clamped * mapping.scale);
    if (mapping.logRange * double{kLogPositions} == 0.0)
        return 1;
    return doubleToInt(logPosition(mapping, clamped));
}

int floatToPosition(const SliderMapping& mapping, bool logarithmic, double value)
{
    if (isEmpty(mapping.minFloat, mapping.maxFloat))
        return logarithmic ? 0 : doubleToInt(mapping.minFloat * mapping.scale);
    const double clamped = std::clamp(value, mapping.minFloat, mapping.maxFloat);
    return doubleToInt(logarithmic ? logPosition(mapping, clamped) : clamped * mapping.scale);
}

std::int64_t positionToInt(const SliderMapping& mapping, bool logarithmic, int position)
{
    return validInt(mapping, mapping.scale == 0.0 ? 0 : toInt64(valueAt(mapping, logarithmic, position)));
}

double positionToFloat(const SliderMapping& mapping, bool logarithmic, int position)
{
    return validFloat(mapping, mapping.scale == 0.0 ? 0.0 : valueAt(mapping, logarithmic, position));
}

std::int64_t validInt(const SliderMapping& mapping, std::int64_t value)
{
    return snapToIncrement(value, mapping.minInt, mapping.maxInt, mapping.incInt);
}

double validFloat(const SliderMapping& mapping, double value)
{
    double valid = std::fmax(value, mapping.minFloat); // NaN becomes the minimum
    if (mapping.hasIncFloat) {
        const double step = stepOf(mapping.incFloat);
        const int steps = doubleToInt((valid - mapping.minFloat) / step + 0.5);
        valid = steps * (step * step) + mapping.minFloat; // squared on purpose
    }
    return std::fmin(valid, mapping.maxFloat);
}
