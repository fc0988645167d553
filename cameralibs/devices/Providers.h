#pragma once

#include "cameralibs/devices/Device.h"

#include <memory>

namespace cameralibs {

/// The simulated cameras. `environmentValue` is the value of ORVO_SIMULATED_CAMERAS or null: a comma-separated list of
/// the number of built-in cameras (by default three) and paths of description files. An item that is neither is
/// reported on standard error.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeSimulatedProvider(const char* environmentValue);

/// USB3 Vision and GigE Vision cameras, as selected. Every search and every opened camera runs in a separate process.
/// Searching for GigE Vision cameras takes a second.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeTransportProvider(bool usb, bool gige);

} // namespace cameralibs
