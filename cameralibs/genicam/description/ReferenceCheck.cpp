#include "cameralibs/genicam/description/Validator.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr unsigned bitOf(NodeType type)
{
    return 1U << static_cast<unsigned>(type);
}

constexpr unsigned kInteger = bitOf(NODE_TYPE_INTEGER);
constexpr unsigned kFloat = bitOf(NODE_TYPE_FLOAT);
constexpr unsigned kBoolean = bitOf(NODE_TYPE_BOOLEAN);
constexpr unsigned kEnumeration = bitOf(NODE_TYPE_ENUMERATION);
constexpr unsigned kString = bitOf(NODE_TYPE_STRING);
constexpr unsigned kPort = bitOf(NODE_TYPE_PORT);

/// The kinds of node that Aravis can evaluate behind a reference. It reads all others as 0.
struct KindRow {
    std::string_view property;
    unsigned kinds;
};

constexpr KindRow kKinds[] = {
    {"pMin", kInteger | kFloat | kEnumeration},
    {"pMax", kInteger | kFloat | kEnumeration},
    {"pInc", kInteger | kFloat | kEnumeration},
    {"pIsImplemented", kInteger | kFloat | kEnumeration | kBoolean},
    {"pIsAvailable", kInteger | kFloat | kEnumeration | kBoolean},
    {"pIsLocked", kInteger | kFloat | kEnumeration | kBoolean},
    {"pIndex", kInteger | kEnumeration},
    {"pOffset", kInteger | kEnumeration},
    {"pValueIndexed", kInteger | kFloat | kEnumeration},
    {"pValueDefault", kInteger | kFloat | kEnumeration},
    {"pAddress", kInteger | kEnumeration},
    {"pLength", kInteger | kEnumeration},
    {"pVariable", kInteger | kFloat | kEnumeration},
    {"pCommandValue", kInteger | kEnumeration},
    {"pPort", kPort},
};

unsigned kindsBehindValue(NodeType type)
{
    switch (type) {
    case NODE_TYPE_FLOAT:
        return kInteger | kFloat | kEnumeration;
    case NODE_TYPE_STRING:
        return kString;
    default:
        return kInteger | kEnumeration;
    }
}

bool isUsable(const DescribedNode& node, const Reference& reference, const DescribedNode& target)
{
    if (reference.property == "pValue")
        return (kindsBehindValue(node.type) & bitOf(target.type)) != 0;
    const auto* row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const KindRow& candidate) { return reference.property == candidate.property; });
    return row == std::end(kKinds) || (row->kinds & bitOf(target.type)) != 0;
}

} // namespace

void checkReferences(Description& description)
{
    for (NodeId id = 0; id < description.size(); ++id) {
        DescribedNode& node = description.node(id);
        for (const Reference& reference : node.references) {
            // Categories may list missing features; they are skipped when the description is read.
            if (reference.property == "pFeature")
                continue;
            if (reference.target == kNoNode) {
                node.setFault(reference.property + " names \"" + reference.name + "\", which does not exist");
            } else if (!isUsable(node, reference, description.node(reference.target))) {
                node.setFault(reference.property + " names \"" + reference.name + "\", which has no value for that");
            }
        }
    }
}

} // namespace cameralibs
