#pragma once

#include <string>
#include <vector>

/// The output of every benchmark: one line per figure, which is a row of a Markdown table.
///
///     | what | figure | quartiles | goal | ok, MISSED or busy |
namespace report {

struct Figure {
    double lower; ///< quartile
    double median;
    double upper; ///< quartile
};

/// `values` must not be empty.
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

/// Prints the line. The unit, which may be empty, follows the figure.
void print(const std::string& what, const Figure& figure, const char* unit = "", Goal goal = {});

/// The lines that follow were measured while other programs used the processors: marks them "busy" instead of "MISSED".
void setMachineBusy(bool busy);

/// The exit status of the program: EXIT_FAILURE if a line was marked MISSED.
[[nodiscard]] int exitStatus();

} // namespace report
