#pragma once

#include "cameralibs/base/Outcome.h"

#include <glib.h>

namespace cameralibs {

/// What was tried when an error came.
enum class Attempted { reading, writing };

/// What an error of Aravis means to a caller of the camera API. Takes the error over and frees it; null gives success.
/// An error of the evaluation of a description, and any of another library, gives CAM_API_STS_GENICAM_ERR.
[[nodiscard]] Outcome takeError(GError* error, Attempted attempted);

/// The same for an error of opening a device or a stream, where another library's error is no GenICam error.
[[nodiscard]] Outcome takeOpenError(GError* error);

} // namespace cameralibs
