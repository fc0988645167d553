#include "cameralibs/devices/transport/TransportSource.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace cameralibs {

using namespace Orvo;
using namespace transport;

namespace {

/// For starting and stopping, which take several commands each.
constexpr Connection::Limits kLimits{std::chrono::seconds(3), std::chrono::seconds(10)};

/// Replaces a status that images cannot have.
CAM_API_STATUS imageStatusOf(std::uint32_t told)
{
    return told >= CAM_API_STS_REQUEST_TIMEOUT && told <= CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE
               ? told
               : CAM_API_STS_DATA_DISCARDED;
}

} // namespace

TransportSource::TransportSource(std::shared_ptr<Connection> connection, FrameSink& sink, const ImageMemory& memory,
                                 const std::vector<FrameBuffer*>& buffers)
    : m_connection(std::move(connection))
    , m_sink(sink)
    , m_stride(memory.offset(1))
    , m_lent(memory.count())
{
    for (FrameBuffer* buffer : buffers)
        m_lent.at(buffer->offset / m_stride) = buffer;
}

TransportSource::~TransportSource()
{
    TransportSource::stop();
}

Outcome TransportSource::start()
{
    stop();
    Descriptor there;
    if (!Connection::makeChannel(m_channel, there))
        return {CAM_API_STS_NO_MEMORY, "There are no more descriptors"};
    // Before the start, so that there is a buffer for the first image. The few packets fit into the channel.
    bool lent = true;
    for (const FrameBuffer* buffer : m_lent)
        lent = lent && (buffer == nullptr || lend(*buffer));
    Outcome outcome{CAM_API_STS_CAMERA_NOT_RESPONDING, {}};
    if (lent)
        outcome = m_connection->requestDone(Kind::start, Nothing{}, kLimits, there.get());
    if (!outcome.ok()) {
        m_channel = {};
        return outcome;
    }
    m_blockIds = {};
    m_stopping = false;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        stop();
        return {CAM_API_STS_NO_MEMORY, "There are no more threads"};
    }
    return {};
}

void TransportSource::stop()
{
    if (!m_channel)
        return;
    m_stopping = true;
    m_channel.shutDown();
    if (m_thread.joinable())
        m_thread.join();
    (void)m_connection->requestDone(Kind::stop, Nothing{}, kLimits);
    m_channel = {};
}

void TransportSource::run()
{
    Received received = Received::packet;
    while ((received = m_channel.receive(m_packet, Clock::time_point::max())) == Received::packet) {
        if (!handle(m_packet)) {
            m_connection->endNow("The transport filled a buffer that was not lent to it");
            return;
        }
    }
    if (received == Received::malformed) {
        m_connection->endNow("The transport sent a malformed packet");
    } else if (!m_stopping) {
        m_connection->endAsClosed();
    }
}

bool TransportSource::handle(const Packet& packet)
{
    if (const auto image = packet.body<Image>(Kind::image))
        return deliver(*image);
    const auto failed = packet.body<Failed>(Kind::failed);
    if (failed)
        m_sink.fail(imageStatusOf(failed->status));
    return failed.has_value();
}

bool TransportSource::deliver(const Image& image)
{
    FrameBuffer** const lent = lentAt(image.offset);
    if (lent == nullptr || *lent == nullptr || image.size > (*lent)->capacity)
        return false;
    FrameBuffer* const frame = std::exchange(*lent, nullptr);
    frame->size = image.size;
    frame->frameNumber = m_blockIds.next(image.blockId);
    frame->timestampNs = image.timestampNs;
    FrameBuffer* const free = m_sink.deliver(frame);
    *lentAt(free->offset) = free;
    // Fails if the channel was shut down, which ends the next receive().
    (void)lend(*free);
    return true;
}

bool TransportSource::lend(const FrameBuffer& buffer) const
{
    return m_channel.send(Kind::free, Free{buffer.offset, buffer.capacity});
}

/// Null if no buffer begins at this offset.
FrameBuffer** TransportSource::lentAt(std::uint64_t offset)
{
    const std::uint64_t place = offset / m_stride;
    return offset % m_stride == 0 && place < m_lent.size() ? &m_lent[place] : nullptr;
}

} // namespace cameralibs
