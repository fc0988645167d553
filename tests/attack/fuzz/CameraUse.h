#pragma once

#include <chrono>
#include <cstdint>

/// Opens a camera, reads and writes some features, and streams, as a program does. Every call must return within its
/// time limit, with a status of the interface, and every byte of an image must be readable. Returns the number of
/// images; streaming ends after `streaming`, or with enough of them.
unsigned useCamera(std::uint32_t index, const char* textFeature, std::chrono::milliseconds streaming);

/// Enough for the images of a correct camera on a busy machine.
constexpr std::chrono::seconds kAnyTime{60};
