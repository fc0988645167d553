#pragma once

#include "cameralibs/base/Log.h"

#include <string>

namespace cameralibs::transport {

/// A line for the log of whoever started the transport, which decides what it takes. Any thread.
void note(Severity severity, const std::string& text);

/// How the process ends as soon as the camera is known to be gone, on whatever thread finds out: the library is told,
/// and nothing of Aravis' is given back, which would ask the camera and wait for it.
[[noreturn]] void leaveAsLost(const std::string& reason);

} // namespace cameralibs::transport
