#include "cameralibs/genicam/description/Description.h"

#include <algorithm>
#include <utility>

namespace cameralibs {

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

} // namespace cameralibs
