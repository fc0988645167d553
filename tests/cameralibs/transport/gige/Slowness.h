#pragma once

#include "tests/cameralibs/transport/gige/Behaviour.h"

#include <optional>

namespace gige {

/// A pending acknowledgement: it announces that the answer takes so many milliseconds.
[[nodiscard]] Packet pendingAnswer(const Bytes& command, std::uint16_t announced, std::chrono::milliseconds after);

/// A camera that behaves correctly but slowly. Its registers kTestDelay, kTestPending and kTestImageDelay control that;
/// a delay that is given at its start applies to all commands but searches.
class Slowness : public Behaviour {
public:
    /// The pending acknowledgements that it sends meanwhile. A single one announces more than the
    /// whole delay.
    enum class PendingAnswers : std::uint32_t { none, periodic, single };

    struct Delay {
        std::chrono::milliseconds time{0};
        PendingAnswers pending = PendingAnswers::none;
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
