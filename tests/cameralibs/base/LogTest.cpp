// The diagnostic log beside a host program's own logging.

#include "cameralibs/base/Log.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

using namespace cameralibs;

namespace {

using Fields = std::map<std::string, std::string>;

GLogWriterOutput keep(GLogLevelFlags, const GLogField* fields, gsize count, void* kept)
{
    for (gsize i = 0; i < count; ++i) {
        const auto* const text = static_cast<const char*>(fields[i].value);
        const auto length = fields[i].length < 0 ? std::strlen(text) : static_cast<std::size_t>(fields[i].length);
        (*static_cast<Fields*>(kept))[fields[i].key] = std::string(text, length);
    }
    return G_LOG_WRITER_HANDLED;
}

/// Ends the process: 0 where a writer that is set after the log was opened gets the line with all that is known.
[[noreturn]] void logToOwnWriter()
{
    Fields kept;
    setLogLevel("warning");
    // GLib takes one writer per process and ends it at the second.
    g_log_set_writer_func(keep, &kept, nullptr);
    log(Severity::warning, "Lynx 5", "does not purr");
    const Fields expected = {{"MESSAGE", "warning: Lynx 5: does not purr"},
                             {"PRIORITY", "4"},
                             {"GLIB_DOMAIN", "OrvoCamera"},
                             {"ORVO_CAMERA", "Lynx 5"}};
    std::exit(kept == expected ? 0 : 1); // NOLINT(concurrency-mt-unsafe)
}

} // namespace

TEST(LogDeathTest, AHostProgramMayHaveALogWriterOfItsOwnAndGetsEverythingThere)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(logToOwnWriter(), ::testing::ExitedWithCode(0), "");
}

TEST(LogDeathTest, NoLineEndsAHostProgramThatEndsAtItsOwnWarnings)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setLogLevel("debug");
            g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
            log(Severity::warning, "", "something");
            log(Severity::debug, "", "something else");
            std::exit(0); // NOLINT(concurrency-mt-unsafe)
        },
        ::testing::ExitedWithCode(0), "warning: something\n.*debug: something else");
}
