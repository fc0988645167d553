#pragma once

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orvo {

/// Finishes, on threads of its own, what would keep a caller waiting for a device that is gone: giving one back takes
/// Aravis several seconds of asking it. Any thread; destroying the reaper waits for all of it.
class Reaper {
public:
    Reaper() = default;
    ~Reaper();
    Reaper(const Reaper&) = delete;
    Reaper& operator=(const Reaper&) = delete;

    void take(std::function<void()> work);

private:
    std::mutex m_mutex;
    std::vector<std::thread> m_threads;
};

} // namespace orvo
