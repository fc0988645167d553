#include "cameralibs/transport/connection/ImageSender.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

constexpr std::uint64_t kPollMicroseconds = 50'000;

/// With this few buffers in the stream, the wait for an image is short, so that a free buffer is passed on soon.
constexpr std::size_t kFewBuffers = 2;
constexpr std::uint64_t kShortPollMicroseconds = 1'000;

/// Bytes between the rows of an image.
int rowPaddingOf(ArvBuffer* buffer)
{
    if (arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS ||
        arv_buffer_get_payload_type(buffer) != ARV_BUFFER_PAYLOAD_TYPE_IMAGE)
        return 0;
    int x = 0;
    int y = 0;
    arv_buffer_get_image_padding(buffer, &x, &y);
    return x;
}

/// The user data of a buffer is its offset in the shared memory.
std::uint64_t offsetOf(ArvBuffer* buffer)
{
    return reinterpret_cast<std::uintptr_t>(arv_buffer_get_user_data(buffer));
}

} // namespace

ImageSender::ImageSender(std::unique_ptr<Reception> reception, std::unique_ptr<SharedMemory> memory)
    : m_reception(std::move(reception))
    , m_memory(std::move(memory))
{
}

ImageSender::~ImageSender()
{
    stop();
}

Outcome ImageSender::start(Descriptor channel)
{
    stop();
    if (!channel)
        return {CAM_API_STS_INVALID_PARAMETER, "There is no image channel"};
    if (Outcome outcome = m_reception->begin(); !outcome.ok())
        return outcome;
    m_channel = Channel(std::move(channel));
    m_buffers.clear();
    m_pushed = 0;
    // The first image may arrive as soon as the camera starts sending.
    if (!takeFreeBuffers()) {
        stop();
        return {CAM_API_STS_INVALID_PARAMETER, "There are no buffers"};
    }
    m_running = true;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        stop();
        return {CAM_API_STS_NO_MEMORY, "There are no more threads"};
    }
    return {};
}

void ImageSender::stop()
{
    if (!m_channel)
        return;
    m_running = false;
    // The thread may be blocked by a full channel that the library no longer reads.
    m_channel.shutDown();
    if (m_thread.joinable())
        m_thread.join();
    m_reception->end();
    m_channel = {};
}

void ImageSender::run()
{
    while (m_running && takeFreeBuffers()) {
        const std::uint64_t wait = m_pushed > kFewBuffers ? kPollMicroseconds : kShortPollMicroseconds;
        const GObjectPointer<ArvBuffer> buffer(arv_stream_timeout_pop_buffer(m_reception->stream(), wait));
        if (buffer == nullptr)
            continue;
        --m_pushed;
        if (onImage)
            onImage();
        if (!send(buffer.get()))
            return;
    }
}

/// False if the library has closed the channel, or has sent something invalid.
bool ImageSender::takeFreeBuffers()
{
    for (;;) {
        switch (m_channel.receive(m_packet, Clock::time_point::min())) {
        case Received::timeout:
            return true;
        case Received::packet:
            break;
        default:
            return false;
        }
        const auto free = m_packet.body<Free>(Kind::free);
        std::uint8_t* const data = free ? m_memory->buffer(free->offset, free->capacity) : nullptr;
        if (data == nullptr)
            return false;
        GObjectPointer<ArvBuffer>& buffer = m_buffers[free->offset];
        if (buffer == nullptr) {
            const std::size_t size = std::min<std::size_t>(free->capacity, m_reception->largestBuffer());
            // NOLINTNEXTLINE(performance-no-int-to-ptr): Aravis keeps a number there
            buffer.reset(arv_buffer_new_full(size, data, reinterpret_cast<void*>(free->offset), nullptr));
        }
        push(buffer.get());
    }
}

bool ImageSender::send(ArvBuffer* buffer)
{
    std::size_t size = 0;
    (void)arv_buffer_get_data(buffer, &size);
    CAM_API_STATUS status = imageStatus(arv_buffer_get_status(buffer), rowPaddingOf(buffer));
    if (status == CAM_API_STS_SUCCESS)
        status = m_reception->check(arv_buffer_get_frame_id(buffer), size);
    if (status != CAM_API_STS_SUCCESS) {
        push(buffer);
        return m_channel.send(Kind::failed, Failed{status, 0});
    }
    std::uint64_t time = arv_buffer_get_timestamp(buffer);
    if (time == 0)
        time = arv_buffer_get_system_timestamp(buffer);
    return m_channel.send(Kind::image, Image{offsetOf(buffer), size, arv_buffer_get_frame_id(buffer), time});
}

void ImageSender::push(ArvBuffer* buffer)
{
    g_object_ref(buffer);
    arv_stream_push_buffer(m_reception->stream(), buffer);
    ++m_pushed;
}

CAM_API_STATUS imageStatus(ArvBufferStatus status, int rowPadding)
{
    switch (status) {
    case ARV_BUFFER_STATUS_SUCCESS:
        return rowPadding == 0 ? CAM_API_STS_SUCCESS : CAM_API_STS_UNEXPECTED_BUFFER_SIZE;
    case ARV_BUFFER_STATUS_TIMEOUT:
    case ARV_BUFFER_STATUS_MISSING_PACKETS:
        return CAM_API_STS_MISSING_PACKETS;
    case ARV_BUFFER_STATUS_WRONG_PACKET_ID:
        return CAM_API_STS_UNEXPECTED_NUMBER;
    case ARV_BUFFER_STATUS_SIZE_MISMATCH:
        return CAM_API_STS_UNEXPECTED_BUFFER_SIZE;
    case ARV_BUFFER_STATUS_ABORTED:
    case ARV_BUFFER_STATUS_FILLING:
        return CAM_API_STS_FLUSH_REQUESTED;
    default:
        return CAM_API_STS_DATA_DISCARDED;
    }
}

} // namespace cameralibs::transport
