#pragma once

#include <exception>
#include <string_view>

namespace cameralibs {

enum class Severity { warning, info, debug };

/// `level` is the value of ORVO_CAMERA_LOG: "warning", "info" or "debug". Null and any other value turn the log off.
/// Aravis writes its own messages to standard error; its level follows this one unless ARV_DEBUG is set. Not
/// thread-safe.
void setLogLevel(const char* level);

/// Whether log() would write. Check it first if composing the text is expensive. Thread-safe.
[[nodiscard]] bool logs(Severity severity) noexcept;

/// Writes a line with the time, the camera and the text if the level includes `severity`. The line goes through GLib's
/// structured logging, so a host program can install its own writer; the default one writes to standard error or to the
/// journal. `camera` may be empty. Both texts may come from a camera: bytes that are not text are escaped. Thread-safe.
void log(Severity severity, std::string_view camera, std::string_view text) noexcept;

/// The same with a text that is composed only if it is written. If there is not enough memory, only the line is lost.
template <class Compose> void logText(Severity severity, std::string_view camera, Compose&& compose) noexcept
{
    if (!logs(severity))
        return;
    try {
        log(severity, camera, compose());
    } catch (const std::exception&) {
        // Logging must not fail: the line is lost.
    }
}

} // namespace cameralibs
