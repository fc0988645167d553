#pragma once

#include "camera/OrvoCamApi.h"

/// The camera that the program opened last: linked or preloaded, it records the handle that Cam_Open returns, so that a
/// test can operate the same camera behind the viewer's back.
namespace opened {

/// 0 before the first one is opened.
[[nodiscard]] Orvo::CAM_HANDLE camera();

/// Executes a command, or sets an enumeration to an entry, by the names of the camera's features.
[[nodiscard]] Orvo::CAM_API_STATUS execute(const char* command);
[[nodiscard]] Orvo::CAM_API_STATUS set(const char* enumeration, const char* entry);
[[nodiscard]] Orvo::CAM_API_STATUS set(const char* integer, std::int64_t value);

} // namespace opened
