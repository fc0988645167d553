#include "cameralibs/devices/simulated/registers/SensorModel.h"

#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/devices/simulated/registers/CameraModel.h"
#include "cameralibs/devices/simulated/registers/RegisterMemory.h"
#include "cameralibs/devices/simulated/registers/RegisterTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace cameralibs::simulated {

namespace {

enum class Automatic { Off, Once, Continuous };

constexpr auto& kPixelFormat = registerNamed("PixelFormat");
constexpr auto& kFrameRate = registerNamed("AcquisitionFrameRate");
constexpr auto& kFrameRateWanted = registerNamed("AcquisitionFrameRateWanted");
constexpr auto& kExposureTime = registerNamed("ExposureTime");
constexpr auto& kGain = registerNamed("Gain");
constexpr auto& kExposureAuto = registerNamed("ExposureAuto");
constexpr auto& kGainAuto = registerNamed("GainAuto");
constexpr auto& kBalanceWhiteAuto = registerNamed("BalanceWhiteAuto");
constexpr auto& kBalanceRatio = registerNamed("BalanceRatio");

/// The registers of one axis of the image.
struct Axis {
    const RegisterEntry& sensorSize;
    const RegisterEntry& greatest;
    const RegisterEntry& size;
    const RegisterEntry& offset;
    const RegisterEntry& binning;
    std::int64_t step;
};

constexpr Axis kAxes[] = {
    {registerNamed("SensorWidth"), registerNamed("WidthMax"), registerNamed("Width"), registerNamed("OffsetX"),
     registerNamed("BinningHorizontal"), kPixelGroup},
    {registerNamed("SensorHeight"), registerNamed("HeightMax"), registerNamed("Height"), registerNamed("OffsetY"),
     registerNamed("BinningVertical"), 2},
};

constexpr std::int64_t kMinSize = 16;

std::int64_t roundedDown(std::int64_t value, std::int64_t step)
{
    return value / step * step;
}

bool fits(std::int64_t value, std::int64_t minimum, std::int64_t maximum, std::int64_t step)
{
    return value >= minimum && value <= maximum && (value - minimum) % step == 0;
}

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
    image.colour = memory.flag(registerNamed("ColorSensor"));
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
    image.red = factor * (image.colour ? memory.real(kRatio, 0) : 1);
    image.green = factor * (image.colour ? memory.real(kRatio, 1) : 1);
    image.blue = factor * (image.colour ? memory.real(kRatio, 2) : 1);
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
    return memory.integer(registerNamed("TriggerSource")) == 0 ? TriggerKind::Software : TriggerKind::Unconnected;
}

} // namespace

SensorModel::SensorModel(const CameraModel& model, RegisterMemory& memory)
    : m_model(model)
    , m_memory(memory)
{
}

void SensorModel::setFactoryDefaults()
{
    m_memory.setText(registerNamed("SensorName"), m_model.sensor);
    m_memory.set(registerNamed("SensorWidth"), m_model.width);
    m_memory.set(registerNamed("SensorHeight"), m_model.height);
    m_memory.set(registerNamed("ColorSensor"), m_model.colour ? 1 : 0);
    m_memory.set(registerNamed("SensorShutterMode"), m_model.rollingShutter ? 1 : 0);
    m_memory.setReal(registerNamed("SensorPixelWidth"), m_model.pixelPitch);
    m_memory.setReal(registerNamed("SensorPixelHeight"), m_model.pixelPitch);
    m_memory.set(registerNamed("Width"), m_model.width);
    m_memory.set(registerNamed("Height"), m_model.height);
    m_memory.set(kPixelFormat, findPixelFormat(m_model.formats.front())->value);
    m_memory.setReal(kFrameRateWanted, m_model.defaultFrameRate);
    for (std::uint32_t value = 0; value < 256; ++value)
        m_memory.set(registerNamed("LUTValue"), value, value);
    update();
}

bool SensorModel::accepts(const RegisterEntry& entry, std::int64_t value) const
{
    for (const Axis& axis : kAxes) {
        const std::int64_t greatest = m_memory.integer(axis.greatest);
        if (&entry == &axis.size)
            return fits(value, kMinSize, greatest - m_memory.integer(axis.offset), axis.step);
        if (&entry == &axis.offset)
            return fits(value, 0, greatest - m_memory.integer(axis.size), axis.step);
    }
    if (&entry == &kPixelFormat) {
        const auto& names = m_model.formats;
        return std::any_of(names.begin(), names.end(), [&](std::string_view name) {
            const PixelFormat* const format = findPixelFormat(name);
            return format != nullptr && format->value == value;
        });
    }
    return true;
}

void SensorModel::apply(const RegisterEntry& entry)
{
    if (&entry == &kFrameRate)
        m_memory.setReal(kFrameRateWanted, m_memory.real(kFrameRate));
    applyBinning();
    applyAutomatics();
    update();
}

