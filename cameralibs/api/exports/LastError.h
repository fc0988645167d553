#pragma once

#include <string>

namespace cameralibs {

/// The text behind the calling thread's last GenICam error; empty before the first. It holds until the next call of
/// setLastGenICamError on the same thread.
[[nodiscard]] const char* lastGenICamError() noexcept;
void setLastGenICamError(const std::string& text);

} // namespace cameralibs
