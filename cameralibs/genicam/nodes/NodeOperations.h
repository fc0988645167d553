#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

#include <cstdint>
#include <string>

namespace cameralibs {

// The operations of the camera API that access the device, by node type. All throw Failure.

[[nodiscard]] std::int64_t readInteger(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::int64_t integerMinimum(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::int64_t integerMaximum(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::int64_t integerIncrement(const NodeMap& nodes, NodeId id);
void writeInteger(NodeMap& nodes, NodeId id, std::int64_t value, bool verify);

[[nodiscard]] double readFloat(const NodeMap& nodes, NodeId id);
[[nodiscard]] double floatMinimum(const NodeMap& nodes, NodeId id);
[[nodiscard]] double floatMaximum(const NodeMap& nodes, NodeId id);
[[nodiscard]] bool floatHasIncrement(const NodeMap& nodes, NodeId id);
[[nodiscard]] double floatIncrement(const NodeMap& nodes, NodeId id);
void writeFloat(NodeMap& nodes, NodeId id, double value, bool verify);

[[nodiscard]] std::int64_t readEnumerationNumber(const NodeMap& nodes, NodeId id);
[[nodiscard]] std::string readEnumerationName(const NodeMap& nodes, NodeId id);
void writeEnumerationNumber(NodeMap& nodes, NodeId id, std::int64_t value);
void writeEnumerationName(NodeMap& nodes, NodeId id, const std::string& symbolic);

[[nodiscard]] std::string readText(const NodeMap& nodes, NodeId id);
void writeText(NodeMap& nodes, NodeId id, const char* text);

[[nodiscard]] bool readBoolean(const NodeMap& nodes, NodeId id);
void writeBoolean(NodeMap& nodes, NodeId id, bool value);

void executeCommand(NodeMap& nodes, NodeId id);

} // namespace cameralibs
