#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace orvo {

/// Finishes, on threads of its own, what would keep a caller waiting for a device that is gone: giving one back takes
/// Aravis several seconds of asking it. Any thread; destroying the reaper waits for all of it.
class Reaper {
public:
    Reaper() = default;
    ~Reaper();
    Reaper(const Reaper&) = delete;
    Reaper& operator=(const Reaper&) = delete;

    /// Where the system grants no more threads the caller does the work.
    void take(std::function<void()> work);

private:
    struct Worker {
        std::function<void()> work;
        std::thread thread;
        std::atomic<bool> done{false};
    };

    [[nodiscard]] bool begin(std::list<Worker>& made);

    std::mutex m_mutex;
    std::list<Worker> m_workers; ///< the finished ones too, until the next is made
};

} // namespace orvo
