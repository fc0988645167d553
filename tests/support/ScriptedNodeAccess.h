#pragma once

#include "tests/support/ScriptedWorld.h"

#include <initializer_list>

namespace scripted {

[[nodiscard]] inline bool isUnavailable(Orvo::NodeAccessMode access)
{
    return access == Orvo::NODE_ACCESS_MODE_NI || access == Orvo::NODE_ACCESS_MODE_NA;
}

/// Common part of the node operations: checks camera, node and scripted failures, then calls `body(NodeMap::Node&)`.
template <typename Body>
Orvo::CAM_API_STATUS nodeCall(const char* operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                              std::initializer_list<Argument> arguments, Body body)
{
    return world().call(operation, arguments, [&](auto&) -> Orvo::CAM_API_STATUS {
        World& w = world();
        if (const Orvo::CAM_API_STATUS status = w.checkCamera(camera))
            return status;
        // Handles of earlier openings wrap to large indices.
        const Orvo::CAM_NODE_HANDLE index = node - w.nodeHandleBase - 1;
        if (index >= w.nodes.size())
            return Orvo::CAM_API_STS_INVALID_NODE_HANDLE;
        NodeMap::Node& found = w.nodes.at(index);
        if (!w.nodeFailures.empty()) {
            const auto failure = w.nodeFailures.find({operation, found.fullName});
            if (failure != w.nodeFailures.end())
                return failure->second;
        }
        return body(found);
    });
}

/// Updates the results of the utility operations after a write to a node.
void followNode(const NodeMap::Node& node);

} // namespace scripted
