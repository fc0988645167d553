#pragma once

#include "camera/OrvoCamApi.h"
#include "cameralibs/transport/Protocol.h"

#include <vector>

namespace cameralibs::transport {

/// Leaves Aravis the wanted kinds of cameras only; newer versions know of more than there are here.
void enableKinds(bool usb, bool gige);

/// The cameras of these kinds. Looking for GigE Vision cameras takes a second.
[[nodiscard]] std::vector<Listed> listCameras(bool usb, bool gige);

} // namespace cameralibs::transport
