#pragma once

/// What the camera of the tests lies about: one named row for each lie, in the table of the file it belongs to.
///
/// To add one, write a function of one of the types below and give it a row. Protocol.h tells the facts of GigE Vision
/// that there are to be false about. A lie works on what the honest camera is about to send: an answer, or the packets
/// of an image. It may change, remove, add, repeat and delay them, or let them come from another address. Liar.cpp
/// decides from which command or image on a lie is told, and how often. What varies within a lie is taken from
/// `random`, so that the same seed tells the same lies.
///
///     build/release/bin/gige_camera --liar SEED --lie NAME      the camera with that lie
///     own-network build/release/bin/gige_sessions liar 1 20 1 NAME      20 sessions with it

#include "tests/cameralibs/transport/gige/Behaviour.h"
#include "tests/cameralibs/transport/gige/Random.h"

#include <variant>
#include <vector>

namespace gige {

/// Told before the camera is on the network: registers and description.
using MemoryLie = void (*)(CameraMemory& memory, Random& random);

/// Told to a program that searches for cameras, always.
struct DiscoveryLie {
    void (*tell)(Exchange& exchange, Random& random);
};

/// Told in answer to the other commands.
using AnswerLie = void (*)(Exchange& exchange, Random& random);

/// Told instead of an image, or of a test packet.
using StreamLie = void (*)(std::vector<Packet>& packets, Random& random);

struct Lie {
    const char* name;
    std::variant<MemoryLie, DiscoveryLie, AnswerLie, StreamLie> tell;
};

[[nodiscard]] std::vector<Lie> memoryLies();
[[nodiscard]] std::vector<Lie> discoveryLies();
[[nodiscard]] std::vector<Lie> answerLies();
[[nodiscard]] std::vector<Lie> streamLies();

} // namespace gige
