#pragma once

#include "tests/cameralibs/transport/gige/CameraMemory.h"

#include <chrono>
#include <vector>

namespace gige {

/// A datagram that is about to be sent.
struct Packet {
    Bytes bytes;
    std::chrono::milliseconds after{0}; ///< how much later than the others
    bool foreign = false;               ///< from another address than the camera's
};

/// A command, and what the camera says to it.
struct Exchange {
    const Bytes& command;
    std::vector<Packet> answers;
    std::chrono::milliseconds hang{0}; ///< how long the camera does nothing at all afterwards
};

/// What a camera does differently from an honest one, which does nothing here.
class Behaviour {
public:
    virtual ~Behaviour() = default;

    /// Before the camera is on the network.
    virtual void prepare(CameraMemory& /*memory*/) {}

    /// `exchange` has the one honest answer.
    virtual void answer(Exchange& /*exchange*/) {}

    /// The packets of one image, from the leader to the trailer, or one test packet.
    virtual void send(std::vector<Packet>& /*packets*/) {}
};

} // namespace gige
