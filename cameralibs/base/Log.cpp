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
    const char* priority; ///< as the system log has it
};

// By Severity. What Aravis takes for information includes tables of every stream and whole descriptions, byte by byte.
constexpr LevelRow kLevels[] = {
    {"warning", "all:1", "4"},
    {"info", "all:1", "6"},
    {"debug", "all:2", "7"},
};
constexpr const char* kAravisDefault = "all:0,policies:2";

/// How many of the levels are written.
std::atomic<std::size_t> levels{0};

const LevelRow& rowOf(Severity severity)
{
    return kLevels[static_cast<std::size_t>(severity)];
}

/// A line stays one line, whatever a camera calls itself.
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
    const std::size_t before = levels.exchange(wanted, std::memory_order_relaxed);
    if (wanted != before && std::getenv("ARV_DEBUG") == nullptr) // NOLINT(concurrency-mt-unsafe): nobody changes it
        arv_debug_enable(wanted == 0 ? kAravisDefault : row->aravis);
}

bool logs(Severity severity) noexcept
{
    return static_cast<std::size_t>(severity) < levels.load(std::memory_order_relaxed);
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
        // GLib's own writer holds back what it takes for information, and may end the process at what it takes for a
        // warning. A message always reaches standard error.
        g_log_structured_array(G_LOG_LEVEL_MESSAGE, fields, std::size(fields));
    } catch (const std::exception&) {
        // A line less.
    }
}

} // namespace cameralibs
