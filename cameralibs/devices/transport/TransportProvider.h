#pragma once

#include "cameralibs/devices/Device.h"

#include <memory>

namespace cameralibs {

/// USB3 Vision and GigE Vision cameras, either kind where it is wanted; every search and every opened camera in a
/// process of its own. Looking for GigE Vision cameras takes a second.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeTransportProvider(bool usb, bool gige);

} // namespace cameralibs
