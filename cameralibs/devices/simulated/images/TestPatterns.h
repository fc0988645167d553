#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"

#include <cstdint>

namespace cameralibs::simulated {

/// Paints row `y` of a test pattern. Moving patterns depend on the frame number.
void paintPattern(const ImageSettings& settings, std::uint64_t frameNumber, std::uint32_t y, Sample* row);

/// Rows of an image with the same kind are identical in every pixel format, so each kind is packed only once. Less than
/// kPatternRowKinds.
[[nodiscard]] std::uint32_t patternRowKind(const ImageSettings& settings, std::uint64_t frameNumber, std::uint32_t y);

constexpr std::uint32_t kPatternRowKinds = 256;

} // namespace cameralibs::simulated
