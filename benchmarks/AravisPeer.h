#pragma once

#include <chrono>
#include <cstdint>

/// A GigE Vision camera that is accessed with bare Aravis, in this process: what the camera library is compared with.
namespace aravis {

/// Settings of the camera.
struct Images {
    std::int64_t width;
    std::int64_t height;
    const char* format;
    double rate; ///< per second
};

struct Streamed {
    double images;
    double failed;
    double processorSeconds;
};

/// Searches for cameras. False if there are none.
[[nodiscard]] bool search();

/// Opens the first camera and closes it again, and returns the milliseconds that opening took; negative on failure.
[[nodiscard]] double open();

/// Receives images of the first camera for `time`, with the stream options of the camera library.
[[nodiscard]] Streamed stream(const Images& settings, std::chrono::seconds time);

} // namespace aravis
