#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"

namespace cameralibs::simulated {

class RegisterMemory;

/// Reads the image settings from the registers of a built-in camera.
[[nodiscard]] FrameSettings readSettings(const RegisterMemory& memory);

/// Factor between the brightness of the scene and the image, from exposure and gain.
[[nodiscard]] double brightness(double exposureTime, double gain);

} // namespace cameralibs::simulated
