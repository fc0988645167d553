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

    std::optional<Orvo::CAM_API_STATUS> opened; ///< what opening gave; nothing where it was not tried
    std::string whyNot;                         ///< the library's text, where it has one
    std::optional<std::int64_t> packetSize;
    bool waitsForTrigger = false;
    std::optional<StreamResult> stream;
    std::uint64_t bufferErrors = 0; ///< datagrams that found no room in a receive buffer during the stream
};

struct CameraSearch {
    std::vector<Camera> cameras;
    std::string failure;       ///< what could not be done; empty where all was
    std::size_t notOpened = 0; ///< cameras beyond the number that is opened
};

enum class Streaming { no, yes };

/// Lists the real cameras, opens each that is listed, and gives it back.
[[nodiscard]] CameraSearch searchCameras(const std::vector<Interface>& interfaces, const SystemFiles& files,
                                         Streaming streaming);

} // namespace check
