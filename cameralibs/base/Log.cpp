#include "cameralibs/base/Log.h"

#include "cameralibs/base/Outcome.h"

#include <arv.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iterator>
#include <string>

namespace cameralibs {

namespace {

struct LevelRow {
    std::string_view name;
    const char* aravis;   ///< for arv_debug_enable: 1 stands for warnings, 2 for information
    const char* priority; ///< of the system log
};

// Indexed by Severity. Aravis stays at warnings for "info": its own information level dumps stream statistics and whole
// descriptions.
constexpr LevelRow kLevels[] = {
    {"warning", "all:1", "4"},
    {"info", "all:1", "6"},
    {"debug", "all:2", "7"},
};
constexpr const char* kAravisDefault = "all:0,policies:2";

/// Number of levels that are written, the most severe first; 0 if the log is off.
std::atomic<std::size_t> enabledLevels{0};

const LevelRow& rowOf(Severity severity)
{
    return kLevels[static_cast<std::size_t>(severity)];
}

/// Names and texts of a camera may contain line breaks; a log entry stays one line.
std::string onOneLine(std::string_view part)
{
    std::string text = errorText(std::string(part));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

GLogField field(const char* key, const std::string& text)
{
    return {key, text.data(), static_cast<gssize>(text.size())};
}

} // namespace

void setLogLevel(const char* level)
{
    const std::string_view name = level == nullptr ? "" : level;
    const auto* const row =
        std::find_if(std::begin(kLevels), std::end(kLevels), [&](const LevelRow& r) { return r.name == name; });
    const std::size_t wanted =
        row == std::end(kLevels) ? 0 : static_cast<std::size_t>(std::distance(std::begin(kLevels), row)) + 1;
    const std::size_t before = enabledLevels.exchange(wanted, std::memory_order_relaxed);
    if (wanted != before && std::getenv("ARV_DEBUG") == nullptr) // NOLINT(concurrency-mt-unsafe): nobody changes it
        arv_debug_enable(wanted == 0 ? kAravisDefault : row->aravis);
}

bool logs(Severity severity) noexcept
{
    return static_cast<std::size_t>(severity) < enabledLevels.load(std::memory_order_relaxed);
}

void log(Severity severity, std::string_view camera, std::string_view text) noexcept
{
    if (!logs(severity))
        return;
    try {
        const LevelRow& row = rowOf(severity);
        const std::string about = onOneLine(camera);
        const std::string line = std::string(row.name) + ": " + about + (about.empty() ? "" : ": ") + onOneLine(text);
        const GLogField fields[] = {
            field("MESSAGE", line),
            {"PRIORITY", row.priority, -1},
            {"GLIB_DOMAIN", "OrvoCamera", -1},
            field("ORVO_CAMERA", about),
        };
        // GLib's default writer suppresses informational entries, and G_DEBUG can make a warning fatal. Entries of
        // level "message" always reach standard error.
        g_log_structured_array(G_LOG_LEVEL_MESSAGE, fields, std::size(fields));
    } catch (const std::exception&) {
        // Logging must not fail: the line is lost.
    }
}

} // namespace cameralibs
