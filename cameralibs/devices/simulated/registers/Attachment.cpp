#include "cameralibs/devices/simulated/registers/Attachment.h"

namespace cameralibs::simulated {

bool Attachment::isPlugged() const
{
    const std::lock_guard lock(m_mutex);
    return m_plugged || (m_back.has_value() && Clock::now() >= *m_back);
}

void Attachment::unplug(unsigned seconds)
{
    const std::lock_guard lock(m_mutex);
    m_plugged = false;
    m_back.reset();
    if (seconds > 0)
        m_back = Clock::now() + std::chrono::seconds(seconds);
}

NonVolatile Attachment::memory() const
{
    const std::lock_guard lock(m_mutex);
    return m_memory;
}

void Attachment::setMemory(const NonVolatile& memory)
{
    const std::lock_guard lock(m_mutex);
    m_memory = memory;
}

} // namespace cameralibs::simulated
