#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"
#include "cameralibs/genicam/description/Validator.h"

#include <algorithm>
#include <string>

namespace cameralibs {

namespace {

/// Aravis allocates more than a hundred bytes per byte of a formula.
constexpr std::size_t kMaxFormula = 65536;
constexpr std::size_t kMaxAllFormulas = 16 * kMaxFormula;

[[noreturn]] void refuse(const DescribedNode& node, const std::string& reason)
{
    throw Failure(Orvo::CAM_API_STS_GENICAM_ERR, "[" + node.name + "] " + reason);
}

/// Returns the total size of a node's formulas in bytes.
std::size_t checkSize(const DescribedNode& node)
{
    std::size_t size = 0;
    for (const Formula& formula : node.formulas) {
        const std::size_t expanded = formula.expandedSize();
        const bool longExpression = std::any_of(formula.expressions.begin(), formula.expressions.end(),
                                                [](const auto& e) { return e.second.size() > kMaxFormula; });
        if (expanded > kMaxFormula || longExpression)
            refuse(node, "The formula has more than " + std::to_string(kMaxFormula) + " bytes");
        size += expanded;
    }
    return size;
}

/// Names such as "A.Max" refer to a limit, but Aravis would use the value instead.
bool asksForLimits(const std::string& variable)
{
    for (const char* suffix : {".Min", ".Max", ".Inc"}) {
        const std::size_t length = std::char_traits<char>::length(suffix);
        if (variable.size() > length && variable.compare(variable.size() - length, length, suffix) == 0)
            return true;
    }
    return false;
}

void checkFormula(DescribedNode& node, const Formula& formula)
{
    for (const auto& [variable, name] : formula.variables) {
        if (asksForLimits(variable))
            node.setFault("The variable \"" + variable + "\" is none that can be evaluated");
    }
    // Any values do for a syntax check. A division by zero only means that these values do not suit the formula.
    const FormulaResult result = evaluate(formula, 1.0, [](const std::string&) { return 1.0; });
    if (!result.error.empty() && !result.divisionByZero)
        node.setFault("\"" + formula.text + "\": " + result.error);
}

} // namespace

void checkFormulas(Description& description)
{
    std::size_t size = 0;
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        size += checkSize(node);
        if (size > kMaxAllFormulas)
            refuse(node, "The formulas up to here have more than " + std::to_string(kMaxAllFormulas) + " bytes");
        for (const Formula& formula : node.formulas) {
            checkFormula(node, formula);
            EvaluationBudget::check();
        }
    }
}

} // namespace cameralibs
