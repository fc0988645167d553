#pragma once

#include "cameralibs/genicam/description/Description.h"

namespace cameralibs {

/// Whether a description can be evaluated without harm: a category named Root, categories without a cycle and of
/// bounded depth and size, an evaluation without a cycle, lengths and bit ranges that exist.
/// Throws Failure(CAM_API_STS_GENICAM_ERR) with a text that names the node. What concerns single nodes only is noted as
/// their fault.
void validate(Description& description);

// The checks one by one, in their order.
void checkCategories(const Description& description);
void checkRegisters(Description& description);
void checkReferences(Description& description);
void checkFormulas(Description& description);

/// Last: passes on to each node what was found about those behind it.
void checkEvaluation(Description& description);

} // namespace cameralibs
