#include "cameralibs/genicam/description/Dependencies.h"

#include <string_view>

namespace cameralibs {

namespace {

/// Answering `question` needs the answer to `asked` of the node behind `property`.
struct DependencyRow {
    Question question;
    std::string_view property;
    Question asked;
};

constexpr DependencyRow kDependencies[] = {
    {Question::value, "pValue", Question::value},
    {Question::value, "pIndex", Question::value},
    {Question::value, "pValueIndexed", Question::value},
    {Question::value, "pValueDefault", Question::value},
    {Question::value, "pOffset", Question::value},
    {Question::value, "pAddress", Question::value},
    {Question::value, "pLength", Question::value},
    {Question::value, "pPort", Question::value},
    {Question::value, "pVariable", Question::value},
    {Question::value, "pCommandValue", Question::value},
    {Question::range, "pMin", Question::value},
    {Question::range, "pMax", Question::value},
    {Question::range, "pInc", Question::value},
    {Question::range, "pLength", Question::value},
    {Question::range, "pVariable", Question::value},
    {Question::range, "pValue", Question::range},
    {Question::access, "pIsImplemented", Question::value},
    {Question::access, "pIsAvailable", Question::value},
    {Question::access, "pIsLocked", Question::value},
    {Question::access, "pIndex", Question::value},
    {Question::access, "pValue", Question::access},
    {Question::access, "pValueIndexed", Question::access},
    {Question::access, "pValueDefault", Question::access},
};

} // namespace

std::vector<Evaluation> dependencies(const Description& description, const Evaluation& evaluation)
{
    std::vector<Evaluation> result;
    for (const Reference& reference : description.node(evaluation.node).references) {
        if (reference.target == kNoNode)
            continue;
        for (const DependencyRow& row : kDependencies) {
            if (row.question == evaluation.question && reference.property == row.property)
                result.push_back({reference.target, row.asked});
        }
    }
    return result;
}

} // namespace cameralibs
