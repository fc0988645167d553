#include "Attachment.h"

namespace orvo::simulated {

bool Attachment::isPlugged() const
{
    return m_plugged || (m_back.has_value() && Clock::now() >= *m_back);
}

void Attachment::unplug(unsigned seconds)
{
    m_plugged = false;
    m_back.reset();
    if (seconds > 0)
        m_back = Clock::now() + std::chrono::seconds(seconds);
}

} // namespace orvo::simulated
