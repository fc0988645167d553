#include "cameralibs/api/Signal.h"

#include <chrono>

namespace cameralibs {

void Signal::clear()
{
    const std::lock_guard lock(m_mutex);
    m_set = false;
}

bool Signal::setTogetherWith(std::atomic<bool>& flag)
{
    const std::lock_guard lock(m_mutex);
    if (flag.exchange(true, std::memory_order_acq_rel))
        return false;
    m_set = true;
    m_changed.notify_all();
    return true;
}

void Signal::close(Orvo::CAM_API_STATUS status)
{
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    m_closedStatus = status;
    m_changed.notify_all();
}

Orvo::CAM_API_STATUS Signal::wait(std::uint32_t milliseconds)
{
    std::unique_lock lock(m_mutex);
    const auto ready = [this] { return m_set || m_closed; };
    if (milliseconds == kForever) {
        m_changed.wait(lock, ready);
    } else if (milliseconds != 0) {
        m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds), ready);
    }
    if (m_closed)
        return m_closedStatus;
    return m_set ? Orvo::CAM_API_STS_SUCCESS : Orvo::CAM_API_STS_TIMEOUT;
}

} // namespace cameralibs
