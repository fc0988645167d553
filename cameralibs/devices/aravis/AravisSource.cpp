#include "AravisSource.h"

#include "cameralibs/devices/aravis/ImageStatus.h"

#include <utility>

namespace orvo {

using namespace Orvo;

namespace {

constexpr std::uint64_t kPollMicroseconds = 50'000;

FrameBuffer* frameOf(ArvBuffer* buffer)
{
    return static_cast<FrameBuffer*>(const_cast<void*>(arv_buffer_get_user_data(buffer)));
}

/// Bytes between the rows of an image.
int rowPadding(ArvBuffer* buffer)
{
    if (arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS ||
        arv_buffer_get_payload_type(buffer) != ARV_BUFFER_PAYLOAD_TYPE_IMAGE)
        return 0;
    int x = 0;
    int y = 0;
    arv_buffer_get_image_padding(buffer, &x, &y);
    return x;
}

} // namespace

AravisSource::AravisSource(std::shared_ptr<DeviceConnection> connection, GObjectPointer<ArvStream> stream,
                           FrameSink& sink, const std::vector<FrameBuffer*>& buffers)
    : m_connection(std::move(connection))
    , m_stream(std::move(stream))
    , m_sink(sink)
{
    for (FrameBuffer* frame : buffers)
        push(frame);
}

AravisSource::~AravisSource()
{
    AravisSource::stop();
    if (!m_connection->lost())
        return;
    abandon();
    // Aravis complains of a stream that it finds stopped. Without buffers this one writes nowhere.
    arv_stream_start_thread(m_stream.get());
    m_connection->leaveToReaper(GObjectPointer<GObject>(G_OBJECT(m_stream.release())));
}

Outcome AravisSource::start()
{
    // Anew for each start: the device is told the final sizes, and a camera that counts from 1 again is not taken for
    // a late one.
    if (m_receiving)
        (void)arv_stream_stop_thread(m_stream.get(), FALSE);
    recycleBuffers();
    arv_stream_start_thread(m_stream.get());
    m_receiving = true;
    m_blockIds = {};
    m_running = true;
    m_thread = std::thread([this] { run(); });
    return {};
}

void AravisSource::stop()
{
    if (!m_thread.joinable())
        return;
    m_running = false;
    m_thread.join();
}

void AravisSource::run()
{
    while (m_running) {
        // The reception of a USB camera that is gone spins until it is stopped.
        if (m_connection->lost())
            abandon();
        ArvBuffer* buffer = arv_stream_timeout_pop_buffer(m_stream.get(), kPollMicroseconds);
        if (buffer != nullptr)
            handle(buffer);
    }
}

void AravisSource::handle(ArvBuffer* buffer)
{
    // The reference that came out of the stream; m_buffers has another.
    const GObjectPointer<ArvBuffer> popped(buffer);
    FrameBuffer* frame = frameOf(buffer);
    const CAM_API_STATUS status = imageStatus(arv_buffer_get_status(buffer), rowPadding(buffer), m_connection->lost());
    if (status != CAM_API_STS_SUCCESS) {
        m_sink.fail(status);
        push(frame);
        return;
    }
    (void)arv_buffer_get_data(buffer, &frame->size);
    frame->frameNumber = m_blockIds.next(arv_buffer_get_frame_id(buffer));
    frame->timestampNs = arv_buffer_get_timestamp(buffer);
    if (frame->timestampNs == 0)
        frame->timestampNs = arv_buffer_get_system_timestamp(buffer);
    push(m_sink.deliver(frame));
}

void AravisSource::push(FrameBuffer* frame)
{
    GObjectPointer<ArvBuffer>& buffer = m_buffers[frame];
    if (buffer == nullptr)
        buffer.reset(arv_buffer_new_full(frame->capacity, frame->data, frame, nullptr));
    g_object_ref(buffer.get());
    arv_stream_push_buffer(m_stream.get(), buffer.get());
}

/// Ends the reception for good and takes the buffers away from it.
void AravisSource::abandon()
{
    if (std::exchange(m_receiving, false))
        (void)arv_stream_stop_thread(m_stream.get(), TRUE);
}

// What came since the last stop belongs to no start.
void AravisSource::recycleBuffers()
{
    while (ArvBuffer* buffer = arv_stream_try_pop_buffer(m_stream.get())) {
        const GObjectPointer<ArvBuffer> popped(buffer);
        push(frameOf(buffer));
    }
}

} // namespace orvo
