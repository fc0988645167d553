#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"

namespace cameralibs::simulated {

class RegisterMemory;

/// What the registers of a built-in camera say about its images.
[[nodiscard]] FrameSettings readSettings(const RegisterMemory& memory);

/// How much brighter the image is than the scene, from exposure and gain.
[[nodiscard]] double brightness(double exposureTime, double gain);

} // namespace cameralibs::simulated
