#pragma once

#include "cameralibs/base/ImageMemory.h"
#include "cameralibs/devices/Device.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace cameralibs {

/// The buffers of a stream as the program sees them: a ring of slots that incoming images fill in turn.
///
/// There are more buffers than slots, all in one block of memory. A source fills the spare buffers. A filled buffer
/// replaces the one in the next slot, which goes back to the source. A locked slot keeps its buffer, so its image is
/// never overwritten. Thread-safe.
class SlotRing {
public:
    /// `payload` is what the camera sends per image. `image` is the largest size that a program may read by the width,
    /// height and format it has seen. Every slot has memory for both; bytes that were not sent read as zero.
    struct ImageSize {
        std::size_t payload;
        std::size_t image;
    };

    SlotRing(std::uint32_t slots, const ImageSize& size);

    /// Payload size of the current acquisition.
    [[nodiscard]] std::size_t payload() const;

    [[nodiscard]] bool holds(const ImageSize& size) const;

    /// Allocates new memory in which every buffer has at least this size, and copies the images in the slots to it.
    /// There must be no source, because its buffers become invalid.
    void grow(const ImageSize& size);

    // What a source is opened with: the memory, and the buffers that it may fill.
    [[nodiscard]] const ImageMemory& memory() const;
    [[nodiscard]] std::vector<FrameBuffer*> spares();

    /// Begins an acquisition: there is no current image yet. The buffers must hold `size`.
    void beginStart(const ImageSize& size);

    struct Placed {
        FrameBuffer* free; ///< goes back to the source
        std::uint32_t slot;
        bool stored; ///< false if the slot is locked, which drops the image
        Orvo::CAM_IMAGE_INFO info;
    };
    [[nodiscard]] Placed place(FrameBuffer& filled);

    /// The slot for the next image.
    [[nodiscard]] std::uint32_t nextSlot() const;

    // The operations of the camera API. All throw Failure.
    [[nodiscard]] std::uint32_t current() const;
    [[nodiscard]] Orvo::CAM_IMAGE_INFO lock(std::uint32_t slot);
    void unlock(std::uint32_t slot);

private:
    struct Slot {
        FrameBuffer* buffer = nullptr;
        bool filled = false;
        std::size_t clearedTo = 0; ///< all bytes between the image and this offset are zero
        std::uint32_t locks = 0;
        std::vector<std::shared_ptr<const ImageMemory>> heldMemory; ///< earlier memory that lock holders may read
        Orvo::CAM_IMAGE_INFO info = {};
    };

    void useNewMemory(std::size_t room, std::size_t capacity);
    void clearBehindImage(Slot& slot) const;

    mutable std::mutex m_mutex;
    ImageSize m_size;           ///< of the current acquisition
    std::size_t m_capacity = 0; ///< the largest payload so far; a source writes no more of a buffer
    std::shared_ptr<const ImageMemory> m_memory;
    std::vector<FrameBuffer> m_buffers; ///< one per buffer of the memory
    std::vector<Slot> m_slots;
    std::uint32_t m_next = 0;
    std::optional<std::uint32_t> m_current;
};

} // namespace cameralibs
