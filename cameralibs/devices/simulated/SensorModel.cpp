#include "SensorModel.h"

#include "cameralibs/devices/simulated/Acquisition.h"
#include "cameralibs/devices/simulated/CameraModel.h"
#include "cameralibs/devices/simulated/RegisterMemory.h"
#include "cameralibs/devices/simulated/RegisterTable.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace orvo::simulated {

namespace {

constexpr auto& kPixelFormatReg = registerNamed("PixelFormat");
constexpr auto& kWidth = registerNamed("Width");
constexpr auto& kHeight = registerNamed("Height");
constexpr auto& kOffsetX = registerNamed("OffsetX");
constexpr auto& kOffsetY = registerNamed("OffsetY");
constexpr auto& kWidthMax = registerNamed("WidthMax");
constexpr auto& kHeightMax = registerNamed("HeightMax");
constexpr auto& kFrameRate = registerNamed("AcquisitionFrameRate");
constexpr auto& kFrameRateMax = registerNamed("AcquisitionFrameRateMax");
constexpr auto& kExposureTime = registerNamed("ExposureTime");
constexpr auto& kTriggerMode = registerNamed("TriggerMode");
constexpr auto& kTriggerSource = registerNamed("TriggerSource");

constexpr std::int64_t kMinSize = 16;
constexpr std::int64_t kWidthStep = kPixelGroup;
constexpr std::int64_t kHeightStep = 2;

// The light of the scene is right for this exposure, without gain.
constexpr double kNominalExposure = 10000;

enum class AcquisitionMode { SingleFrame, MultiFrame, Continuous };

std::int64_t nanosecondsNow()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

bool fits(std::int64_t value, std::int64_t minimum, std::int64_t maximum, std::int64_t step)
{
    return value >= minimum && value <= maximum && (value - minimum) % step == 0;
}

} // namespace

SensorModel::SensorModel(const CameraModel& model, RegisterMemory& memory, Acquisition& acquisition)
    : m_model(model)
    , m_memory(memory)
    , m_acquisition(acquisition)
{
}

void SensorModel::powerUp()
{
    m_memory.reset();
    m_memory.setText(registerNamed("DeviceModelName"), m_model.name);
    m_memory.set(registerNamed("SensorWidth"), m_model.width);
    m_memory.set(registerNamed("SensorHeight"), m_model.height);
    m_memory.set(registerNamed("ColorSensor"), m_model.color ? 1 : 0);
    m_memory.set(kWidth, m_model.width);
    m_memory.set(kHeight, m_model.height);
    m_memory.set(kPixelFormatReg, pixelFormat(m_model.formats.front())->value);
    m_memory.setReal(kFrameRate, m_model.defaultFrameRate);
    m_timestampZero = nanosecondsNow();
    updateDerived();
    publish();
}

bool SensorModel::accepts(const RegisterEntry& entry, std::int64_t value) const
{
    if (&entry == &kWidth)
        return fits(value, kMinSize, m_memory.integer(kWidthMax) - m_memory.integer(kOffsetX), kWidthStep);
    if (&entry == &kHeight)
        return fits(value, kMinSize, m_memory.integer(kHeightMax) - m_memory.integer(kOffsetY), kHeightStep);
    if (&entry == &kOffsetX)
        return fits(value, 0, m_memory.integer(kWidthMax) - m_memory.integer(kWidth), kWidthStep);
    if (&entry == &kOffsetY)
        return fits(value, 0, m_memory.integer(kHeightMax) - m_memory.integer(kHeight), kHeightStep);
    if (&entry == &kPixelFormatReg) {
        const PixelFormat* const format = pixelFormat(static_cast<std::uint32_t>(value));
        const auto& names = m_model.formats;
        return format != nullptr && std::find(names.begin(), names.end(), format->name) != names.end();
    }
    return true;
}

