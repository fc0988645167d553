#pragma once

#include "cameralibs/api/SlotRing.h"
#include "cameralibs/genicam/NodeMap.h"

namespace orvo {

/// How large the camera's images are by its features. Throws Failure: without a payload size there are no images.
[[nodiscard]] SlotRing::ImageSize readImageSize(const NodeMap& nodes);

} // namespace orvo
