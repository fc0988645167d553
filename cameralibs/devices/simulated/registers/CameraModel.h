#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace cameralibs::simulated {

/// The properties in which the built-in cameras differ.
struct CameraModel {
    std::string_view name;
    std::string_view sensor;
    std::uint32_t width;
    std::uint32_t height;
    bool colour;
    bool rollingShutter;
    double pixelPitch;                       ///< micrometres
    double fullFrameRate;                    ///< maximum frames per second of the whole sensor
    double defaultFrameRate;                 ///< frames per second
    std::array<std::string_view, 6> formats; ///< names of pixel formats, the default first; padded with empty names
};

/// In enumeration order.
inline constexpr std::array kCameraModels{
    CameraModel{"SIM-M1280",
                "S1300M",
                1280,
                1024,
                false,
                false,
                4.8,
                200.0,
                60.0,
                {"Mono8", "Mono10", "Mono12", "Mono10p", "Mono12p", "Mono16"}},
    CameraModel{"SIM-C1920",
                "S2300C",
                1920,
                1200,
                true,
                false,
                3.45,
                160.0,
                60.0,
                {"BayerRG8", "BayerRG10", "BayerRG12", "BayerRG12p", "RGB8", "YUV422_8"}},
    CameraModel{"SIM-C5472", "S20000C", 5472, 3648, true, true, 2.4, 20.0, 10.0, {"BayerRG8", "BayerRG12p"}},
};

} // namespace cameralibs::simulated
