#pragma once

#include "cameralibs/base/Log.h"

#include <string>

namespace cameralibs::transport {

/// Writes a line for the library's log. The library filters by severity. Thread-safe.
void note(Severity severity, const std::string& text);

/// Reports the loss of the camera to the library and exits. Destroys no Aravis object, because that would send commands
/// to the camera and wait for the answers. Thread-safe.
[[noreturn]] void leaveAsLost(const std::string& reason);

} // namespace cameralibs::transport
