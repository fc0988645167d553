#pragma once

#include "cameralibs/genicam/description/Description.h"

namespace cameralibs {

/// Checks that a description is safe to evaluate: it has a category Root, its categories have no cycle and a limited
/// depth and size, evaluations have no cycle and limited cost, and lengths and bit ranges are valid. Throws
/// Failure(CAM_API_STS_GENICAM_ERR) with the name of the node. A problem of a single node becomes the fault of that
/// node instead.
void validate(Description& description);

/// The last of the checks: the cost of evaluations. It propagates the faults that the others have found to all nodes
/// that depend on a faulty one.
void checkEvaluation(Description& description);

} // namespace cameralibs
