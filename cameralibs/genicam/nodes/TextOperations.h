#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

#include <string>

namespace cameralibs {

// The String, Boolean and Command operations of the camera API. All throw Failure.

[[nodiscard]] std::string readText(const NodeMap& nodes, NodeId id);
void writeText(NodeMap& nodes, NodeId id, const char* text);

[[nodiscard]] bool readBoolean(const NodeMap& nodes, NodeId id);
void writeBoolean(NodeMap& nodes, NodeId id, bool value);

void executeCommand(NodeMap& nodes, NodeId id);

} // namespace cameralibs
