#pragma once

#include "camera/OrvoCamApi.h"

#include <cstdint>
#include <optional>

namespace check {

/// What a trial brought.
struct StreamResult {
    Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS; ///< if it is not 0, the stream failed or broke off
    std::uint64_t images = 0;
    std::uint64_t lost = 0;       ///< images of which nothing arrived, according to the frame numbers
    std::uint64_t incomplete = 0; ///< images that were reported as errors
    std::uint64_t bytes = 0;      ///< of the images
    double seconds = 0;
    std::optional<std::int64_t> packetSize; ///< the one that a GigE Vision camera used
};

/// Streams from an opened camera for two seconds.
[[nodiscard]] StreamResult tryStream(Orvo::CAM_HANDLE camera);

/// The size of a GigE Vision camera's packets in bytes; no value if its description has no such feature.
[[nodiscard]] std::optional<std::int64_t> packetSizeOf(Orvo::CAM_HANDLE camera);

} // namespace check
