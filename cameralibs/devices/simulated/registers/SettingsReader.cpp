#include "cameralibs/devices/simulated/registers/SettingsReader.h"

#include "cameralibs/devices/simulated/registers/RegisterMemory.h"
#include "cameralibs/devices/simulated/registers/RegisterTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace cameralibs::simulated {

namespace {

constexpr double kNominalExposure = 10000; // microseconds

enum class AcquisitionMode { SingleFrame, MultiFrame, Continuous };
enum class BinningMode { Sum, Average };

std::uint32_t word(const RegisterMemory& memory, const RegisterEntry& entry)
{
    return static_cast<std::uint32_t>(memory.integer(entry));
}

// The image maker averages binned pixels, so the sum needs a factor.
double binningFactor(const RegisterMemory& memory, const RegisterEntry& mode, std::uint32_t binning)
{
    return static_cast<BinningMode>(memory.integer(mode)) == BinningMode::Sum ? binning : 1;
}

void readGeometry(const RegisterMemory& memory, ImageSettings& image)
{
    image.sensorWidth = word(memory, registerNamed("SensorWidth"));
    image.sensorHeight = word(memory, registerNamed("SensorHeight"));
    image.color = memory.flag(registerNamed("ColorSensor"));
    image.format = word(memory, registerNamed("PixelFormat"));
    image.packing = findPacking(image.format);
    image.width = word(memory, registerNamed("Width"));
    image.height = word(memory, registerNamed("Height"));
    image.offsetX = word(memory, registerNamed("OffsetX"));
    image.offsetY = word(memory, registerNamed("OffsetY"));
    image.binningX = word(memory, registerNamed("BinningHorizontal"));
    image.binningY = word(memory, registerNamed("BinningVertical"));
    image.reverseX = memory.flag(registerNamed("ReverseX"));
    image.reverseY = memory.flag(registerNamed("ReverseY"));
    image.pattern = static_cast<TestPattern>(word(memory, registerNamed("TestPattern")));
}

void readTone(const RegisterMemory& memory, ImageSettings& image)
{
    constexpr auto& kRatio = registerNamed("BalanceRatio");
    constexpr auto& kTable = registerNamed("LUTValue");
    const double factor = brightness(memory.real(registerNamed("ExposureTime")), memory.real(registerNamed("Gain"))) *
                          binningFactor(memory, registerNamed("BinningHorizontalMode"), image.binningX) *
                          binningFactor(memory, registerNamed("BinningVerticalMode"), image.binningY);
    image.red = factor * (image.color ? memory.real(kRatio, 0) : 1);
    image.green = factor * (image.color ? memory.real(kRatio, 1) : 1);
    image.blue = factor * (image.color ? memory.real(kRatio, 2) : 1);
    image.blackLevel = memory.real(registerNamed("BlackLevel")) / 255;
    image.gamma = memory.real(registerNamed("Gamma"));
    image.useTable = memory.flag(registerNamed("LUTEnable"));
    for (std::size_t i = 0; i < image.table.size(); ++i)
        image.table[i] = static_cast<std::uint8_t>(memory.integer(kTable, static_cast<std::uint32_t>(i)));
}

std::uint32_t framesToSend(const RegisterMemory& memory)
{
    switch (static_cast<AcquisitionMode>(memory.integer(registerNamed("AcquisitionMode")))) {
    case AcquisitionMode::SingleFrame:
        return 1;
    case AcquisitionMode::MultiFrame:
        return word(memory, registerNamed("AcquisitionFrameCount"));
    default:
        return 0;
    }
}

TriggerKind trigger(const RegisterMemory& memory)
{
    if (!memory.flag(registerNamed("TriggerMode")))
        return TriggerKind::None;
    return memory.integer(registerNamed("TriggerSource")) == 0 ? TriggerKind::Software : TriggerKind::NeverComing;
}

} // namespace

double brightness(double exposureTime, double gain)
{
    return exposureTime / kNominalExposure * std::pow(10.0, gain / 20);
}

FrameSettings readSettings(const RegisterMemory& memory)
{
    FrameSettings settings;
    readGeometry(memory, settings.image);
    readTone(memory, settings.image);
    settings.period = 1 / memory.real(registerNamed("AcquisitionResultingFrameRate"));
    settings.exposure = memory.real(registerNamed("ExposureTime")) / 1e6;
    settings.trigger = trigger(memory);
    settings.triggerDelay = memory.real(registerNamed("TriggerDelay")) / 1e6;
    settings.framesToSend = framesToSend(memory);
    settings.loseEvery = word(memory, registerNamed("SimulationLoseEvery"));
    settings.incompleteEvery = word(memory, registerNamed("SimulationIncompleteEvery"));
    return settings;
}

} // namespace cameralibs::simulated
