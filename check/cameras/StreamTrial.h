#pragma once

#include "camera/OrvoCamApi.h"

#include <cstdint>
#include <optional>

namespace check {

/// What came in the time of a trial.
struct StreamResult {
    Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS; ///< other than 0: there was no stream, or it broke off
    std::uint64_t images = 0;
    std::uint64_t lost = 0;       ///< of which nothing came, by the camera's numbers
    std::uint64_t incomplete = 0; ///< that were told as errors
    std::uint64_t bytes = 0;      ///< of the images
    double seconds = 0;
    std::optional<std::int64_t> packetSize; ///< of GigE Vision, as it was used
};

/// Starts the stream of an opened camera for two seconds.
[[nodiscard]] StreamResult tryStream(Orvo::CAM_HANDLE camera);

/// Bytes of a GigE Vision camera's packets; nothing where its description has no such feature.
[[nodiscard]] std::optional<std::int64_t> packetSizeOf(Orvo::CAM_HANDLE camera);

} // namespace check