void SensorModel::refresh(const RegisterEntry& entry)
{
    constexpr auto& kTemperature = registerNamed("DeviceTemperature");
    constexpr auto& kTimestamp = registerNamed("Timestamp");
    if (&entry == &kTemperature) {
        const double minutes = static_cast<double>(nanosecondsNow() - m_timestampZero) / 60e9;
        m_memory.setReal(kTemperature, 44.0 + 2.0 * std::sin(7 * minutes) + 0.5 * std::sin(40 * minutes), 0);
        m_memory.setReal(kTemperature, 38.0 + 1.0 * std::sin(5 * minutes), 1);
    } else if (&entry == &kTimestamp) {
        m_memory.set(kTimestamp, nanosecondsNow() - m_timestampZero);
    }
}

void SensorModel::apply(const RegisterEntry& entry)
{
    if (entry.access == RegisterAccess::WriteOnly)
        execute(entry);
    updateDerived();
    publish();
}

void SensorModel::execute(const RegisterEntry& entry)
{
    if (entry.name == "AcquisitionStart")
        m_acquisition.start();
    else if (entry.name == "AcquisitionStop")
        m_acquisition.stop();
    else if (entry.name == "TriggerSoftware")
        m_acquisition.trigger();
    else if (entry.name == "TimestampLatch")
        m_memory.set(registerNamed("TimestampLatchValue"), nanosecondsNow() - m_timestampZero);
    else if (entry.name == "TimestampReset")
        m_timestampZero = nanosecondsNow();
    else if (entry.name == "DeviceReset")
        powerUp();
}

void SensorModel::updateDerived()
{
    m_memory.set(kWidthMax, m_model.width);
    m_memory.set(kHeightMax, m_model.height);
    const auto pixels = static_cast<std::size_t>(m_memory.integer(kWidth) * m_memory.integer(kHeight));
    const PixelFormat& format = *pixelFormat(static_cast<std::uint32_t>(m_memory.integer(kPixelFormatReg)));
    m_memory.set(registerNamed("PayloadSize"), static_cast<std::int64_t>(bytesOf(format, pixels)));

    const double readOut = m_model.fullFrameRate * m_model.height / static_cast<double>(m_memory.integer(kHeight));
    m_memory.setReal(kFrameRateMax, std::min(readOut, 1e6 / m_memory.real(kExposureTime)));
}

void SensorModel::publish()
{
    const auto u32 = [&](const RegisterEntry& entry) { return static_cast<std::uint32_t>(m_memory.integer(entry)); };
    FrameSettings settings;
    ImageSettings& image = settings.image;
    image.format = pixelFormat(u32(kPixelFormatReg));
    image.width = u32(kWidth);
    image.height = u32(kHeight);
    image.offsetX = u32(kOffsetX);
    image.offsetY = u32(kOffsetY);
    image.reverseX = m_memory.flag(registerNamed("ReverseX"));
    image.reverseY = m_memory.flag(registerNamed("ReverseY"));
    image.pattern = static_cast<TestPattern>(u32(registerNamed("TestPattern")));
    const double exposure = m_memory.real(kExposureTime);
    const double brightness = exposure / kNominalExposure * std::pow(10.0, m_memory.real(registerNamed("Gain")) / 20);
    image.red = image.green = image.blue = brightness;
    image.blackLevel = m_memory.real(registerNamed("BlackLevel")) / 255;
    image.gamma = m_memory.real(registerNamed("Gamma"));

    settings.period = 1 / std::min(m_memory.real(kFrameRate), m_memory.real(kFrameRateMax));
    settings.exposure = exposure / 1e6;
    if (m_memory.flag(kTriggerMode))
        settings.trigger = u32(kTriggerSource) == 0 ? TriggerKind::Software : TriggerKind::NeverComing;
    settings.triggerDelay = m_memory.real(registerNamed("TriggerDelay")) / 1e6;
    switch (static_cast<AcquisitionMode>(u32(registerNamed("AcquisitionMode")))) {
    case AcquisitionMode::SingleFrame:
        settings.framesToSend = 1;
        break;
    case AcquisitionMode::MultiFrame:
        settings.framesToSend = u32(registerNamed("AcquisitionFrameCount"));
        break;
    case AcquisitionMode::Continuous:
        break;
    }
    settings.loseEvery = u32(registerNamed("SimulationLoseEvery"));
    settings.incompleteEvery = u32(registerNamed("SimulationIncompleteEvery"));
    m_acquisition.configure(settings);
}

} // namespace orvo::simulated
