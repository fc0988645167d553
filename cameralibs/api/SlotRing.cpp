#include "cameralibs/api/SlotRing.h"

#include "cameralibs/base/Outcome.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace cameralibs {

using namespace Orvo;

namespace {

std::size_t bytesNeeded(const SlotRing::ImageSize& size)
{
    return std::max(size.payload, size.image);
}

/// Number of buffers for images that arrive while a callback runs.
std::size_t spareCount(std::size_t room)
{
    constexpr std::size_t kLargeImage = 4'000'000;
    constexpr std::size_t kMostBytes = std::size_t{1} << 30;
    const std::size_t wanted = room > kLargeImage ? 4 : 8;
    return std::clamp<std::size_t>(kMostBytes / room, 1, wanted);
}

} // namespace

SlotRing::SlotRing(std::uint32_t slots, const ImageSize& size)
    : m_size(size)
    , m_slots(slots)
{
    useNewMemory(bytesNeeded(size), size.payload);
}

std::size_t SlotRing::payload() const
{
    const std::lock_guard lock(m_mutex);
    return m_size.payload;
}

bool SlotRing::holds(const ImageSize& size) const
{
    const std::lock_guard lock(m_mutex);
    return size.payload <= m_capacity && bytesNeeded(size) <= m_memory->bytesOfEach();
}

void SlotRing::grow(const ImageSize& size)
{
    const std::lock_guard lock(m_mutex);
    for (Slot& slot : m_slots) {
        // A program that holds a lock keeps reading at the old address.
        if (slot.locks != 0)
            slot.heldMemory.push_back(m_memory);
    }
    useNewMemory(std::max(bytesNeeded(size), m_memory->bytesOfEach()), std::max(size.payload, m_capacity));
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
        if (std::none_of(m_slots.begin(), m_slots.end(), [&](const Slot& slot) { return slot.buffer == &buffer; }))
            spares.push_back(&buffer);
    }
    return spares;
}

void SlotRing::beginStart(const ImageSize& size)
{
    const std::lock_guard lock(m_mutex);
    m_current.reset();
    m_size = size;
    for (Slot& slot : m_slots) {
        if (slot.filled)
            clearBehindImage(slot);
    }
}

SlotRing::Placed SlotRing::place(FrameBuffer& filled)
{
    const std::lock_guard lock(m_mutex);
    Slot& slot = m_slots[m_next];
    if (slot.locks != 0)
        return {&filled, m_next, false, {}};
    slot.info = {};
    slot.info.timestampNs = filled.timestampNs;
    slot.info.frameNumber = filled.frameNumber;
    slot.info.data = filled.data;
    slot.info.dataSize = std::min(filled.size, filled.capacity);
    slot.info.status = CAM_API_STS_SUCCESS;
    slot.filled = true;
    slot.clearedTo = 0;
    const Placed placed{std::exchange(slot.buffer, &filled), m_next, true, slot.info};
    clearBehindImage(slot);
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
        slot.heldMemory.clear();
}

/// Copies the images in the slots to the new memory.
void SlotRing::useNewMemory(std::size_t room, std::size_t capacity)
{
    const auto memory = std::make_shared<const ImageMemory>(m_slots.size() + spareCount(room), room);
    std::vector<FrameBuffer> buffers(memory->count());
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        buffers[i].data = memory->data(i);
        buffers[i].offset = memory->offset(i);
        buffers[i].capacity = capacity;
    }
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        Slot& slot = m_slots[i];
        slot.buffer = &buffers[i];
        if (!slot.filled)
            continue;
        std::memcpy(slot.buffer->data, slot.info.data, slot.info.dataSize);
        slot.info.data = slot.buffer->data;
        slot.clearedTo = room; // new memory is zero
    }
    m_buffers = std::move(buffers);
    m_memory = memory;
    m_capacity = capacity;
}

/// Clears the rest of the buffer, so that a short image does not show parts of an earlier one. The bytes beyond the
/// capacity have never been written.
void SlotRing::clearBehindImage(Slot& slot) const
{
    const std::size_t begin = std::max<std::size_t>(slot.info.dataSize, slot.clearedTo);
    const std::size_t end = std::min(slot.buffer->capacity, m_size.image);
    if (begin >= end)
        return;
    std::memset(slot.buffer->data + begin, 0, end - begin);
    slot.clearedTo = end;
}

} // namespace cameralibs
