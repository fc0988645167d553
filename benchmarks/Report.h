#pragma once

#include <string>
#include <vector>

/// What every benchmark prints: a line for each figure, which is a row of a Markdown table.
///
///     | what | figure | quartiles | goal | ok, MISSED or busy |
namespace report {

struct Figure {
    double lower; ///< quartile
    double median;
    double upper; ///< quartile
};

/// `values` is not empty.
[[nodiscard]] Figure figureOf(std::vector<double> values);

/// A figure without a spread.
[[nodiscard]] inline Figure single(double value)
{
    return {value, value, value};
}

struct Goal {
    enum class Kind { None, AtLeast, AtMost };
    Kind kind = Kind::None;
    double bound = 0;

    [[nodiscard]] bool isMetBy(double value) const;
};

[[nodiscard]] inline Goal atLeast(double bound)
{
    return {Goal::Kind::AtLeast, bound};
}

[[nodiscard]] inline Goal atMost(double bound)
{
    return {Goal::Kind::AtMost, bound};
}

/// Prints the line. The unit, which may be empty, stands behind the figure.
void print(const std::string& what, const Figure& figure, const char* unit = "", Goal goal = {});

/// The lines that follow were measured while other programs had the processors: "busy" instead of "MISSED".
void setMachineBusy(bool busy);

/// What the program ends with: EXIT_FAILURE where a line said MISSED.
[[nodiscard]] int exitStatus();

} // namespace report
