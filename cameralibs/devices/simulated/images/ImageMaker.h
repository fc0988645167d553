#pragma once

/// Renders the images of a simulated camera. The static part stays packed until the settings change, so an image costs
/// one copy and the few moving pixels. Not thread-safe.

#include "cameralibs/devices/simulated/images/FrameSettings.h"
#include "cameralibs/devices/simulated/images/Scene.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace cameralibs::simulated {

class ImageMaker {
public:
    /// Size in bytes of an image with these settings.
    [[nodiscard]] static std::size_t sizeOf(const ImageSettings& settings);

    /// Renders the image at time `seconds` of the scene into `out`, which holds sizeOf(settings) bytes.
    void make(const ImageSettings& settings, std::uint64_t frameNumber, double seconds, std::uint8_t* out);

private:
    void prepare(const ImageSettings& settings);
    void buildTone();
    void makeScene(std::uint64_t frameNumber, double seconds, std::uint8_t* out);
    void makePattern(std::uint64_t frameNumber, std::uint8_t* out);
    void drawBall(double seconds, std::uint8_t* out);
    void drawNumber(std::uint64_t frameNumber, std::uint8_t* out);

    /// Renders pixels of row `y` from column `x` in 16 bits per channel. `ball` may be null.
    void renderSpan(int x, int y, int count, const Ball* ball);
    void binColumns(int count, int columns, int pixelsPerBin);
    void readSensor(int x, int y, int count, const Ball* ball, Sample* light) const;
    void packSpan(int x, int y, int count, std::uint8_t* image) const;

    Scene m_scene{0, 0};
    ImageSettings m_settings;
    std::array<std::vector<std::uint16_t>, 3> m_tone; ///< from light to pixel value, per channel
    std::vector<std::uint8_t> m_still;
    std::size_t m_bitsPerPixel = 0; ///< as packed
    std::size_t m_bitsPerRow = 0;
    std::vector<Sample> m_row;   ///< sensor pixels of a row or a part of it, then image pixels
    std::vector<Sample> m_light; ///< another sensor row to be binned with the first
};

} // namespace cameralibs::simulated
