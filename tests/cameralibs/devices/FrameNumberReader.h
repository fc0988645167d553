#pragma once

#include "tests/cameralibs/api/StreamRecorder.h"

#include <cstdint>
#include <optional>
#include <vector>

/// The first rows of an image as the viewer shows them: 32 bits per pixel.
[[nodiscard]] std::vector<std::uint32_t> convert(const Picture& picture, std::uint32_t rows);

/// Reads the six digits in the upper left corner of an image; nullopt if there are none.
[[nodiscard]] std::optional<std::uint64_t> readFrameNumber(const Picture& picture);
