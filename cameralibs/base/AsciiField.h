#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace cameralibs {

/// Fills a fixed-size field: truncates the text to fit with its NUL, replaces characters that are not printable ASCII
/// by '?' and zeroes the rest.
template <std::size_t Size> void setAsciiField(char (&field)[Size], std::string_view text)
{
    text = text.substr(0, Size - 1);
    char* const end = std::transform(text.begin(), text.end(), std::begin(field),
                                     [](char c) { return c >= ' ' && c <= '~' ? c : '?'; });
    std::fill(end, std::end(field), '\0');
}

} // namespace cameralibs
