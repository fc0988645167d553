#pragma once

#include <exception>
#include <string_view>

namespace cameralibs {

enum class Severity { warning, info, debug };

/// `level` is the value of ORVO_CAMERA_LOG and may be null: "warning", "info" or "debug"; anything else turns the log
/// off. Aravis, which writes its messages to standard error by itself, does so at the same level, unless ARV_DEBUG says
/// what it shall do. Not to be called by several threads at a time.
void setLogLevel(const char* level);

/// Whether log() would write: asked first where it costs something to compose the text. Any thread.
[[nodiscard]] bool logs(Severity severity) noexcept;

/// Writes a line if the level asks for it: the time, the camera and what happened. It goes through GLib's structured
/// logging, so that a host program with a writer of its own gets it there; GLib's writes to standard error or, where
/// that is the journal, to it. `camera` may be empty. Texts may come from a camera: what is no text is escaped. Any
/// thread.
void log(Severity severity, std::string_view camera, std::string_view text) noexcept;

/// The same with a text that is composed only where it is written. Want of memory costs the line, nothing else.
template <class Compose> void logText(Severity severity, std::string_view camera, Compose&& compose) noexcept
{
    if (!logs(severity))
        return;
    try {
        log(severity, camera, compose());
    } catch (const std::exception&) {
        // A line less.
    }
}

} // namespace cameralibs
