#pragma once

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/nodes/AccessRule.h"

namespace cameralibs {

/// A minimum, maximum or increment: told even for a node that cannot be read, where that is possible; where it is not,
/// the node's own status comes first.
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
