// The diagnostic log together with a host program's own logging.

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

/// Exits with 0 if a log writer that is installed after the log level was set receives the line with all its fields.
[[noreturn]] void logToOwnWriter()
{
    Fields kept;
    setLogLevel("warning");
    // GLib accepts one writer per process and aborts at the second one.
    g_log_set_writer_func(keep, &kept, nullptr);
    log(Severity::warning, "Lynx 5", "does not purr");
    const Fields expected = {{"MESSAGE", "warning: Lynx 5: does not purr"},
                             {"PRIORITY", "4"},
                             {"GLIB_DOMAIN", "OrvoCamera"},
                             {"ORVO_CAMERA", "Lynx 5"}};
    std::exit(kept == expected ? 0 : 1); // NOLINT(concurrency-mt-unsafe)
}

} // namespace

TEST(LogDeathTest, LogWriterOfAHostProgramReceivesAllFields)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(logToOwnWriter(), ::testing::ExitedWithCode(0), "");
}

TEST(LogDeathTest, NoLineIsFatalIfWarningsAreFatal)
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
