#include "cameralibs/devices/aravis/Reaper.h"

#include "tests/cameralibs/api/MemoryLimit.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <pthread.h>
#include <set>
#include <thread>

using orvo::Reaper;

TEST(Reaper, FinishesWhatItTookBeforeItEnds)
{
    std::atomic<int> finished{0};
    {
        Reaper reaper;
        std::promise<void> open;
        const std::shared_future<void> gate = open.get_future().share();
        for (int i = 0; i < 3; ++i) {
            reaper.take([&finished, gate] {
                gate.wait();
                ++finished;
            });
        }
        EXPECT_EQ(finished, 0) << "and keeps nobody waiting";
        open.set_value();
    }
    EXPECT_EQ(finished, 3);
}

TEST(Reaper, FinishedThreadsDoNotPileUp)
{
    constexpr std::size_t kWorks = 50;
    Reaper reaper;
    std::set<pthread_t> threads;
    for (std::size_t i = 0; i < kWorks; ++i) {
        std::promise<pthread_t> thread;
        reaper.take([&thread] { thread.set_value(::pthread_self()); });
        threads.insert(thread.get_future().get());
    }
    // The memory of a thread, by which it is known, serves another one only after the first was joined.
    EXPECT_LT(threads.size(), kWorks / 2);
}

TEST(Reaper, CallerWorksWhereThereAreNoMoreThreads)
{
    if (!MemoryLimit::kPossible)
        GTEST_SKIP() << "no limit with a sanitizer";
    constexpr int kMore = 1000; // threads than there is room for
    const std::thread::id caller = std::this_thread::get_id();
    std::promise<void> open;
    const std::shared_future<void> gate = open.get_future().share();
    std::atomic<int> begun{0};
    int byCaller = 0;
    Reaper reaper;
    int taken = 0;
    {
        const MemoryLimit limit(64U << 20);
        while (byCaller == 0 && taken < kMore) {
            ++taken;
            reaper.take([&] {
                if (std::this_thread::get_id() == caller) {
                    ++byCaller;
                } else {
                    gate.wait();
                }
                ++begun;
            });
        }
    }
    EXPECT_EQ(byCaller, 1);
    open.set_value();
    while (begun < taken)
        std::this_thread::yield();
}
