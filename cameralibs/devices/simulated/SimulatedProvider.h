#pragma once

#include "cameralibs/devices/Device.h"

#include <memory>

namespace cameralibs {

/// The simulated cameras. `environmentValue` is that of ORVO_SIMULATED_CAMERAS, null where it is not set: a number of
/// built-in cameras (three without one) and paths of description files, separated by commas. A part that is neither
/// gives a line on standard error.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeSimulatedProvider(const char* environmentValue);

} // namespace cameralibs
