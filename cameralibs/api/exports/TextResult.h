#pragma once

#include "camera/OrvoCamApi.h"

#include <cstddef>
#include <string>

namespace cameralibs {

/// Implements the `(char* buffer, uint32_t* size)` convention of the camera API; `size` must not be null. The text is
/// made valid UTF-8. Throws Failure(CAM_API_STS_BUFFER_TOO_SMALL) if the buffer is too small; `*size` is then the
/// required size.
void giveText(const std::string& text, char* buffer, std::uint32_t* size);

/// Fills a fixed-size field: truncates the text to fit with its NUL, replaces characters that are not printable ASCII
/// by '?' and zeroes the rest.
void giveAsciiField(const std::string& text, char* field, std::size_t fieldSize);

} // namespace cameralibs
