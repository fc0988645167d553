#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cameralibs {

/// A formula of a SwissKnife or a Converter.
struct Formula {
    enum class Kind { integer, floating };

    std::string text;
    Kind kind = Kind::floating;
    std::string input;                                            ///< "FROM" or "TO" of a converter, otherwise empty
    std::vector<std::pair<std::string, std::string>> variables;   ///< name in the formula and name of the node
    std::vector<std::pair<std::string, std::string>> constants;   ///< name and number
    std::vector<std::pair<std::string, std::string>> expressions; ///< name and formula

    /// Whether the formula has no result for some values. False for conditional formulas: the evaluator computes both
    /// branches, so an error may come from the branch that is not selected.
    [[nodiscard]] bool mayFail() const;

    /// Number of bytes that the evaluator parses, with every expression substituted for its name.
    [[nodiscard]] std::size_t expandedSize() const;
};

struct FormulaResult {
    double number = 0.0;
    std::string error; ///< empty if there is none
    bool divisionByZero = false;
};

/// `variable` returns the value of a node by name.
[[nodiscard]] FormulaResult evaluate(const Formula& formula, double input,
                                     const std::function<double(const std::string&)>& variable);

} // namespace cameralibs
