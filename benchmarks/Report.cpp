#include "benchmarks/Report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace report {

namespace {

bool machineBusy = false;
bool anyMissed = false;

/// With at least three digits, without an exponent.
std::string numberText(double value)
{
    const double size = std::abs(value);
    int digits = 0;
    if (size != 0 && size < 100) {
        digits = size < 0.1 ? 4 : size < 1 ? 3 : size < 10 ? 2 : 1;
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return text.data();
}

std::string goalText(const Goal& goal)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s %.3g", goal.kind == Goal::Kind::AtLeast ? "at least" : "at most",
                  goal.bound);
    return text.data();
}

} // namespace

Figure figureOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const auto at = [&values](std::size_t quarter) { return values[(values.size() - 1) * quarter / 4]; };
    return {at(1), at(2), at(3)};
}

bool Goal::isMetBy(double value) const
{
    switch (kind) {
    case Kind::AtLeast:
        return value >= bound;
    case Kind::AtMost:
        return value <= bound;
    case Kind::None:
        break;
    }
    return true;
}

void print(const std::string& what, const Figure& figure, const char* unit, Goal goal)
{
    const bool hasGoal = goal.kind != Goal::Kind::None;
    const char* verdict = hasGoal ? "ok" : "";
    if (!goal.isMetBy(figure.median)) {
        verdict = machineBusy ? "busy" : "**MISSED**";
        anyMissed = anyMissed || !machineBusy;
    }
    std::string spread;
    if (figure.lower < figure.upper) {
        spread = numberText(figure.lower) + " to " + numberText(figure.upper);
    }
    const std::string space = *unit == '\0' ? "" : " ";
    std::printf("| %s | %s | %s | %s | %s |\n", what.c_str(), (numberText(figure.median) + space + unit).c_str(),
                spread.c_str(), hasGoal ? goalText(goal).c_str() : "", verdict);
    std::fflush(stdout);
}

void setMachineBusy(bool busy)
{
    machineBusy = busy;
}

int exitStatus()
{
    return anyMissed ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace report
