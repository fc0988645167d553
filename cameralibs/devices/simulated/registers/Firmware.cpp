#include "cameralibs/devices/simulated/registers/Firmware.h"

#include "cameralibs/devices/simulated/images/Acquisition.h"
#include "cameralibs/devices/simulated/images/DeviceClock.h"
#include "cameralibs/devices/simulated/registers/Attachment.h"
#include "cameralibs/devices/simulated/registers/CameraModel.h"
#include "cameralibs/devices/simulated/registers/RegisterMemory.h"
#include "cameralibs/devices/simulated/registers/RegisterTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace cameralibs::simulated {

namespace {

// Numbered words show where a truncated text ends.
std::string longText(std::size_t size)
{
    std::string text;
    for (int word = 1; text.size() < size; ++word)
        text += "word" + std::to_string(word) + ' ';
    text.resize(size);
    return text;
}

constexpr auto& kSelector = registerNamed("UserSetSelector");
constexpr auto& kDefault = registerNamed("UserSetDefault");
constexpr auto& kDescription = registerNamed("UserSetDescription");
constexpr auto& kUserName = registerNamed("DeviceUserID");

static_assert(kDescription.count == NonVolatile::kUserSets);

} // namespace

const Firmware::Rule Firmware::kOnRead[] = {
    {registerNamed("DeviceTemperature"), &Firmware::showTemperature},
    {registerNamed("DeviceUpTime"), &Firmware::showUpTime},
    {registerNamed("Timestamp"), &Firmware::showTimestamp},
    {registerNamed("AcquisitionStatus"), &Firmware::showAcquisitionStatus},
    {registerNamed("LineStatus"), &Firmware::showLines},
    {registerNamed("LineStatusAll"), &Firmware::showLines},
    {registerNamed("CounterValue"), &Firmware::showCounters},
};

const Firmware::Rule Firmware::kOnWrite[] = {
    {registerNamed("DeviceReset"), &Firmware::powerUp},
    {registerNamed("DeviceUserID"), &Firmware::keepSettings},
    {registerNamed("TimestampLatch"), &Firmware::latchTimestamp},
    {registerNamed("TimestampReset"), &Firmware::resetTimestamp},
    {registerNamed("AcquisitionStart"), &Firmware::startAcquisition},
    {registerNamed("AcquisitionStop"), &Firmware::stopAcquisition},
    {registerNamed("AcquisitionAbort"), &Firmware::stopAcquisition},
    {registerNamed("TriggerSoftware"), &Firmware::triggerImage},
    {registerNamed("UserOutputValue"), &Firmware::joinUserOutputs},
    {registerNamed("UserOutputValueAll"), &Firmware::splitUserOutputs},
    {registerNamed("CounterReset"), &Firmware::resetCounter},
    {registerNamed("UserSetLoad"), &Firmware::loadUserSet},
    {registerNamed("UserSetSave"), &Firmware::saveUserSet},
    {registerNamed("UserSetDefault"), &Firmware::keepSettings},
    {registerNamed("UserSetDescription"), &Firmware::keepSettings},
    {registerNamed("SimulationErrorBurst"), &Firmware::sendErrors},
    {registerNamed("CommandPlain"), &Firmware::countCommand},
    {registerNamed("CommandWhenArmed"), &Firmware::countAndDisarm},
};

Firmware::Firmware(const CameraModel& model, std::string serial, RegisterMemory& memory, Attachment& attachment,
                   Acquisition& acquisition, DeviceClock& clock)
    : m_model(model)
    , m_serial(std::move(serial))
    , m_memory(memory)
    , m_acquisition(acquisition)
    , m_clock(clock)
    , m_sensor(model, memory)
    , m_userSets(memory, attachment)
{
}

void Firmware::powerUp()
{
    m_acquisition.stop();
    m_clock.reset();
    m_memory.reset();
    m_memory.setText(registerNamed("DeviceModelName"), m_model.name);
    m_memory.setText(registerNamed("DeviceSerialNumber"), m_serial);
    m_memory.setText(registerNamed("StringLong"), longText(registerNamed("StringLong").length));
    for (const std::uint32_t output : {2U, 3U})
        m_memory.set(registerNamed("LineMode"), 1, output);
    m_sensor.setFactoryDefaults();
    m_userSets.powerUp();
    m_sensor.update();
    m_acquisition.configure(readSettings(m_memory));
}

void Firmware::refresh(const RegisterEntry& entry)
{
    for (const Rule& rule : kOnRead) {
        if (&rule.entry == &entry)
            (this->*rule.act)();
    }
}

void Firmware::apply(const RegisterEntry& entry)
{
    m_sensor.apply(entry);
    for (const Rule& rule : kOnWrite) {
        if (&rule.entry == &entry)
            (this->*rule.act)();
    }
    m_acquisition.configure(readSettings(m_memory));
}

void Firmware::showTemperature()
{
    constexpr auto& kTemperature = registerNamed("DeviceTemperature");
    const double seconds = m_clock.secondsOn();
    // The temperature rises after power-up and keeps fluctuating.
    const double warm = 1 - std::exp(-seconds / 300);
    m_memory.setReal(kTemperature, 32 + 14 * warm + 0.6 * std::sin(seconds / 7) + 0.2 * std::sin(seconds * 1.7), 0);
    m_memory.setReal(kTemperature, 28 + 9 * warm + 0.3 * std::sin(seconds / 11), 1);
}

void Firmware::showUpTime()
{
    m_memory.set(registerNamed("DeviceUpTime"), static_cast<std::int64_t>(m_clock.secondsOn()));
}

void Firmware::showTimestamp()
{
    m_memory.set(registerNamed("Timestamp"), m_clock.nanoseconds());
}

