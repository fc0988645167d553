#pragma once

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/nodes/NodeMap.h"

namespace cameralibs {

/// The current access mode of a node: its own mode and that of the nodes behind it, restricted by ImposedAccessMode,
/// pIsImplemented, pIsAvailable and pIsLocked. Aravis' own function does not take all of these into account.
[[nodiscard]] Orvo::NodeAccessMode accessMode(const NodeMap& nodes, NodeId id);

/// Throws Failure: CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_READABLE.
void requireReadable(const NodeMap& nodes, NodeId id);

/// Throws Failure: CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_NOT_WRITABLE.
void requireWritable(const NodeMap& nodes, NodeId id);

/// Reads a minimum, maximum or increment. This may succeed even if the node itself is not readable; if it fails, the
/// node's own status takes precedence.
template <class Limit> auto limitOf(const NodeMap& nodes, NodeId id, Limit&& limit)
{
    try {
        nodes.check(id, Question::range);
        return limit();
    } catch (const Failure& failure) {
        if (failure.status() != Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING)
            requireReadable(nodes, id);
        throw;
    }
}

} // namespace cameralibs
