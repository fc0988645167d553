#pragma once

#include "tests/cameralibs/transport/gige/CameraMemory.h"

#include <chrono>
#include <vector>

namespace gige {

/// A datagram that is about to be sent.
struct Packet {
    Bytes bytes;
    std::chrono::milliseconds after{0}; ///< the delay before it is sent
    bool foreign = false;               ///< from another address than the camera's
};

/// A command and the camera's answers.
struct Exchange {
    const Bytes& command;
    std::vector<Packet> answers;
    std::chrono::milliseconds hang{0}; ///< how long the camera does not react afterwards
};

/// Modifies the behaviour of a camera. The default implementation leaves it correct.
class Behaviour {
public:
    virtual ~Behaviour() = default;

    /// Runs before the camera is reachable.
    virtual void prepare(CameraMemory& /*memory*/) {}

    /// `exchange` has one answer, the correct one.
    virtual void answer(Exchange& /*exchange*/) {}

    /// The packets of one image, from the leader to the trailer, or one test packet.
    virtual void send(std::vector<Packet>& /*packets*/) {}
};

} // namespace gige
