#pragma once

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/nodes/AccessRule.h"

namespace cameralibs {

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
