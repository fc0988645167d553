#include "cameralibs/transport/gige/GigeReception.h"

#include "cameralibs/transport/Farewell.h"

#include <string>
#include <utility>

namespace cameralibs::transport {

GigeReception::GigeReception(GObjectPointer<ArvStream> stream)
{
    m_stream = std::move(stream);
}

GigeReception::~GigeReception()
{
    GigeReception::end();
    // Aravis complains of a stream that it finds stopped. Without buffers this one writes nowhere.
    arv_stream_start_thread(m_stream.get());
}

// A camera that counts from 1 again is not taken for a late one by a thread that starts anew.
Outcome GigeReception::begin()
{
    (void)stopThread();
    arv_stream_start_thread(m_stream.get());
    m_receiving = true;
    return {};
}

void GigeReception::end()
{
    if (stopThread())
        noteLosses();
}

bool GigeReception::stopThread()
{
    if (!std::exchange(m_receiving, false))
        return false;
    (void)arv_stream_stop_thread(m_stream.get(), TRUE);
    return true;
}

// Aravis counts from the making of the stream on; in an image, from the first packet that is missing to the end.
void GigeReception::noteLosses()
{
    guint64 resent = 0;
    guint64 missing = 0;
    arv_gv_stream_get_statistics(ARV_GV_STREAM(m_stream.get()), &resent, &missing);
    const std::uint64_t newlyResent = resent - std::exchange(m_resent, resent);
    const std::uint64_t newlyMissing = missing - std::exchange(m_missing, missing);
    note(newlyMissing != 0 ? Severity::warning : Severity::info, "packets: " + std::to_string(newlyMissing) +
                                                                     " at most are missing in incomplete images, " +
                                                                     std::to_string(newlyResent) + " were sent again");
}

} // namespace cameralibs::transport
