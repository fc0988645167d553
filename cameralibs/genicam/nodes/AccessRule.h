#pragma once

#include "cameralibs/genicam/nodes/NodeMap.h"

namespace cameralibs {

/// The access mode of a node now: what it and the nodes behind it are by themselves, restricted by what is imposed,
/// not implemented, not available and locked. Aravis' own answer leaves half of that out.
[[nodiscard]] Orvo::NodeAccessMode accessMode(const NodeMap& nodes, NodeId id);

/// Throws Failure: CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_READABLE.
void requireReadable(const NodeMap& nodes, NodeId id);

/// Throws Failure: CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_WRITABLE.
void requireWritable(const NodeMap& nodes, NodeId id);

} // namespace cameralibs
