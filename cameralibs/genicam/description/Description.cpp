#include "cameralibs/genicam/description/Description.h"

#include <algorithm>
#include <utility>

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

NodeId DescribedNode::link(std::string_view property) const
{
    const auto found = std::find_if(references.begin(), references.end(),
                                    [&](const Reference& reference) { return reference.property == property; });
    return found == references.end() ? kNoNode : found->target;
}

void DescribedNode::setFault(const std::string& reason)
{
    if (fault.empty())
        fault = "[" + name + "] " + reason;
}

NodeId Description::find(const std::string& name) const
{
    const auto found = m_byName.find(name);
    return found == m_byName.end() ? kNoNode : found->second;
}

NodeId Description::add(DescribedNode node)
{
    const auto id = static_cast<NodeId>(m_nodes.size());
    if (node.element != Element::enumEntry) {
        const auto [entry, isNew] = m_byName.try_emplace(node.name, id);
        // If several nodes have the same name, the last one counts. Empty the earlier one, which nothing refers to.
        if (!isNew)
            m_nodes[std::exchange(entry->second, id)] = {};
    }
    m_nodes.push_back(std::move(node));
    return id;
}

void Description::setXml(std::string xml)
{
    m_xml = std::move(xml);
}

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
