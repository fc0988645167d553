#include "cameralibs/genicam/EvaluationBudget.h"

#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/nodes/ArvCall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <thread>

using namespace cameralibs;
using namespace std::chrono_literals;

namespace {

constexpr std::uint64_t kMany = 1'000'000;

/// Uses this much processor time.
void work(std::chrono::nanoseconds time)
{
    const auto now = [] {
        timespec t{};
        EXPECT_EQ(::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t), 0);
        return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
    };
    const auto end = now() + time;
    while (now() < end) {
    }
}

template <class Call> Outcome outcomeOf(Call&& call)
{
    try {
        call();
        return {};
    } catch (const Failure& failure) {
        return {failure.status(), failure.text()};
    }
}

/// The text of the failure, empty if there is none.
template <class Call> std::string failureOf(Call&& call)
{
    const Outcome outcome = outcomeOf(call);
    EXPECT_TRUE(outcome.ok() || outcome.status == Orvo::CAM_API_STS_GENICAM_ERR);
    return outcome.text;
}

std::string checked()
{
    return failureOf([] { EvaluationBudget::check(); });
}

std::string expected(std::uint64_t steps)
{
    return failureOf([&] { EvaluationBudget::expect("Node", steps); });
}

} // namespace

TEST(EvaluationBudgetTest, EndsWhenItsTimeIsUp)
{
    EvaluationBudget budget(20ms);
    budget.begin();
    EXPECT_EQ(checked(), "");
    work(21ms);
    EXPECT_EQ(checked(), "The evaluation of the description takes more than 20 ms of processor time");
    EXPECT_EQ(expected(1), checked()) << "and stays so";
}

TEST(EvaluationBudgetTest, DoesNotCountWaiting)
{
    EvaluationBudget budget(20ms);
    budget.begin();
    const auto end = std::chrono::steady_clock::now() + 50ms;
    while (std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_until(end);
    EXPECT_EQ(checked(), "");
}

TEST(EvaluationBudgetTest, ReadsTheClockOnlyAfterManySteps)
{
    const EvaluationBudget budget(20ms);
    EXPECT_EQ(expected(1), "");
    work(21ms);
    EXPECT_EQ(checked(), "") << "so little was expected that no time counts yet";
    EXPECT_EQ(expected(kMany), "");
    work(21ms);
    EXPECT_THAT(checked(), ::testing::StartsWith("[Node] "));
}

TEST(EvaluationBudgetTest, SmallStepsAddUp)
{
    const EvaluationBudget budget(20ms);
    for (int i = 0; i < 10'000; ++i)
        EXPECT_EQ(expected(1), "");
    work(21ms);
    EXPECT_NE(checked(), "");
}

TEST(EvaluationBudgetTest, NestedBudgetReplacesTheOuterOne)
{
    EvaluationBudget outer(20ms);
    outer.begin();
    {
        EvaluationBudget inner(10s);
        inner.begin();
        work(21ms);
        EXPECT_EQ(checked(), "");
    }
    EXPECT_NE(checked(), "");
}

TEST(EvaluationBudgetTest, AppliesToItsThreadOnly)
{
    EvaluationBudget budget(20ms);
    budget.begin();
    work(21ms);
    std::thread([] { EXPECT_EQ(checked(), ""); }).join();
    EXPECT_NE(checked(), "");
}

TEST(EvaluationBudgetTest, CallOfAravisThatExceedsTheBudgetFails)
{
    EvaluationBudget budget(20ms);
    budget.begin();
    const auto fail = [](GError** error, GQuark domain, int code) {
        work(21ms);
        g_set_error_literal(error, domain, code, "from Aravis");
        return 1;
    };
    const auto succeed = [](GError**) {
        work(21ms);
        return 1;
    };
    const auto outOfRange = [&](GError** error) { return fail(error, ARV_GC_ERROR, ARV_GC_ERROR_OUT_OF_RANGE); };
    const auto undefined = [&](GError** error) { return fail(error, ARV_GC_ERROR, ARV_GC_ERROR_PROPERTY_NOT_DEFINED); };
    const auto lost = [&](GError** error) { return fail(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_NOT_CONNECTED); };
    EXPECT_NE(failureOf([&] { (void)arvRead(succeed); }), "");
    EXPECT_NE(failureOf([&] { arvWrite(outOfRange); }), "");
    EXPECT_NE(failureOf([&] { (void)arvReadOr(5, undefined); }), "");
    EXPECT_EQ(outcomeOf([&] { (void)arvRead(lost); }).status, Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING)
        << "a lost camera takes precedence";
}
