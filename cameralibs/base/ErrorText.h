#pragma once

#include <string>

namespace cameralibs {

/// A text that tells of an error, cut to 1,000 bytes with its closing NUL. UTF-8 stays UTF-8.
[[nodiscard]] std::string errorText(std::string text);

} // namespace cameralibs
