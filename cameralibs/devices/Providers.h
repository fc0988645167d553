#pragma once

#include "cameralibs/devices/Device.h"

#include <memory>

namespace cameralibs {

/// The simulated cameras. `environmentValue` is that of ORVO_SIMULATED_CAMERAS, null where it is not set: a number of
/// built-in cameras (three without one) and paths of description files, separated by commas. A part that is neither
/// gives a line on standard error.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeSimulatedProvider(const char* environmentValue);

/// USB3 Vision and GigE Vision cameras, either kind where it is wanted; every search and every opened camera in a
/// process of its own. Looking for GigE Vision cameras takes a second.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeTransportProvider(bool usb, bool gige);

} // namespace cameralibs
