#pragma once

#include "cameralibs/devices/Device.h"

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace orvo {

/// The buffers of a stream as its user sees them: a ring of slots, each with the newest image that came its turn.
///
/// There are more buffers than slots. A source fills the spare ones; a filled buffer takes the place of the one in the
/// next slot, which goes back to the source. A locked slot keeps its buffer, so nobody writes into it. Any thread.
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

    /// From now on every buffer that is handed out has at least this size. Images stay where they are.
    void grow(const ImageSize& size);

    /// The buffers for the source of the current payload.
    [[nodiscard]] std::vector<FrameBuffer*> spares() const;

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
    struct Free {
        void operator()(void* memory) const noexcept { std::free(memory); }
    };
    struct Buffer : FrameBuffer {
        std::unique_ptr<void, Free> memory;
        std::size_t room = 0; ///< bytes of memory; those beyond the capacity stay zero
    };
    struct Slot {
        Buffer* buffer = nullptr;
        bool filled = false;
        std::uint32_t locks = 0;
        Orvo::CAM_IMAGE_INFO info = {};
    };

    [[nodiscard]] Buffer* newBuffer();
    [[nodiscard]] FrameBuffer* exchange(Slot& slot, FrameBuffer& filled);

    mutable std::mutex m_mutex;
    std::size_t m_payload;
    std::size_t m_room;
    std::size_t m_pixels;
    std::vector<std::unique_ptr<Buffer>> m_buffers;
    std::vector<FrameBuffer*> m_spares;
    std::vector<Buffer*> m_replacements; ///< for slots whose buffer has become too small
    std::vector<Slot> m_slots;
    std::uint32_t m_next = 0;
    std::optional<std::uint32_t> m_current;
};

} // namespace orvo
