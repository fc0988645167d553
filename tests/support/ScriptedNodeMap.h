#pragma once

#include "tests/support/ScriptedCamera.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

namespace scripted {

/// The nodes of a camera, enumeration entries included, each found by index or name in constant time.
class NodeMap {
public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    struct Node {
        NodeSpec spec;                     // without entries, which are separate nodes
        std::string fullName;              // of an entry: unique, includes its enumeration's name
        std::vector<std::size_t> children; // of a category: its features (`kNone` for unknown names); of an
                                           // enumeration: its entries
    };

    NodeMap() = default;
    explicit NodeMap(std::vector<NodeSpec> specs);

    [[nodiscard]] std::size_t size() const { return m_nodes.size(); }
    [[nodiscard]] Node& at(std::size_t index) { return m_nodes[index]; }
    [[nodiscard]] const Node& at(std::size_t index) const { return m_nodes[index]; }
    [[nodiscard]] std::size_t find(const std::string& name) const;

    /// The node with its entries; the name must exist.
    [[nodiscard]] NodeSpec get(const std::string& name) const;
    /// The number of entries of an enumeration must not change.
    void change(const std::string& name, const std::function<void(NodeSpec&)>& change);

    /// The entry of an enumeration with that value or symbolic name, or `kNone`.
    [[nodiscard]] std::size_t entryByValue(const Node& enumeration, std::int64_t value) const;
    [[nodiscard]] std::size_t entryByName(const Node& enumeration, const std::string& name) const;

private:
    std::size_t add(NodeSpec spec, std::string fullName);
    void resolveFeatures(Node& category);

    std::vector<Node> m_nodes;
    std::unordered_map<std::string, std::size_t> m_byName;
};

/// The nodes of the camera without a script.
[[nodiscard]] std::vector<NodeSpec> defaultNodes();

} // namespace scripted
