#pragma once

/// A snapshot of the image settings in the registers, for the thread that generates the images.

#include "cameralibs/devices/simulated/images/PixelPacking.h"

#include <array>
#include <cstdint>
#include <tuple>

namespace cameralibs::simulated {

/// In the order of the enumeration entries in the description.
enum class TestPattern : std::uint8_t {
    Off,
    Black,
    White,
    GreyHorizontalRamp,
    GreyVerticalRamp,
    GreyHorizontalRampMoving,
    GreyVerticalRampMoving,
    HorizontalLineMoving,
    VerticalLineMoving,
    ColorBar,
};

struct ImageSettings {
    std::uint32_t sensorWidth = 0;
    std::uint32_t sensorHeight = 0;
    bool colour = false;

    std::uint32_t format = 0;              ///< PFNC value; determines the size of the image
    const PixelPacking* packing = nullptr; ///< of that format, or of one with the same bits per pixel
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t offsetX = 0;
    std::uint32_t offsetY = 0;
    std::uint32_t binningX = 1;
    std::uint32_t binningY = 1;
    bool reverseX = false;
    bool reverseY = false;
    TestPattern pattern = TestPattern::Off;

    // Conversion from the light of the scene to pixel values.
    double red = 1; ///< factors of the light
    double green = 1;
    double blue = 1;
    double blackLevel = 0; ///< fraction of the full scale
    double gamma = 1;
    bool useTable = false;
    std::array<std::uint8_t, 256> table{}; ///< look-up table from 8-bit to 8-bit values

    [[nodiscard]] auto members() const
    {
        return std::tie(sensorWidth, sensorHeight, colour, format, packing, width, height, offsetX, offsetY, binningX,
                        binningY, reverseX, reverseY, pattern, red, green, blue, blackLevel, gamma, useTable, table);
    }
    [[nodiscard]] bool operator==(const ImageSettings& other) const { return members() == other.members(); }
    [[nodiscard]] bool operator!=(const ImageSettings& other) const { return !(*this == other); }
};

enum class TriggerKind : std::uint8_t { None, Software, Unconnected };

struct FrameSettings {
    ImageSettings image;
    double period = 1;   ///< seconds between the starts of two images
    double exposure = 0; ///< seconds
    TriggerKind trigger = TriggerKind::None;
    double triggerDelay = 0;        ///< seconds
    std::uint32_t framesToSend = 0; ///< images per acquisition; 0 = unlimited
    std::uint32_t loseEvery = 0;
    std::uint32_t incompleteEvery = 0;
};

} // namespace cameralibs::simulated
