#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cameralibs {

/// A formula of a SwissKnife or Converter.
struct Formula {
    enum class Kind { integer, floating };

    std::string text;
    Kind kind = Kind::floating;
    std::string input;                                            ///< "FROM" or "TO" of a converter, else empty
    std::vector<std::pair<std::string, std::string>> variables;   ///< name in the formula, name of the node
    std::vector<std::pair<std::string, std::string>> constants;   ///< name, number
    std::vector<std::pair<std::string, std::string>> expressions; ///< name, formula

    /// Whether there are values for which it has no result. Not where it chooses: the evaluator computes what is not
    /// chosen as well, so that its error says nothing.
    [[nodiscard]] bool mayFail() const;

    /// The bytes that the evaluator reads: with every expression in the place of its name.
    [[nodiscard]] std::size_t expandedSize() const;
};

struct FormulaResult {
    double number = 0.0;
    std::string error; ///< empty without one
    bool divisionByZero = false;
};

/// `variable` gives the number behind a node's name.
[[nodiscard]] FormulaResult evaluate(const Formula& formula, double input,
                                     const std::function<double(const std::string&)>& variable);

} // namespace cameralibs
