#pragma once

/// Makes the images of a built-in camera. What stands still in them is kept packed as long as the settings stay, so an
/// image costs a copy and the few pixels that move. Lives on one thread.

#include "cameralibs/devices/simulated/images/FrameSettings.h"
#include "cameralibs/devices/simulated/images/Scene.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace cameralibs::simulated {

class ImageMaker {
public:
    /// Bytes of an image with these settings.
    [[nodiscard]] static std::size_t sizeOf(const ImageSettings& settings);

    /// Fills `out`, of sizeOf(settings) bytes, with the image of a moment.
    void make(const ImageSettings& settings, std::uint64_t frameNumber, double seconds, std::uint8_t* out);

private:
    void prepare(const ImageSettings& settings);
    void buildTone();
    void makeScene(std::uint64_t frameNumber, double seconds, std::uint8_t* out);
    void makePattern(std::uint64_t frameNumber, std::uint8_t* out);
    void drawBall(double seconds, std::uint8_t* out);
    void drawNumber(std::uint64_t frameNumber, std::uint8_t* out);

    /// Pixels of row `y` from column `x` in 16 bits per channel, with the ball where there is one.
    void renderSpan(int x, int y, int count, const Ball* ball);
    void joinColumns(int count, int columns, int joined);
    void readSensor(int x, int y, int count, const Ball* ball, Sample* light) const;
    void packSpan(int x, int y, int count, std::uint8_t* image) const;

    Scene m_scene{0, 0};
    ImageSettings m_settings;
    std::array<std::vector<std::uint16_t>, 3> m_tone; ///< from light to pixel value, per channel
    std::vector<std::uint8_t> m_still;
    std::size_t m_bitsPerPixel = 0; ///< as packed
    std::size_t m_bitsPerRow = 0;
    std::vector<Sample> m_row;   ///< sensor pixels of one row or less, then pixels of the image
    std::vector<Sample> m_light; ///< a further row of the sensor, to be joined
};

} // namespace cameralibs::simulated
