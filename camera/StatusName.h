#pragma once

#include "camera/OrvoCamApi.h"

/// The name of a status as the message log shows it, "UNKNOWN" for a value without one. Two names end in a blank.
/// The text lives as long as the program; any thread.
[[nodiscard]] const char* cameraStatusName(Orvo::CAM_API_STATUS status) noexcept;
