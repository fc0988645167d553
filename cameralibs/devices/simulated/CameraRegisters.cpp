#include "CameraRegisters.h"

#include "cameralibs/devices/simulated/RegisterTable.h"

#include <chrono>
#include <thread>

namespace orvo::simulated {

namespace {

constexpr auto& kAccessDelay = registerNamed("SimulationAccessDelay");
constexpr auto& kRefuseAccess = registerNamed("SimulationRefuseAccess");
constexpr auto& kUnplug = registerNamed("SimulationUnplug");
constexpr auto& kReplugAfter = registerNamed("SimulationReplugAfter");

} // namespace

CameraRegisters::CameraRegisters(const CameraModel& model, Acquisition& acquisition)
    : m_sensor(model, m_memory, acquisition)
{
    m_sensor.powerUp();
}

AccessResult CameraRegisters::reach(const RegisterEntry* entry) const
{
    if (!m_connected)
        return AccessResult::NotConnected;
    if (const auto delay = m_memory.integer(kAccessDelay); delay > 0)
        std::this_thread::sleep_for(std::chrono::microseconds(delay));
    if (entry == nullptr)
        return AccessResult::InvalidAddress;
    // The switch itself stays within reach, to end the refusal.
    if (m_memory.flag(kRefuseAccess) && entry != &kRefuseAccess)
        return AccessResult::Refused;
    return AccessResult::Done;
}

AccessResult CameraRegisters::read(std::uint64_t address, void* buffer, std::uint32_t size)
{
    const RegisterEntry* const entry = RegisterMemory::find(address, size);
    const AccessResult result = reach(entry);
    if (result != AccessResult::Done)
        return result;
    m_sensor.refresh(*entry);
    m_memory.read(address, buffer, size);
    return AccessResult::Done;
}

AccessResult CameraRegisters::write(std::uint64_t address, const void* buffer, std::uint32_t size)
{
    const RegisterEntry* const entry = RegisterMemory::find(address, size);
    const AccessResult result = reach(entry);
    if (result != AccessResult::Done)
        return result;
    if (entry->access == RegisterAccess::ReadOnly)
        return AccessResult::WriteProtected;
    if (!accepts(*entry, buffer, size))
        return AccessResult::InvalidValue;
    m_memory.write(address, buffer, size);
    if (entry == &kUnplug)
        unplug();
    else
        m_sensor.apply(*entry);
    return AccessResult::Done;
}

bool CameraRegisters::accepts(const RegisterEntry& entry, const void* buffer, std::uint32_t size) const
{
    if (entry.kind == RegisterKind::Text || entry.kind == RegisterKind::Bytes)
        return true;
    if (size != entry.length)
        return false;
    if (entry.kind == RegisterKind::Real) {
        const double value = decodeReal(entry, buffer);
        return !entry.limited || (value >= entry.minimum && value <= entry.maximum); // false for what is not a number
    }
    const std::int64_t value = decodeInteger(entry, buffer);
    const auto number = static_cast<double>(value);
    return (!entry.limited || (number >= entry.minimum && number <= entry.maximum)) && m_sensor.accepts(entry, value);
}

void CameraRegisters::unplug()
{
    m_connected = false;
    if (m_unplugged)
        m_unplugged(static_cast<unsigned>(m_memory.integer(kReplugAfter)));
}

} // namespace orvo::simulated
