#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

namespace cameralibs {

// The Float operations of the camera API. All throw Failure.

[[nodiscard]] double readFloat(const NodeMap& nodes, NodeId id);
[[nodiscard]] double floatMinimum(const NodeMap& nodes, NodeId id);
[[nodiscard]] double floatMaximum(const NodeMap& nodes, NodeId id);
[[nodiscard]] bool floatHasIncrement(const NodeMap& nodes, NodeId id);
[[nodiscard]] double floatIncrement(const NodeMap& nodes, NodeId id);
void writeFloat(NodeMap& nodes, NodeId id, double value, bool verify);

} // namespace cameralibs