void Firmware::showAcquisitionStatus()
{
    constexpr auto& kStatus = registerNamed("AcquisitionStatus");
    const bool active = m_acquisition.isActive();
    m_memory.set(kStatus, active ? 1 : 0, 0);
    m_memory.set(kStatus, active && m_memory.flag(registerNamed("TriggerMode")) ? 1 : 0, 1);
}

void Firmware::showLines()
{
    constexpr auto& kStatus = registerNamed("LineStatus");
    constexpr std::int64_t kFirstUserOutput = 1;
    constexpr std::int64_t kAcquisitionActive = 3;
    std::int64_t all = 0;
    for (std::uint32_t line = 0; line < kStatus.count; ++line) {
        bool high = false; // inputs are not connected
        const std::int64_t source = m_memory.integer(registerNamed("LineSource"), line);
        if (m_memory.integer(registerNamed("LineMode"), line) != 0 && source != 0) {
            const std::int64_t outputs = m_memory.integer(registerNamed("UserOutputValueAll"));
            high = source == kAcquisitionActive ? m_acquisition.isActive()
                                                : ((outputs >> (source - kFirstUserOutput)) & 1) != 0;
        }
        high = high != (m_memory.integer(registerNamed("LineInverter"), line) != 0);
        m_memory.set(kStatus, high ? 1 : 0, line);
        all |= static_cast<std::int64_t>(high) << line;
    }
    m_memory.set(registerNamed("LineStatusAll"), all);
}

void Firmware::showCounters()
{
    constexpr auto& kValue = registerNamed("CounterValue");
    for (std::uint32_t counter = 0; counter < kValue.count; ++counter) {
        const bool counts = m_memory.integer(registerNamed("CounterEventSource"), counter) != 0;
        const auto duration = static_cast<std::uint64_t>(m_memory.integer(registerNamed("CounterDuration"), counter));
        const std::uint64_t events = m_acquisition.imageCount() - m_counterZero[counter];
        m_memory.set(kValue, counts ? static_cast<std::int64_t>(events % duration) : 0, counter);
    }
}

void Firmware::startAcquisition()
{
    m_acquisition.start();
}

void Firmware::stopAcquisition()
{
    m_acquisition.stop();
}

void Firmware::triggerImage()
{
    m_acquisition.trigger();
}

void Firmware::latchTimestamp()
{
    m_memory.set(registerNamed("TimestampLatchValue"), m_clock.nanoseconds());
}

void Firmware::resetTimestamp()
{
    m_clock.reset();
}

void Firmware::resetCounter()
{
    const auto counter = static_cast<std::size_t>(m_memory.integer(registerNamed("CounterSelector")));
    m_counterZero[counter] = m_acquisition.imageCount();
}

void Firmware::loadUserSet()
{
    m_userSets.load();
    m_sensor.update();
}

void Firmware::saveUserSet()
{
    m_userSets.save();
}

void Firmware::keepSettings()
{
    m_userSets.keep();
}

void Firmware::joinUserOutputs()
{
    constexpr auto& kValue = registerNamed("UserOutputValue");
    const std::int64_t all = m_memory.integer(kValue, 0) | m_memory.integer(kValue, 1) << 1;
    m_memory.set(registerNamed("UserOutputValueAll"), all);
}

void Firmware::splitUserOutputs()
{
    constexpr auto& kValue = registerNamed("UserOutputValue");
    const std::int64_t all = m_memory.integer(registerNamed("UserOutputValueAll"));
    m_memory.set(kValue, all & 1, 0);
    m_memory.set(kValue, all >> 1 & 1, 1);
}

void Firmware::sendErrors()
{
    m_acquisition.sendErrors(static_cast<std::uint32_t>(m_memory.integer(registerNamed("SimulationErrorBurst"))));
}

void Firmware::countCommand()
{
    constexpr auto& kCount = registerNamed("CommandCount");
    m_memory.set(kCount, m_memory.integer(kCount) + 1);
}

void Firmware::countAndDisarm()
{
    countCommand();
    m_memory.set(registerNamed("CommandArmed"), 0);
}

UserSets::UserSets(RegisterMemory& memory, Attachment& attachment)
    : m_memory(memory)
    , m_attachment(attachment)
{
}

void UserSets::powerUp()
{
    m_factory = m_memory.save();
    const NonVolatile kept = m_attachment.memory();
    m_memory.setText(kUserName, kept.userName);
    m_memory.set(kDefault, kept.defaultSet);
    for (std::uint32_t set = 0; set < kDescription.count; ++set)
        m_memory.setText(kDescription, kept.descriptions[set], set);
    loadSet(kept.defaultSet);
}

void UserSets::load()
{
    loadSet(selected());
}

void UserSets::save()
{
    if (selected() == 0)
        return;
    NonVolatile kept = m_attachment.memory();
    kept.sets[selected()] = m_memory.save();
    m_attachment.setMemory(kept);
}

void UserSets::keep()
{
    NonVolatile kept = m_attachment.memory();
    kept.userName = m_memory.text(kUserName);
    kept.defaultSet = static_cast<std::uint32_t>(m_memory.integer(kDefault));
    for (std::uint32_t set = 0; set < kDescription.count; ++set)
        kept.descriptions[set] = m_memory.text(kDescription, set);
    m_attachment.setMemory(kept);
}

std::uint32_t UserSets::selected() const
{
    return static_cast<std::uint32_t>(m_memory.integer(kSelector));
}

void UserSets::loadSet(std::uint32_t number)
{
    const auto saved = m_attachment.memory().sets[number];
    m_memory.load(saved.empty() ? m_factory : saved);
}

} // namespace cameralibs::simulated
