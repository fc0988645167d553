#pragma once

#include "camera/OrvoCamApi.h"
#include "check/cameras/GigeSearch.h"
#include "check/cameras/StreamTrial.h"
#include "check/machine/Interfaces.h"
#include "check/machine/SystemFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// A camera that the camera libraries list, that answers on the network, or both.
struct Camera {
    Orvo::CAM_LINK link = Orvo::CAM_LINK_GIGE_VISION;
    std::string vendor;
    std::string model;
    std::string serial;
    std::string userName;

    std::optional<GigeAnswer> answer;
    bool listed = false;

    std::optional<Orvo::CAM_API_STATUS> opened; ///< the status of opening it, if that was tried
    std::string whyNot;                         ///< the library's text, if it has one
    std::optional<std::int64_t> packetSize;
    bool waitsForTrigger = false;
    std::optional<StreamResult> stream;
    std::uint64_t bufferErrors = 0; ///< datagrams dropped during the stream because a receive buffer was full
};

struct CameraSearch {
    std::vector<Camera> cameras;
    std::vector<std::string> failures;   ///< of the camera library
    std::vector<SilentInterface> silent; ///< interfaces without a search
    std::uint32_t notOpened = 0;         ///< listed cameras above the limit
};

/// Number and name.
[[nodiscard]] std::string statusText(Orvo::CAM_API_STATUS status);

enum class Streaming { no, yes };

/// Finds the real cameras, and opens and closes those that the camera library lists, up to a limit.
[[nodiscard]] CameraSearch searchCameras(const std::vector<Interface>& interfaces, const SystemFiles& files,
                                         Streaming streaming);

} // namespace check