void SensorModel::update()
{
    for (std::size_t i = 0; i < m_binning.size(); ++i) {
        const Axis& axis = kAxes[i];
        m_binning[i] = m_memory.integer(axis.binning);
        m_memory.set(axis.greatest, roundedDown(m_memory.integer(axis.sensorSize) / m_binning[i], axis.step));
    }
    updatePixels();
    updateFrameRate();
}

// Keeps the visible part of the sensor as closely as the steps allow.
void SensorModel::applyBinning()
{
    for (std::size_t i = 0; i < m_binning.size(); ++i) {
        const Axis& axis = kAxes[i];
        const std::int64_t before = m_binning[i];
        const std::int64_t now = m_memory.integer(axis.binning);
        if (now == before)
            continue;
        const std::int64_t greatest = roundedDown(m_memory.integer(axis.sensorSize) / now, axis.step);
        const bool whole = m_memory.integer(axis.size) == m_memory.integer(axis.greatest);
        const std::int64_t scaled = whole ? greatest : m_memory.integer(axis.size) * before / now;
        const std::int64_t size = std::clamp(roundedDown(scaled, axis.step), kMinSize, greatest);
        const std::int64_t offset = roundedDown(m_memory.integer(axis.offset) * before / now, axis.step);
        m_memory.set(axis.size, size);
        m_memory.set(axis.offset, std::min(offset, greatest - size));
    }
}

void SensorModel::applyAutomatics()
{
    const auto mode = [&](const RegisterEntry& entry) { return static_cast<Automatic>(m_memory.integer(entry)); };
    const auto finishOnce = [&](const RegisterEntry& entry) {
        if (mode(entry) == Automatic::Once)
            m_memory.set(entry, 0);
    };
    if (mode(kExposureAuto) != Automatic::Off) {
        const double exposure = 1 / brightness(1, m_memory.real(kGain));
        m_memory.setReal(kExposureTime, std::clamp(exposure, kExposureTime.minimum, kExposureTime.maximum));
        finishOnce(kExposureAuto);
    }
    if (mode(kGainAuto) != Automatic::Off) {
        const double gain = -20 * std::log10(brightness(m_memory.real(kExposureTime), 0));
        m_memory.setReal(kGain, std::clamp(std::round(gain * 10) / 10, kGain.minimum, kGain.maximum));
        finishOnce(kGainAuto);
    }
    if (mode(kBalanceWhiteAuto) != Automatic::Off) {
        for (std::uint32_t colour = 0; colour < kBalanceRatio.count; ++colour)
            m_memory.setReal(kBalanceRatio, 1, colour); // the scene is lit by white light
        finishOnce(kBalanceWhiteAuto);
    }
}

void SensorModel::updatePixels()
{
    const PixelFormat& format = *findPixelFormat(static_cast<std::uint32_t>(m_memory.integer(kPixelFormat)));
    m_memory.set(registerNamed("PixelSize"), bitsPerPixel(format.value));
    m_memory.set(registerNamed("PixelColorFilter"), format.family == PixelFamily::Bayer ? 1 : 0);
    m_memory.set(registerNamed("PixelDynamicRangeMax"), (std::int64_t{1} << format.bits) - 1);
    const auto width = static_cast<std::uint32_t>(m_memory.integer(registerNamed("Width")));
    const auto height = static_cast<std::uint32_t>(m_memory.integer(registerNamed("Height")));
    m_memory.set(registerNamed("PayloadSize"), static_cast<std::int64_t>(imageBytes(format, width, height)));
}

void SensorModel::updateFrameRate()
{
    constexpr auto& kMax = registerNamed("AcquisitionFrameRateMax");
    const bool limited = m_memory.flag(registerNamed("DeviceLinkThroughputLimitMode"));
    const auto link =
        static_cast<double>(m_memory.integer(registerNamed(limited ? "DeviceLinkThroughputLimit" : "DeviceLinkSpeed")));
    const auto payload = static_cast<double>(m_memory.integer(registerNamed("PayloadSize")));
    const auto rows = static_cast<double>(m_memory.integer(registerNamed("Height")) * m_binning[1]);
    const double readOut = m_model.fullFrameRate * m_model.height / rows;
    const double greatest = std::min({readOut, link / payload, 1e6 / m_memory.real(kExposureTime), kFrameRate.maximum});
    m_memory.setReal(kMax, greatest);

    const double wanted = std::min(m_memory.real(kFrameRateWanted), greatest);
    m_memory.setReal(kFrameRate, wanted);
    const bool enabled = m_memory.flag(registerNamed("AcquisitionFrameRateEnable"));
    m_memory.setReal(registerNamed("AcquisitionResultingFrameRate"), enabled ? wanted : greatest);
    m_memory.set(registerNamed("DeviceMaxThroughput"), static_cast<std::int64_t>(greatest * payload));
}

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
