#pragma once

#include <string>

namespace cameralibs {

/// The text of the calling thread's last GenICam error, empty if there was none. Valid until the next
/// setLastGenICamError() on the same thread.
[[nodiscard]] const char* lastGenICamError() noexcept;
void setLastGenICamError(const std::string& text);

} // namespace cameralibs
