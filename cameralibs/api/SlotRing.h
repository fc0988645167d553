#pragma once

#include "cameralibs/base/ImageMemory.h"
#include "cameralibs/devices/Device.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace orvo {

/// The buffers of a stream as its user sees them: a ring of slots, each with the newest image that came its turn.
///
/// There are more buffers than slots, all in one piece of memory. A source fills the spare ones; a filled buffer takes
/// the place of the one in the next slot, which goes back to the source. A locked slot keeps its buffer, so nobody
/// writes into it. Any thread.
class SlotRing {
public:
    /// The bytes of an image: those that the camera sends, and those that its pixels take. Who reads the image may go
    /// by the pixels, so there is memory for both, and what was not sent is zero.
    struct ImageSize {
        std::size_t payload;
        std::size_t pixels;
    };

    SlotRing(std::uint32_t slots, std::size_t spares, const ImageSize& size);

    [[nodiscard]] std::size_t payload() const;
    [[nodiscard]] bool holds(const ImageSize& size) const;

    /// New memory in which every buffer has at least this size; the images in the slots move there. Without a source:
    /// what an earlier one held is nobody's now. On failure nothing has changed.
    void grow(const ImageSize& size);

    // For the source of the current payload: the memory, and the buffers that it may fill.
    [[nodiscard]] const ImageMemory& memory() const;
    [[nodiscard]] std::vector<FrameBuffer*> spares();

    /// No image of this start yet. Each has this many bytes of pixels.
    void beginStart(std::size_t pixels);

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
        std::uint32_t locks = 0;
        std::vector<std::shared_ptr<const ImageMemory>> left; ///< where its image was when it was locked
        Orvo::CAM_IMAGE_INFO info = {};
    };

    void useMemory(std::shared_ptr<const ImageMemory> memory, std::size_t payload);
    [[nodiscard]] bool inSlot(const FrameBuffer& buffer) const;

    mutable std::mutex m_mutex;
    std::size_t m_payload = 0;
    std::size_t m_pixels;
    std::shared_ptr<const ImageMemory> m_memory;
    std::vector<FrameBuffer> m_buffers; ///< one for each of the memory's
    std::vector<Slot> m_slots;
    std::uint32_t m_next = 0;
    std::optional<std::uint32_t> m_current;
};

} // namespace orvo
