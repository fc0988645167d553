#pragma once

#include "camera/OrvoCamApi.h"
#include "cameralibs/transport/Protocol.h"

#include <vector>

namespace cameralibs::transport {

/// Enables these kinds of cameras in Aravis and disables all others. Newer versions support more kinds.
void enableKinds(bool usb, bool gige);

/// Searches for cameras of these kinds. With GigE Vision this takes one to two seconds.
[[nodiscard]] std::vector<Listed> listCameras(bool usb, bool gige);

} // namespace cameralibs::transport
