#pragma once

#include "cameralibs/devices/simulated/file/DescriptionFile.h"

#include <cstddef>
#include <vector>

namespace cameralibs::simulated {

/// The simulated cameras that a value of ORVO_SIMULATED_CAMERAS asks for.
struct CameraList {
    std::size_t builtIn = 0;
    std::vector<DescriptionFile> files;
};

/// `value` may be null. Says on standard error which part cannot be understood or read.
[[nodiscard]] CameraList readCameraList(const char* value);

} // namespace cameralibs::simulated
