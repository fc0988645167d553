#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

namespace cameralibs {

// The Integer operations of the camera API. All throw Failure.

[[nodiscard]] std::int64_t readInteger(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::int64_t integerMinimum(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::int64_t integerMaximum(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::int64_t integerIncrement(const NodeMap& nodes, NodeId id);
void writeInteger(NodeMap& nodes, NodeId id, std::int64_t value, bool verify);

} // namespace cameralibs
