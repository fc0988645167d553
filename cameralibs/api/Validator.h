#pragma once

#include "cameralibs/api/Description.h"

namespace orvo {

/// Whether a description can be evaluated without harm: a category named Root, categories without a cycle and of
/// bounded depth and size, an evaluation without a cycle, lengths and bit ranges that exist.
/// Throws Failure(CAM_API_STS_GENICAM_ERR) with a text that names the node.
void validate(const Description& description);

// The checks one by one, in their order.
void checkCategories(const Description& description);
void checkEvaluation(const Description& description);

} // namespace orvo
