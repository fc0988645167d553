#pragma once

#include "cameralibs/devices/Device.h"

#include <cstddef>
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
    SlotRing(std::uint32_t slots, std::size_t spares, std::size_t payload);

    [[nodiscard]] std::size_t payload() const;

    /// From now on every buffer that is handed out has at least this size. Images stay where they are.
    void grow(std::size_t payload);

    /// The buffers for the source of the current payload.
    [[nodiscard]] std::vector<FrameBuffer*> spares() const;

    /// No image of this start yet.
    void beginStart();

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
    struct Buffer : FrameBuffer {
        std::unique_ptr<std::uint8_t[]> memory;
    };
    struct Slot {
        FrameBuffer* buffer = nullptr;
        bool filled = false;
        std::uint32_t locks = 0;
        Orvo::CAM_IMAGE_INFO info = {};
    };

    [[nodiscard]] FrameBuffer* newBuffer();
    [[nodiscard]] FrameBuffer* exchange(Slot& slot, FrameBuffer& filled);

    mutable std::mutex m_mutex;
    std::size_t m_payload;
    std::vector<std::unique_ptr<Buffer>> m_buffers;
    std::vector<FrameBuffer*> m_spares;
    std::vector<FrameBuffer*> m_replacements; ///< for slots whose buffer has become too small
    std::vector<Slot> m_slots;
    std::uint32_t m_next = 0;
    std::optional<std::uint32_t> m_current;
};

} // namespace orvo
