#include "check/machine/Command.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>

#include <sys/time.h>

using namespace check;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kPatience = 60s;

std::optional<std::string> outputOfShell(const std::string& script, std::chrono::milliseconds limit = kPatience)
{
    return outputOf({"/bin/sh", "-c", script}, limit);
}

} // namespace

TEST(CommandTest, OutputOfASuccessfulProgramIsReturned)
{
    EXPECT_EQ(outputOfShell("echo one; echo error >&2; sleep 0.1; echo two"), "one\ntwo\n");
    EXPECT_EQ(outputOfShell("cat; echo \"x$HOME\""), "x\n") << "neither input nor environment are passed on";
}

TEST(CommandTest, FailureHasNoOutput)
{
    EXPECT_EQ(outputOfShell("echo one; exit 1"), std::nullopt);
    EXPECT_EQ(outputOfShell("echo one; kill -9 $$"), std::nullopt);
    EXPECT_EQ(outputOf({"/no/such/program"}, kPatience), std::nullopt);
}

TEST(CommandTest, ProgramThatDoesNotEndIsKilled)
{
    for (const char* const script : {"echo one; exec sleep 1000", "exec >/dev/null; exec sleep 1000"}) {
        const Clock::time_point begin = Clock::now();
        EXPECT_EQ(outputOfShell(script, 200ms), std::nullopt) << script;
        EXPECT_LT(Clock::now() - begin, kPatience);
    }
}

TEST(CommandTest, EndlessOutputIsCutOff)
{
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(outputOf({"/usr/bin/yes"}, kPatience), std::nullopt);
    EXPECT_LT(Clock::now() - begin, kPatience);
}

TEST(CommandTest, SignalsDoNotEndTheReading)
{
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {}; // without SA_RESTART
    ::sigaction(SIGALRM, &action, &before);
    const itimerval often = {{0, 5000}, {0, 5000}};
    const itimerval never = {};
    ::setitimer(ITIMER_REAL, &often, nullptr);
    EXPECT_EQ(outputOfShell("sleep 0.2; echo one; exec >/dev/null; sleep 0.1"), "one\n");
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &before, nullptr);
}
