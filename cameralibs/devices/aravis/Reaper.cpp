#include "Reaper.h"

#include <utility>

namespace orvo {

Reaper::~Reaper()
{
    for (Worker& worker : m_workers)
        worker.thread.join();
}

void Reaper::take(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_workers.remove_if([](Worker& worker) {
        const bool done = worker.done;
        if (done)
            worker.thread.join();
        return done;
    });
    std::list<Worker> made(1);
    Worker& worker = made.front();
    worker.thread = std::thread([&worker, work = std::move(work)] {
        work();
        worker.done = true;
    });
    m_workers.splice(m_workers.end(), made);
}

} // namespace orvo
