#pragma once

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/base/Outcome.h"

namespace cameralibs {

/// The operation that failed.
enum class Attempted { reading, writing };

/// Maps an Aravis error to a status of the camera API; no error gives success. Errors from evaluating the description
/// and errors of other libraries give CAM_API_STS_GENICAM_ERR.
[[nodiscard]] Outcome outcomeOf(const GErrorPointer& error, Attempted attempted);

/// The same for opening a device or a stream, where an error of another library is not a GenICam error.
[[nodiscard]] Outcome outcomeOfOpening(const GErrorPointer& error);

} // namespace cameralibs
