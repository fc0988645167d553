#include "cameralibs/genicam/Validator.h"

#include <algorithm>
#include <string>

namespace orvo {

namespace {

/// Names such as "A.Max" ask for more than a value. Aravis gives the value all the same.
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
    // Any numbers do to see whether a formula is one; only what they are may still be wrong.
    const FormulaResult result = evaluate(formula, 1.0, [](const std::string&) { return 1.0; });
    if (!result.error.empty() && !result.divisionByZero)
        node.setFault("\"" + formula.text + "\": " + result.error);
}

} // namespace

void checkFormulas(Description& description)
{
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        for (const Formula& formula : node.formulas)
            checkFormula(node, formula);
    }
}

} // namespace orvo
