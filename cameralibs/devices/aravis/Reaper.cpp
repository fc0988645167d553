#include "Reaper.h"

#include <utility>

namespace orvo {

Reaper::~Reaper()
{
    for (std::thread& thread : m_threads)
        thread.join();
}

void Reaper::take(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_threads.emplace_back(std::move(work));
}

} // namespace orvo
