#include "GigeReception.h"

#include <utility>

namespace orvo {

GigeReception::GigeReception(std::shared_ptr<DeviceConnection> connection, GObjectPointer<ArvStream> stream)
    : m_connection(std::move(connection))
{
    m_stream = std::move(stream);
}

GigeReception::~GigeReception()
{
    GigeReception::end();
    // Aravis complains of a stream that it finds stopped. Without buffers this one writes nowhere.
    arv_stream_start_thread(m_stream.get());
    if (m_connection->lost())
        m_connection->leaveToReaper(GObjectPointer<GObject>(G_OBJECT(m_stream.release())));
}

// A camera that counts from 1 again is not taken for a late one by a thread that starts anew.
Outcome GigeReception::begin()
{
    end();
    arv_stream_start_thread(m_stream.get());
    m_receiving = true;
    return {};
}

void GigeReception::end()
{
    if (std::exchange(m_receiving, false))
        (void)arv_stream_stop_thread(m_stream.get(), TRUE);
}

} // namespace orvo
