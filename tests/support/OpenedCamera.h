#pragma once

#include "camera/OrvoCamApi.h"

/// The camera that the program opened last: linked into a program, or preloaded, it notes what Cam_Open gave. A test
/// can then reach the same camera beside the viewer, as a second hand on it.
namespace opened {

/// 0 before the first.
[[nodiscard]] Orvo::CAM_HANDLE camera();

/// Executes a command, or sets an enumeration to an entry, by the names of the camera's features.
[[nodiscard]] Orvo::CAM_API_STATUS execute(const char* command);
[[nodiscard]] Orvo::CAM_API_STATUS set(const char* enumeration, const char* entry);
[[nodiscard]] Orvo::CAM_API_STATUS set(const char* integer, std::int64_t value);

} // namespace opened
