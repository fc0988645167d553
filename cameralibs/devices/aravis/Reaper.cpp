#include "Reaper.h"

#include <system_error>
#include <utility>

namespace orvo {

Reaper::~Reaper()
{
    for (Worker& worker : m_workers)
        worker.thread.join();
}

void Reaper::take(std::function<void()> work)
{
    std::list<Worker> made(1);
    made.front().work = std::move(work);
    if (!begin(made))
        made.front().work();
}

bool Reaper::begin(std::list<Worker>& made)
{
    const std::lock_guard lock(m_mutex);
    m_workers.remove_if([](Worker& worker) {
        const bool done = worker.done;
        if (done)
            worker.thread.join();
        return done;
    });
    Worker& worker = made.front();
    try {
        worker.thread = std::thread([&worker] {
            worker.work();
            worker.done = true;
        });
    } catch (const std::system_error&) {
        return false;
    }
    m_workers.splice(m_workers.end(), made);
    return true;
}

} // namespace orvo
