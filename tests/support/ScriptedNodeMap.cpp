#include "tests/support/ScriptedNodeMap.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace scripted {

NodeMap::NodeMap(std::vector<NodeSpec> specs)
{
    m_nodes.reserve(specs.size());
    for (NodeSpec& spec : specs) {
        const std::vector<NodeSpec> entries = std::exchange(spec.entries, {});
        const std::string name = spec.name;
        const std::size_t index = add(std::move(spec), name);
        for (const NodeSpec& entry : entries) {
            const std::size_t child = add(entry, "EnumEntry_" + name + '_' + entry.name);
            m_nodes[index].children.push_back(child);
        }
    }
    for (Node& node : m_nodes)
        resolveFeatures(node);
}

std::size_t NodeMap::add(NodeSpec spec, std::string fullName)
{
    const std::size_t index = m_nodes.size();
    m_byName.emplace(fullName, index);
    m_nodes.push_back({std::move(spec), std::move(fullName), {}});
    return index;
}

void NodeMap::resolveFeatures(Node& category)
{
    if (category.spec.type != Orvo::NODE_TYPE_CATEGORY)
        return;
    category.children.clear();
    for (const std::string& feature : category.spec.features)
        category.children.push_back(find(feature));
}

std::size_t NodeMap::find(const std::string& name) const
{
    const auto found = m_byName.find(name);
    return found == m_byName.end() ? kNone : found->second;
}

NodeSpec NodeMap::get(const std::string& name) const
{
    const std::size_t index = find(name);
    if (index == kNone)
        throw std::out_of_range("no scripted node " + name);
    const Node& node = m_nodes[index];
    NodeSpec spec = node.spec;
    if (spec.type == Orvo::NODE_TYPE_ENUMERATION) {
        for (const std::size_t entry : node.children)
            spec.entries.push_back(m_nodes[entry].spec);
    }
    return spec;
}

void NodeMap::change(const std::string& name, const std::function<void(NodeSpec&)>& change)
{
    NodeSpec spec = get(name);
    change(spec);
    Node& node = m_nodes[find(name)];
    std::vector<NodeSpec> entries = std::exchange(spec.entries, {});
    if (spec.name != node.spec.name || (!entries.empty() && entries.size() != node.children.size()))
        throw std::invalid_argument("a scripted node keeps its name and its entries: " + name);
    for (std::size_t i = 0; i < entries.size(); ++i)
        m_nodes[node.children[i]].spec = std::move(entries[i]);
    node.spec = std::move(spec);
    resolveFeatures(node);
}

std::size_t NodeMap::entryByValue(const Node& enumeration, std::int64_t value) const
{
    const auto found = std::find_if(enumeration.children.begin(), enumeration.children.end(),
                                    [&](std::size_t entry) { return m_nodes[entry].spec.intValue == value; });
    return found == enumeration.children.end() ? kNone : *found;
}

std::size_t NodeMap::entryByName(const Node& enumeration, const std::string& name) const
{
    const auto found = std::find_if(enumeration.children.begin(), enumeration.children.end(),
                                    [&](std::size_t entry) { return m_nodes[entry].spec.name == name; });
    return found == enumeration.children.end() ? kNone : *found;
}

} // namespace scripted
