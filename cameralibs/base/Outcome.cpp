#include "cameralibs/base/Outcome.h"

#include <cstddef>
#include <string_view>

namespace cameralibs {

namespace {

constexpr std::size_t kMaxLength = 999;
constexpr std::string_view kCutMark = "...";

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string errorText(std::string text)
{
    if (text.size() <= kMaxLength)
        return text;
    std::size_t end = kMaxLength - kCutMark.size();
    while (end > 0 && continuesCharacter(text[end]))
        --end;
    text.resize(end);
    return text.append(kCutMark);
}

} // namespace cameralibs
