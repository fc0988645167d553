#include "cameralibs/api/ImageTally.h"

#include "camera/StatusName.h"
#include "cameralibs/base/Log.h"

#include <algorithm>
#include <utility>

namespace cameralibs {

void ImageTally::start(std::string camera)
{
    *this = {};
    m_camera = std::move(camera);
    m_started = true;
    log(Severity::info, m_camera, "stream started");
}

void ImageTally::noteImage(std::uint64_t frameNumber, bool dropped)
{
    if (m_images++ == 0)
        m_firstNumber = frameNumber;
    m_lastNumber = frameNumber;
    m_dropped += dropped ? 1 : 0;
}

// A bad cable causes thousands of failures. The first one shows the kind; the rest would only flood the log.
void ImageTally::noteFailure(Orvo::CAM_API_STATUS status)
{
    logText(m_failed++ == 0 ? Severity::warning : Severity::debug, m_camera,
            [&] { return "image failed: " + std::to_string(status) + " " + cameraStatusName(status); });
}

void ImageTally::end() noexcept
{
    if (!std::exchange(m_started, false))
        return;
    // The camera numbers every frame that it sends, so gaps are frames that failed or never arrived.
    const std::uint64_t sent = m_images == 0 ? 0 : m_lastNumber - m_firstNumber + 1;
    const std::uint64_t missing = sent - std::min(sent, m_images);
    const Severity severity = m_failed != 0 || missing != 0 ? Severity::warning : Severity::info;
    logText(severity, m_camera, [&] {
        return "stream stopped; " + std::to_string(m_images) + " images came, " + std::to_string(m_dropped) +
               " of them dropped for want of a free buffer; " + std::to_string(m_failed) + " failed, " +
               std::to_string(missing) + " frame numbers are missing";
    });
}

} // namespace cameralibs
