#pragma once

#include "cameralibs/base/ImageMemory.h"
#include "cameralibs/devices/Device.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace cameralibs {

/// The buffers of a stream as its user sees them: a ring of slots, each with the newest image that came its turn.
///
/// There are more buffers than slots, all in one piece of memory. A source fills the spare ones; a filled buffer takes
/// the place of the one in the next slot, which goes back to the source. A locked slot keeps its buffer, so nobody
/// writes into it. Any thread.
class SlotRing {
public:
    /// The bytes that the camera sends for an image, and those of the largest image that a reader may take it for.
    /// There is memory for both in every slot; of the latter, what was not sent is zero.
    struct ImageSize {
        std::size_t payload;
        std::size_t image;
    };

    SlotRing(std::uint32_t slots, const ImageSize& size);

    /// Of the current start.
    [[nodiscard]] std::size_t payload() const;

    [[nodiscard]] bool holds(const ImageSize& size) const;

    /// New memory in which every buffer has at least this size; the images in the slots move there. Without a source:
    /// what an earlier one held is nobody's now.
    void grow(const ImageSize& size);

    // For a source: the memory, and the buffers that it may fill.
    [[nodiscard]] const ImageMemory& memory() const;
    [[nodiscard]] std::vector<FrameBuffer*> spares();

    /// There is no image of this start yet, and room for this size.
    void beginStart(const ImageSize& size);

    struct Placed {
        FrameBuffer* free; ///< for the source to fill next
        std::uint32_t slot;
        bool stored; ///< false: the slot is locked and the image dropped
        Orvo::CAM_IMAGE_INFO info;
    };
    [[nodiscard]] Placed place(FrameBuffer& filled);

    /// The slot that the next image goes into.
    [[nodiscard]] std::uint32_t nextSlot() const;

    // The operations of the interface. All throw Failure.
    [[nodiscard]] std::uint32_t current() const;
    [[nodiscard]] Orvo::CAM_IMAGE_INFO lock(std::uint32_t slot);
    void unlock(std::uint32_t slot);

private:
    struct Slot {
        FrameBuffer* buffer = nullptr;
        bool filled = false;
        std::size_t clearedTo = 0; ///< behind the image, nothing but zeros up to here
        std::uint32_t locks = 0;
        std::vector<std::shared_ptr<const ImageMemory>> left; ///< where its image was when it was locked
        Orvo::CAM_IMAGE_INFO info = {};
    };

    void useNewMemory(std::size_t room, std::size_t capacity);
    void clearBehindImage(Slot& slot) const;

    mutable std::mutex m_mutex;
    ImageSize m_size;           ///< of the current start
    std::size_t m_capacity = 0; ///< the largest payload so far: what a source may write of each buffer
    std::shared_ptr<const ImageMemory> m_memory;
    std::vector<FrameBuffer> m_buffers; ///< one for each of the memory's
    std::vector<Slot> m_slots;
    std::uint32_t m_next = 0;
    std::optional<std::uint32_t> m_current;
};

} // namespace cameralibs
