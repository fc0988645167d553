#include "cameralibs/api/exports/LastError.h"

#include "cameralibs/base/Outcome.h"

namespace cameralibs {

namespace {

std::string& text()
{
    thread_local std::string lastText;
    return lastText;
}

} // namespace

const char* lastGenICamError() noexcept
{
    return text().c_str();
}

void setLastGenICamError(const std::string& newText)
{
    text() = errorText(newText);
}

} // namespace cameralibs
