// The properties in which the built-in cameras differ.

#include "tests/cameralibs/devices/BuiltInTest.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using namespace Orvo;

namespace {

class CameraModelTest : public BuiltInTest {};

/// As the manual lists them.
struct Model {
    std::uint32_t index;
    std::int64_t width;
    std::int64_t height;
    std::string shutter;
    double pixel;       ///< micrometres
    double rate;        ///< images a second
    double highestRate; ///< of the whole sensor
    std::string format;
};

TEST_F(CameraModelTest, ModelsHaveThePropertiesOfTheManual)
{
    const Model models[] = {
        {kMono, 1280, 1024, "Global", 4.8, 60, 200, "Mono8"},
        {kColour, 1920, 1200, "Global", 3.45, 60, 160, "BayerRG8"},
        {kLarge, 5472, 3648, "Rolling", 2.4, 10, 20, "BayerRG8"},
    };
    for (const Model& model : models) {
        SCOPED_TRACE(model.index);
        const SimulatedCamera& camera = switchedOn(model.index);
        for (const char* const width : {"SensorWidth", "WidthMax", "Width"})
            EXPECT_EQ(camera.integer(width), model.width) << width;
        for (const char* const height : {"SensorHeight", "HeightMax", "Height"})
            EXPECT_EQ(camera.integer(height), model.height) << height;
        EXPECT_EQ(camera.choice("SensorShutterMode"), model.shutter);
        EXPECT_DOUBLE_EQ(camera.real("SensorPixelWidth"), model.pixel);
        EXPECT_DOUBLE_EQ(camera.real("SensorPixelHeight"), model.pixel);
        EXPECT_EQ(camera.choice("PixelFormat"), model.format);
        EXPECT_DOUBLE_EQ(camera.real("AcquisitionFrameRate"), model.rate);
        camera.setReal("ExposureTime", 100); // a long one limits the rate
        EXPECT_DOUBLE_EQ(camera.greatestReal("AcquisitionFrameRate"), model.highestRate);
    }
}

} // namespace
