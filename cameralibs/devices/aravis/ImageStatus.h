#pragma once

#include "camera/OrvoCamApi.h"

#include <arv.h>

namespace orvo {

/// What the status of a buffer means to whoever waits for its image. `rowPadding` are the bytes between its rows, of
/// which the interface knows none; `lost` tells whether the camera is gone.
[[nodiscard]] Orvo::CAM_API_STATUS imageStatus(ArvBufferStatus status, int rowPadding, bool lost);

} // namespace orvo
