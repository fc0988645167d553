#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"

#include <cstdint>

namespace cameralibs::simulated {

/// Row `y` of a test pattern; the moving ones depend on the frame number.
void paintPattern(const ImageSettings& settings, std::uint64_t frameNumber, std::uint32_t y, Sample* row);

/// Rows of one image with equal results look the same, in every pixel format. Below kPatternRowKinds.
[[nodiscard]] std::uint32_t patternRowKind(const ImageSettings& settings, std::uint64_t frameNumber, std::uint32_t y);

constexpr std::uint32_t kPatternRowKinds = 256;

} // namespace cameralibs::simulated
