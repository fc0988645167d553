#include "cameralibs/devices/simulated/images/DeviceClock.h"

#include <chrono>

namespace cameralibs::simulated {

namespace {

std::int64_t now()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

DeviceClock::DeviceClock()
    : m_switchedOn(now())
    , m_zero(m_switchedOn)
{
}

std::int64_t DeviceClock::nanoseconds() const
{
    return now() - m_zero.load(std::memory_order_relaxed);
}

double DeviceClock::secondsOn() const
{
    return static_cast<double>(now() - m_switchedOn) / 1e9;
}

void DeviceClock::reset()
{
    m_zero.store(now(), std::memory_order_relaxed);
}

} // namespace cameralibs::simulated
