#include "features/item/NumberConversion.h"

namespace {

constexpr double kTwoTo31 = 2147483648.0;
constexpr double kTwoTo63 = 9223372036854775808.0;

} // namespace

std::int32_t doubleToInt(double value)
{
    if (value > -kTwoTo31 - 1.0 && value < kTwoTo31)
        return static_cast<std::int32_t>(value);
    return INT32_MIN;
}

std::int64_t doubleToInt64(double value)
{
    if (value >= -kTwoTo63 && value < kTwoTo63)
        return static_cast<std::int64_t>(value);
    return INT64_MIN;
}

double stepOf(double increment)
{
    return increment > 0 ? increment : 1.0;
}

long snapToIncrement(long value, long minimum, long maximum, long increment)
{
    if (maximum <= minimum)
        return maximum; // the maximum takes precedence
    if (value <= minimum)
        return minimum;

    // Unsigned distances from the minimum: they may span the whole range of long.
    const auto distanceOf = [minimum](long number) {
        return static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(minimum);
    };
    const std::uint64_t step = increment > 0 ? static_cast<std::uint64_t>(increment) : 1;
    const std::uint64_t distance = distanceOf(value);
    const std::uint64_t span = distanceOf(maximum);
    const std::uint64_t beyond = distance % step;
    const std::uint64_t lower = distance - beyond;
    if (lower >= span)
        return maximum;
    if (beyond < step - beyond)
        return static_cast<long>(static_cast<std::uint64_t>(minimum) + lower);
    if (step >= span - lower)
        return maximum;
    return static_cast<long>(static_cast<std::uint64_t>(minimum) + lower + step);
}
