#include "cameralibs/devices/simulated/images/Acquisition.h"

#include <algorithm>

namespace cameralibs::simulated {

namespace {

// Number of triggers that can be pending. Further ones are lost.
constexpr std::uint32_t kMaxTriggers = 16;

// A camera that is late by no more than this catches up, so that the average rate stays exact. If it is later, it
// continues from the current time.
constexpr std::chrono::milliseconds kMaxLag(250);

Acquisition::Clock::duration seconds(double value)
{
    return std::chrono::duration_cast<Acquisition::Clock::duration>(std::chrono::duration<double>(value));
}

} // namespace

void Acquisition::configure(const FrameSettings& settings)
{
    const std::lock_guard lock(m_mutex);
    if (m_scheduled && settings.trigger == TriggerKind::None) {
        // A new period is measured from the last image.
        m_due += seconds(settings.period) - seconds(m_settings.period);
    }
    if (settings.trigger != m_settings.trigger) {
        m_scheduled = false;
        m_triggers = 0;
    }
    m_settings = settings;
    m_changed.notify_all();
}

void Acquisition::start()
{
    const std::lock_guard lock(m_mutex);
    m_active = true;
    m_scheduled = false;
    m_framesSent = 0;
    m_triggers = 0;
    m_changed.notify_all();
}

void Acquisition::stop()
{
    const std::lock_guard lock(m_mutex);
    m_active = false;
    m_changed.notify_all();
}

void Acquisition::trigger()
{
    const std::lock_guard lock(m_mutex);
    if (!m_active || m_settings.trigger != TriggerKind::Software)
        return;
    m_triggers = std::min(m_triggers + 1, kMaxTriggers);
    m_changed.notify_all();
}

void Acquisition::sendErrors(std::uint32_t count)
{
    const std::lock_guard lock(m_mutex);
    m_errors += count;
    m_changed.notify_all();
}

void Acquisition::disconnect()
{
    const std::lock_guard lock(m_mutex);
    m_connected = false;
    m_errors = 0;
    m_changed.notify_all();
}

bool Acquisition::isActive() const
{
    const std::lock_guard lock(m_mutex);
    return m_active;
}

std::uint64_t Acquisition::imageCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_images;
}

void Acquisition::openSource()
{
    const std::lock_guard lock(m_mutex);
    m_sourceOpen = true;
    m_scheduled = false;
    m_errors = 0;
}

void Acquisition::closeSource()
{
    const std::lock_guard lock(m_mutex);
    m_sourceOpen = false;
    m_changed.notify_all();
}

Acquisition::Next Acquisition::waitForNext()
{
    std::unique_lock lock(m_mutex);
    while (m_sourceOpen) {
        if (m_errors > 0) {
            --m_errors;
            return {Task::Error, {}};
        }
        if (!mayExpose()) {
            m_changed.wait(lock);
            continue;
        }
        const Clock::time_point now = Clock::now();
        if (!m_scheduled)
            scheduleFirst(now);
        if (now < m_due) {
            m_changed.wait_until(lock, m_due);
            continue;
        }
        Next next{Task::Image, m_settings};
        takeImage(now);
        return next;
    }
    return {};
}

bool Acquisition::mayExpose() const
{
    if (!m_active || !m_connected || m_settings.trigger == TriggerKind::Unconnected)
        return false;
    return m_settings.trigger == TriggerKind::None || m_triggers > 0;
}

void Acquisition::scheduleFirst(Clock::time_point now)
{
    const double delay = m_settings.trigger == TriggerKind::None ? 0 : m_settings.triggerDelay;
    m_due = now + seconds(m_settings.exposure + delay);
    m_scheduled = true;
}

void Acquisition::takeImage(Clock::time_point now)
{
    if (now - m_due > kMaxLag)
        m_due = now;
    m_due += seconds(m_settings.period);
    ++m_images;
    ++m_framesSent;
    if (m_settings.framesToSend != 0 && m_framesSent >= m_settings.framesToSend)
        m_active = false;
    if (m_triggers > 0) {
        --m_triggers;
        m_scheduled = m_triggers > 0;
    }
}

} // namespace cameralibs::simulated
