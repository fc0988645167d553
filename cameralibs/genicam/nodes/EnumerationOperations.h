#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

#include <string>

namespace cameralibs {

// The Enumeration operations of the camera API that access the device. All throw Failure.

[[nodiscard]] std::int64_t readEnumerationNumber(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::string readEnumerationName(const NodeMap& nodes, NodeId id);
void writeEnumerationNumber(NodeMap& nodes, NodeId id, std::int64_t value);
void writeEnumerationName(NodeMap& nodes, NodeId id, const std::string& symbolic);

} // namespace cameralibs
