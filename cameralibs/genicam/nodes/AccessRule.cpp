#include "cameralibs/genicam/nodes/AccessRule.h"

#include "cameralibs/base/Outcome.h"

#include <algorithm>

namespace cameralibs {

using namespace Orvo;

namespace {

/// The access mode if both apply.
NodeAccessMode combined(NodeAccessMode a, NodeAccessMode b)
{
    if (std::min(a, b) <= NODE_ACCESS_MODE_NA)
        return std::min(a, b);
    if (a == NODE_ACCESS_MODE_RW)
        return b;
    if (b == NODE_ACCESS_MODE_RW || a == b)
        return a;
    return NODE_ACCESS_MODE_NA;
}

NodeAccessMode locked(NodeAccessMode mode)
{
    switch (mode) {
    case NODE_ACCESS_MODE_RW:
        return NODE_ACCESS_MODE_RO;
    case NODE_ACCESS_MODE_WO:
        return NODE_ACCESS_MODE_NA;
    default:
        return mode;
    }
}

/// The value of the flag, or `otherwise` if the node does not have it.
bool flag(const NodeMap& nodes, NodeId id, const char* property, bool otherwise)
{
    const NodeId target = nodes.node(id).link(property);
    return target == kNoNode ? otherwise : nodes.rawInteger(target) != 0;
}

/// The node that currently provides the value, or kNoNode if it is the node itself.
NodeId valueNode(const NodeMap& nodes, NodeId id)
{
    const DescribedNode& node = nodes.node(id);
    const NodeId index = node.link("pIndex");
    // In a register, pIndex is part of the address and does not select a value.
    if (index == kNoNode || node.type == NODE_TYPE_REGISTER || node.link("pAddress") != kNoNode)
        return node.link("pValue");
    const std::int64_t chosen = nodes.rawInteger(index);
    const auto indexed = std::find_if(node.references.begin(), node.references.end(), [&](const Reference& reference) {
        return reference.property == "pValueIndexed" && reference.index == chosen;
    });
    if (indexed != node.references.end())
        return indexed->target;
    const auto& constants = node.constantIndices;
    const bool isConstant = std::find(constants.begin(), constants.end(), chosen) != constants.end();
    return isConstant ? kNoNode : node.link("pValueDefault");
}

NodeAccessMode ownMode(const NodeMap& nodes, NodeId id)
{
    const DescribedNode& node = nodes.node(id);
    const NodeId port = node.link("pPort");
    if (port != kNoNode && nodes.node(port).carriedByImages)
        return NODE_ACCESS_MODE_NA;
    return combined(node.ownAccess, node.imposedAccess);
}

NodeAccessMode modeOf(const NodeMap& nodes, NodeId id)
{
    const DescribedNode& node = nodes.node(id);
    if (node.type == NODE_TYPE_CATEGORY)
        return NODE_ACCESS_MODE_RO;
    if (!flag(nodes, id, "pIsImplemented", true))
        return NODE_ACCESS_MODE_NI;
    if (!flag(nodes, id, "pIsAvailable", true))
        return NODE_ACCESS_MODE_NA;
    if (node.type == NODE_TYPE_ENUM_ENTRY)
        return NODE_ACCESS_MODE_RO;
    NodeAccessMode mode = ownMode(nodes, id);
    if (flag(nodes, id, "pIsLocked", false))
        mode = locked(mode);
    const NodeId behind = valueNode(nodes, id);
    return behind == kNoNode ? mode : combined(mode, modeOf(nodes, behind));
}

} // namespace

NodeAccessMode accessMode(const NodeMap& nodes, NodeId id)
{
    nodes.check(id, Question::access);
    return modeOf(nodes, id);
}

void requireReadable(const NodeMap& nodes, NodeId id)
{
    const NodeAccessMode mode = accessMode(nodes, id);
    throwUnless(mode > NODE_ACCESS_MODE_NA, CAM_API_STS_NOT_AVAILABLE);
    throwUnless(mode != NODE_ACCESS_MODE_WO, CAM_API_STS_NOT_READABLE);
}

void requireWritable(const NodeMap& nodes, NodeId id)
{
    const NodeAccessMode mode = accessMode(nodes, id);
    throwUnless(mode > NODE_ACCESS_MODE_NA, CAM_API_STS_NOT_AVAILABLE);
    throwUnless(mode != NODE_ACCESS_MODE_RO, CAM_API_STS_NOT_WRITABLE);
}

} // namespace cameralibs
