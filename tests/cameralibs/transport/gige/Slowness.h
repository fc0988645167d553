#pragma once

#include "tests/cameralibs/transport/gige/Behaviour.h"

#include <optional>

namespace gige {

/// An acknowledgement that asks for so many milliseconds of patience.
[[nodiscard]] Packet pendingAnswer(const Bytes& command, std::uint16_t announced, std::chrono::milliseconds after);

/// A camera that is honest and slow, as its registers kTestDelay, kTestPending and kTestImageDelay say, and with every
/// command but a search where it is told a delay at its start.
class Slowness : public Behaviour {
public:
    struct Delay {
        std::chrono::milliseconds time{0};
        bool pending = false; ///< it asks for patience meanwhile
    };
    explicit Slowness(Delay always)
        : m_always(always)
    {
    }

    void prepare(CameraMemory& memory) override { m_memory = &memory; }
    void answer(Exchange& exchange) override;
    void send(std::vector<Packet>& packets) override;

private:
    [[nodiscard]] Delay delayOf(const Bytes& command) const;

    const Delay m_always;
    const CameraMemory* m_memory = nullptr;
};

} // namespace gige
