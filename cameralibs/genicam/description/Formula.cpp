#include "cameralibs/genicam/description/Formula.h"

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/genicam/AravisInternals.h"

#include <arv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string_view>

namespace cameralibs {

namespace {

/// Converts to the nearest integer in range; a plain cast would be undefined behaviour.
std::int64_t toInteger(double number)
{
    constexpr double kLimit = 9223372036854775808.0;
    if (std::isnan(number))
        return 0;
    if (number >= kLimit)
        return std::numeric_limits<std::int64_t>::max();
    return number < -kLimit ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(number);
}

void setVariable(ArvEvaluator* evaluator, Formula::Kind kind, const std::string& name, double number)
{
    if (kind == Formula::Kind::integer) {
        arv_evaluator_set_int64_variable(evaluator, name.c_str(), toInteger(number));
    } else {
        arv_evaluator_set_double_variable(evaluator, name.c_str(), number);
    }
}

} // namespace

bool Formula::mayFail() const
{
    std::string all = text;
    for (const auto& [name, expression] : expressions)
        all += expression;
    return all.find_first_of("/%") != std::string::npos && all.find('?') == std::string::npos;
}

std::size_t Formula::expandedSize() const
{
    std::map<std::string_view, std::size_t> sizes;
    for (const auto& [name, expression] : expressions)
        sizes[name] = std::max(sizes[name], expression.size());
    std::size_t size = text.size();
    const auto isNamePart = [](char c) { return g_ascii_isalnum(c) || c == '_' || c == '.'; };
    for (auto at = text.begin(); at != text.end();) {
        const auto begin = std::find_if(at, text.end(), isNamePart);
        at = std::find_if_not(begin, text.end(), isNamePart);
        const auto found = sizes.find(std::string_view(text).substr(static_cast<std::size_t>(begin - text.begin()),
                                                                    static_cast<std::size_t>(at - begin)));
        if (found != sizes.end())
            size += found->second;
    }
    return size;
}

FormulaResult evaluate(const Formula& formula, double input, const std::function<double(const std::string&)>& variable)
{
    const GObjectPointer<ArvEvaluator> evaluator(arv_evaluator_new(formula.text.c_str()));
    for (const auto& [name, expression] : formula.expressions)
        arv_evaluator_set_sub_expression(evaluator.get(), name.c_str(), expression.c_str());
    for (const auto& [name, constant] : formula.constants)
        arv_evaluator_set_constant(evaluator.get(), name.c_str(), constant.c_str());
    for (const auto& [name, node] : formula.variables)
        setVariable(evaluator.get(), formula.kind, name, variable(node));
    if (!formula.input.empty())
        setVariable(evaluator.get(), formula.kind, formula.input, input);
    GErrorPointer error;
    FormulaResult result;
    if (formula.kind == Formula::Kind::integer) {
        result.number = static_cast<double>(arv_evaluator_evaluate_as_int64(evaluator.get(), error.out()));
    } else {
        result.number = arv_evaluator_evaluate_as_double(evaluator.get(), error.out());
    }
    if (error) {
        result.error = error->message;
        result.divisionByZero = isDivisionByZero(*error.get());
    }
    return result;
}

} // namespace cameralibs
