#pragma once

#include "display/DispThread.h"
#include "tests/support/Patience.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Waits without letting the GUI thread handle its events.
[[nodiscard]] bool waitBlocked(const std::function<bool()>& condition);

/// recorded::waitRounds() without letting the GUI thread handle its events.
[[nodiscard]] bool waitRoundsBlocked(int rounds = recorded::kRoundsOfAnImage);

[[nodiscard]] int conversions();

/// A started stream that records the signals of its display thread, on that thread.
class RunningStream {
public:
    struct Rates {
        double capture = 0;
        double display = 0;
        int imagesBefore = 0; // emitted since the previous report
        std::chrono::steady_clock::time_point at;
    };

    RunningStream();

    void start();

    [[nodiscard]] WindowDriver& driver() { return m_driver; }
    [[nodiscard]] DispThread* thread() { return m_driver.window().findChild<DispThread*>(); }
    [[nodiscard]] int images() const { return m_images; }
    [[nodiscard]] std::vector<Rates> rates() const;
    [[nodiscard]] bool waitForReports(std::size_t count) const;

private:
    mutable std::mutex m_mutex; // declared before m_driver, whose thread writes the members below
    std::vector<Rates> m_rates;
    int m_imagesReported = 0;
    std::atomic<int> m_images{0};
    WindowDriver m_driver;
};

/// A camera that delivers an image every few milliseconds until it goes out of scope.
class Feeder {
public:
    explicit Feeder(int periodMs);
    ~Feeder();
    Q_DISABLE_COPY_MOVE(Feeder)

    [[nodiscard]] int delivered() const { return m_frameNumber; }

private:
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_frameNumber{0};
    std::thread m_thread;
};

/// Records when the operations are called, from its construction on.
///
/// On a busy machine a thread is late, never early: only minimum times between two calls are reliable.
class CallTimes {
public:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        std::string operation;
        Clock::time_point at;
    };

    explicit CallTimes(const std::vector<std::string>& operations);

    [[nodiscard]] std::vector<Entry> entries() const;
    [[nodiscard]] int count(const std::string& operation) const;

private:
    struct Notes {
        std::mutex mutex;
        std::vector<Entry> entries;
    };
    std::shared_ptr<Notes> m_notes = std::make_shared<Notes>(); // the hooks outlive this object
};
