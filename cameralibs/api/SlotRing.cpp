#include "SlotRing.h"

#include "cameralibs/genicam/Failure.h"

#include <algorithm>
#include <cstring>

namespace orvo {

using namespace Orvo;

SlotRing::SlotRing(std::uint32_t slots, std::size_t spares, const ImageSize& size)
    : m_payload(size.payload)
    , m_room(std::max(size.payload, size.pixels))
    , m_pixels(size.pixels)
    , m_slots(slots)
{
    for (Slot& slot : m_slots)
        slot.buffer = newBuffer();
    for (std::size_t i = 0; i < spares; ++i)
        m_spares.push_back(newBuffer());
}

std::size_t SlotRing::payload() const
{
    const std::lock_guard lock(m_mutex);
    return m_payload;
}

bool SlotRing::holds(const ImageSize& size) const
{
    const std::lock_guard lock(m_mutex);
    return size.payload <= m_payload && size.pixels <= m_room;
}

void SlotRing::grow(const ImageSize& size)
{
    const std::lock_guard lock(m_mutex);
    // What an earlier source held is nobody's now; only what lies in slots is kept.
    const auto inSlot = [this](const std::unique_ptr<Buffer>& buffer) {
        return std::any_of(m_slots.begin(), m_slots.end(), [&](const Slot& s) { return s.buffer == buffer.get(); });
    };
    m_buffers.erase(std::partition(m_buffers.begin(), m_buffers.end(), inSlot), m_buffers.end());
    m_payload = size.payload;
    m_room = std::max(size.payload, size.pixels);
    for (FrameBuffer*& spare : m_spares)
        spare = newBuffer();
    m_replacements.clear();
    for (std::size_t i = 0; i < m_slots.size(); ++i)
        m_replacements.push_back(newBuffer());
}

std::vector<FrameBuffer*> SlotRing::spares() const
{
    const std::lock_guard lock(m_mutex);
    return m_spares;
}

void SlotRing::beginStart(std::size_t pixels)
{
    const std::lock_guard lock(m_mutex);
    m_current.reset();
    m_pixels = pixels;
}

SlotRing::Placed SlotRing::place(FrameBuffer& filled)
{
    const std::lock_guard lock(m_mutex);
    Slot& slot = m_slots[m_next];
    if (slot.locks != 0)
        return {&filled, m_next, false, {}};
    // What the camera did not send is not left from an earlier image.
    const std::size_t end = std::min(filled.capacity, m_pixels);
    if (filled.size < end)
        std::memset(filled.data + filled.size, 0, end - filled.size);
    Placed placed{exchange(slot, filled), m_next, true, slot.info};
    m_current = m_next;
    m_next = (m_next + 1) % static_cast<std::uint32_t>(m_slots.size());
    return placed;
}

std::uint32_t SlotRing::nextSlot() const
{
    const std::lock_guard lock(m_mutex);
    return m_next;
}

std::uint32_t SlotRing::current() const
{
    const std::lock_guard lock(m_mutex);
    throwUnless(m_current.has_value(), CAM_API_STS_NOT_READY);
    return *m_current;
}

CAM_IMAGE_INFO SlotRing::lock(std::uint32_t index)
{
    const std::lock_guard lock(m_mutex);
    throwUnless(index < m_slots.size(), CAM_API_STS_INVALID_PARAMETER);
    Slot& slot = m_slots[index];
    throwUnless(slot.filled, CAM_API_STS_NOT_READY);
    ++slot.locks;
    return slot.info;
}

void SlotRing::unlock(std::uint32_t index)
{
    const std::lock_guard lock(m_mutex);
    throwUnless(index < m_slots.size() && m_slots[index].locks != 0, CAM_API_STS_INVALID_PARAMETER);
    --m_slots[index].locks;
}

SlotRing::Buffer* SlotRing::newBuffer()
{
    auto buffer = std::make_unique<Buffer>();
    // Zero without being written to: memory that no image needs is never touched.
    buffer->memory.reset(std::calloc(m_room, 1));
    throwUnless(buffer->memory != nullptr, CAM_API_STS_NO_MEMORY);
    buffer->room = m_room;
    buffer->data = static_cast<std::uint8_t*>(buffer->memory.get());
    buffer->capacity = m_payload;
    m_buffers.push_back(std::move(buffer));
    return m_buffers.back().get();
}

FrameBuffer* SlotRing::exchange(Slot& slot, FrameBuffer& filled)
{
    Buffer* const old = slot.buffer;
    slot.buffer = static_cast<Buffer*>(&filled); // there are no others
    slot.filled = true;
    slot.info = {};
    slot.info.timestampNs = filled.timestampNs;
    slot.info.frameNumber = filled.frameNumber;
    slot.info.data = filled.data;
    slot.info.dataSize = filled.size;
    slot.info.status = CAM_API_STS_SUCCESS;
    const bool largeEnough = old->capacity >= m_payload && old->room >= m_room;
    if (largeEnough || m_replacements.empty())
        return old;
    FrameBuffer* replacement = m_replacements.back();
    m_replacements.pop_back();
    return replacement;
}

} // namespace orvo
