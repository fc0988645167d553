#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace orvo::simulated {

/// What tells one built-in camera from another.
struct CameraModel {
    std::string_view name;
    std::string_view sensor;
    std::uint32_t width;
    std::uint32_t height;
    bool color;
    double pixelPitch;                       ///< micrometres
    double fullFrameRate;                    ///< frames per second of the whole sensor, at the most
    double defaultFrameRate;                 ///< frames per second
    std::array<std::string_view, 6> formats; ///< names of pixel formats, the default first; empty ones end the list
};

/// In the order in which they are listed.
inline constexpr std::array kCameraModels{
    CameraModel{"SIM-C1920", "S2300C", 1920, 1200, true, 3.45, 160.0, 60.0, {"BayerRG8", "Mono8", "RGB8"}},
};

} // namespace orvo::simulated
