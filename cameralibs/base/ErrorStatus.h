#pragma once

#include "cameralibs/base/Outcome.h"

#include <glib.h>

namespace cameralibs {

/// The operation that failed.
enum class Attempted { reading, writing };

/// Maps an Aravis error to a status of the camera API. Frees the error; null gives success. Errors from evaluating the
/// description and errors of other libraries give CAM_API_STS_GENICAM_ERR.
[[nodiscard]] Outcome takeError(GError* error, Attempted attempted);

/// The same for opening a device or a stream, where an error of another library is not a GenICam error.
[[nodiscard]] Outcome takeOpenError(GError* error);

} // namespace cameralibs
