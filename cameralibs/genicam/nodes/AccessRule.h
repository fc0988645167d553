#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

namespace cameralibs {

/// The current access mode of a node: its own mode and that of the nodes behind it, restricted by ImposedAccessMode,
/// pIsImplemented, pIsAvailable and pIsLocked. Aravis' own function does not take all of these into account.
[[nodiscard]] Orvo::NodeAccessMode accessMode(const NodeMap& nodes, NodeId id);

/// Throws Failure: CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_READABLE.
void requireReadable(const NodeMap& nodes, NodeId id);

/// Throws Failure: CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_WRITABLE.
void requireWritable(const NodeMap& nodes, NodeId id);

} // namespace cameralibs
