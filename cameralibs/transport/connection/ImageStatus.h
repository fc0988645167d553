#pragma once

#include "camera/OrvoCamApi.h"

#include <arv.h>

namespace cameralibs::transport {

/// What the status of a buffer means to whoever waits for its image. `rowPadding` are the bytes between its rows, of
/// which the interface knows none.
[[nodiscard]] Orvo::CAM_API_STATUS imageStatus(ArvBufferStatus status, int rowPadding);

} // namespace cameralibs::transport
