#include "SlotRing.h"

#include "cameralibs/genicam/Failure.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace orvo {

using namespace Orvo;

namespace {

std::size_t roomFor(const SlotRing::ImageSize& size)
{
    return std::max(size.payload, size.pixels);
}

} // namespace

SlotRing::SlotRing(std::uint32_t slots, std::size_t spares, const ImageSize& size)
    : m_pixels(size.pixels)
    , m_buffers(slots + spares)
    , m_slots(slots)
{
    for (std::size_t i = 0; i < m_slots.size(); ++i)
        m_slots[i].buffer = &m_buffers[i];
    useMemory(std::make_shared<ImageMemory>(m_buffers.size(), roomFor(size)), size.payload);
}

std::size_t SlotRing::payload() const
{
    const std::lock_guard lock(m_mutex);
    return m_payload;
}

bool SlotRing::holds(const ImageSize& size) const
{
    const std::lock_guard lock(m_mutex);
    return size.payload <= m_payload && roomFor(size) <= m_memory->bytesOfEach();
}

void SlotRing::grow(const ImageSize& size)
{
    const std::lock_guard lock(m_mutex);
    const std::size_t room = std::max(roomFor(size), m_memory->bytesOfEach());
    auto memory = std::make_shared<ImageMemory>(m_buffers.size(), room);
    for (Slot& slot : m_slots) {
        // Whoever holds a lock goes on reading where the image was.
        if (slot.locks != 0)
            slot.left.push_back(m_memory);
    }
    useMemory(std::move(memory), std::max(size.payload, m_payload));
}

const ImageMemory& SlotRing::memory() const
{
    const std::lock_guard lock(m_mutex);
    return *m_memory;
}

std::vector<FrameBuffer*> SlotRing::spares()
{
    const std::lock_guard lock(m_mutex);
    std::vector<FrameBuffer*> spares;
    for (FrameBuffer& buffer : m_buffers) {
        if (!inSlot(buffer))
            spares.push_back(&buffer);
    }
    return spares;
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
    slot.info = {};
    slot.info.timestampNs = filled.timestampNs;
    slot.info.frameNumber = filled.frameNumber;
    slot.info.data = filled.data;
    slot.info.dataSize = filled.size;
    slot.info.status = CAM_API_STS_SUCCESS;
    slot.filled = true;
    const Placed placed{std::exchange(slot.buffer, &filled), m_next, true, slot.info};
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
    Slot& slot = m_slots[index];
    if (--slot.locks == 0)
        slot.left.clear();
}

/// Moves the images there.
void SlotRing::useMemory(std::shared_ptr<const ImageMemory> memory, std::size_t payload)
{
    for (std::size_t i = 0; i < m_buffers.size(); ++i) {
        m_buffers[i].data = memory->data(i);
        m_buffers[i].offset = memory->offset(i);
        m_buffers[i].capacity = payload;
    }
    for (Slot& slot : m_slots) {
        if (!slot.filled)
            continue;
        std::memcpy(slot.buffer->data, slot.info.data, slot.info.dataSize);
        slot.info.data = slot.buffer->data;
    }
    m_memory = std::move(memory);
    m_payload = payload;
}

bool SlotRing::inSlot(const FrameBuffer& buffer) const
{
    return std::any_of(m_slots.begin(), m_slots.end(), [&](const Slot& slot) { return slot.buffer == &buffer; });
}

} // namespace orvo
