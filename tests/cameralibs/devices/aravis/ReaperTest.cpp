#include "cameralibs/devices/aravis/Reaper.h"

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
