#pragma once

#include "camera/OrvoCamApi.h"

/// The name of a status as shown in the message log, or "UNKNOWN". Two names end with a blank. The text lives as long
/// as the program. Thread-safe.
[[nodiscard]] const char* cameraStatusName(Orvo::CAM_API_STATUS status) noexcept;
