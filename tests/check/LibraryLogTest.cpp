#include "check/cameras/LibraryLog.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>

using check::LibraryLog;
using ::testing::ElementsAre;

namespace {

constexpr const char* kVariable = "ORVO_CAMERA_LOG";

/// What reaches standard error while a log is kept that has these lines.
std::string shownOf(const char* lines)
{
    ::testing::internal::CaptureStderr();
    {
        const LibraryLog log;
        std::fputs(lines, stderr);
    }
    std::fputs("after\n", stderr);
    return ::testing::internal::GetCapturedStderr();
}

class LibraryLogTest : public ::testing::Test {
protected:
    ~LibraryLogTest() override { ::unsetenv(kVariable); } // NOLINT(concurrency-mt-unsafe)
};

} // namespace

TEST_F(LibraryLogTest, WarningsAboutASearchAreFailures)
{
    ::unsetenv(kVariable); // NOLINT(concurrency-mt-unsafe)
    const LibraryLog log;
    EXPECT_STREQ(std::getenv(kVariable), "warning"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_THAT(log.failedSearches(), ElementsAre());
    std::fputs("OrvoCamera-Message: 21:51:47.815: warning: No real cameras are listed: no such program\n"
               "OrvoCamera-Message: 21:51:47.816: warning: Maker: The search for cameras ended early\n"
               "OrvoCamera-Message: 21:51:47.817: info: The search for cameras ended early\n"
               "OrvoCamera-Message: 21:51:47.818: warning: The search for cameras ended early\n",
               stderr);
    EXPECT_THAT(log.failedSearches(),
                ElementsAre("No real cameras are listed: no such program", "The search for cameras ended early"));
}

TEST_F(LibraryLogTest, LogIsShownIfTheUserAsksForIt)
{
    ::unsetenv(kVariable); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(shownOf("a warning\n"), "after\n");
    ::setenv(kVariable, "info", 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(shownOf("a warning\n"), "a warning\nafter\n");
    EXPECT_STREQ(std::getenv(kVariable), "info"); // NOLINT(concurrency-mt-unsafe)
}
