#include "cameralibs/api/exports/TextResult.h"

#include "cameralibs/base/Outcome.h"

#include <glib.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace cameralibs {

namespace {

// Registers pad texts with NUL: the text ends at the first one.
std::string validUtf8(const std::string& text)
{
    const std::size_t length = std::min(text.find('\0'), text.size());
    const std::unique_ptr<char, decltype(&g_free)> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(length)),
                                                         g_free);
    return valid.get();
}

} // namespace

void giveText(const std::string& text, char* buffer, std::uint32_t* size)
{
    const std::string valid = validUtf8(text);
    const auto need = static_cast<std::uint32_t>(valid.size() + 1);
    const std::uint32_t capacity = *size;
    *size = need;
    if (buffer == nullptr)
        return;
    throwUnless(capacity >= need, Orvo::CAM_API_STS_BUFFER_TOO_SMALL);
    std::memcpy(buffer, valid.c_str(), need);
}

void giveAsciiField(const std::string& text, char* field, std::size_t fieldSize)
{
    std::memset(field, 0, fieldSize);
    const std::size_t length = std::min(text.size(), fieldSize - 1);
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length), field,
                   [](char c) { return g_ascii_isprint(c) ? c : '?'; });
}

} // namespace cameralibs
