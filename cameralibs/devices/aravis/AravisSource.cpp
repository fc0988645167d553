#include "AravisSource.h"

#include "cameralibs/devices/aravis/ImageStatus.h"

#include <algorithm>
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

AravisSource::AravisSource(std::shared_ptr<DeviceConnection> connection, std::unique_ptr<Reception> reception,
                           FrameSink& sink, const std::vector<FrameBuffer*>& buffers)
    : m_connection(std::move(connection))
    , m_reception(std::move(reception))
    , m_sink(sink)
    , m_free(buffers.begin(), buffers.end())
{
}

AravisSource::~AravisSource()
{
    AravisSource::stop();
}

Outcome AravisSource::start()
{
    if (Outcome outcome = m_reception->begin(); !outcome.ok())
        return outcome;
    m_buffers.clear();
    for (FrameBuffer* frame : m_free)
        push(frame);
    m_blockIds = {};
    m_running = true;
    m_thread = std::thread([this] { run(); });
    return {};
}

void AravisSource::stop()
{
    m_running = false;
    if (m_thread.joinable())
        m_thread.join();
    m_reception->end();
}

void AravisSource::run()
{
    while (m_running) {
        // The reception of a USB camera that is gone spins.
        if (m_connection->lost()) {
            m_reception->end();
            return;
        }
        ArvBuffer* buffer = arv_stream_timeout_pop_buffer(m_reception->stream(), kPollMicroseconds);
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
    m_free.erase(frame);
    FrameBuffer* const free = m_sink.deliver(frame);
    m_free.insert(free);
    push(free);
}

void AravisSource::push(FrameBuffer* frame)
{
    GObjectPointer<ArvBuffer>& buffer = m_buffers[frame];
    if (buffer == nullptr) {
        const std::size_t size = std::min(frame->capacity, m_reception->largestBuffer());
        buffer.reset(arv_buffer_new_full(size, frame->data, frame, nullptr));
    }
    g_object_ref(buffer.get());
    arv_stream_push_buffer(m_reception->stream(), buffer.get());
}

} // namespace orvo
