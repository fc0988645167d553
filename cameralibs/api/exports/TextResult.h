#pragma once

#include "camera/OrvoCamApi.h"

#include <cstddef>
#include <string>

namespace cameralibs {

/// The `(char* buffer, uint32_t* size)` convention of the interface; `size` is not null. The text is made valid UTF-8.
/// Throws Failure(CAM_API_STS_BUFFER_TOO_SMALL) where the buffer is, with `*size` the need.
void giveText(const std::string& text, char* buffer, std::uint32_t* size);

/// Into a fixed field: cut to fit with its NUL, characters other than printable ASCII become '?', the rest is zero.
void giveAsciiField(const std::string& text, char* field, std::size_t fieldSize);

} // namespace cameralibs
