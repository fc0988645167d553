#include "cameralibs/devices/simulated/registers/CameraRegisters.h"

#include "cameralibs/devices/simulated/registers/RegisterTable.h"

#include <chrono>
#include <thread>

namespace cameralibs::simulated {

namespace {

constexpr auto& kAccessDelay = registerNamed("SimulationAccessDelay");
constexpr auto& kRefuseAccess = registerNamed("SimulationRefuseAccess");
constexpr auto& kUnplug = registerNamed("SimulationUnplug");
constexpr auto& kReplugAfter = registerNamed("SimulationReplugAfter");

} // namespace

CameraRegisters::CameraRegisters(const CameraModel& model, const std::string& serial, Attachment& attachment,
                                 Acquisition& acquisition, DeviceClock& clock)
    : m_firmware(model, serial, m_memory, attachment, acquisition, clock)
{
    m_firmware.powerUp();
}

AccessResult CameraRegisters::checkAccess(const RegisterEntry* entry) const
{
    if (!m_connected)
        return AccessResult::NotConnected;
    if (const auto delay = m_memory.integer(kAccessDelay); delay > 0)
        std::this_thread::sleep_for(std::chrono::microseconds(delay));
    if (entry == nullptr)
        return AccessResult::InvalidAddress;
    // The switch itself stays accessible, so that the fault can be turned off.
    if (m_memory.flag(kRefuseAccess) && entry != &kRefuseAccess)
        return AccessResult::Refused;
    return AccessResult::Done;
}

AccessResult CameraRegisters::read(std::uint64_t address, void* buffer, std::uint32_t size)
{
    const RegisterEntry* const entry = RegisterMemory::find(address, size);
    const AccessResult result = checkAccess(entry);
    if (result != AccessResult::Done)
        return result;
    m_firmware.refresh(*entry);
    m_memory.read(address, buffer, size);
    return AccessResult::Done;
}

AccessResult CameraRegisters::write(std::uint64_t address, const void* buffer, std::uint32_t size)
{
    const RegisterEntry* const entry = RegisterMemory::find(address, size);
    const AccessResult result = checkAccess(entry);
    if (result != AccessResult::Done)
        return result;
    if (entry->access == RegisterAccess::ReadOnly)
        return AccessResult::WriteProtected;
    if (!accepts(*entry, buffer, size))
        return AccessResult::InvalidValue;
    m_memory.write(address, buffer, size);
    if (entry == &kUnplug) {
        unplug();
    } else {
        m_firmware.apply(*entry);
    }
    return AccessResult::Done;
}

bool CameraRegisters::accepts(const RegisterEntry& entry, const void* buffer, std::uint32_t size) const
{
    if (entry.kind == RegisterKind::Text || entry.kind == RegisterKind::Bytes)
        return true;
    if (size % entry.length != 0)
        return false;
    const auto* const elements = static_cast<const std::uint8_t*>(buffer);
    for (std::uint32_t i = 0; i < size; i += entry.length) {
        if (!acceptsElement(entry, elements + i))
            return false;
    }
    return true;
}

bool CameraRegisters::acceptsElement(const RegisterEntry& entry, const std::uint8_t* element) const
{
    const auto isWithin = [&](double number) {
        // Both comparisons are false for NaN.
        return !entry.limited || (number >= entry.minimum && number <= entry.maximum);
    };
    if (entry.kind == RegisterKind::Real)
        return isWithin(decodeReal(entry, element));
    const std::int64_t value = decodeInteger(entry, element);
    return isWithin(static_cast<double>(value)) && m_firmware.sensor().accepts(entry, value);
}

void CameraRegisters::unplug()
{
    m_connected = false;
    if (m_unplugged)
        m_unplugged(static_cast<unsigned>(m_memory.integer(kReplugAfter)));
}

} // namespace cameralibs::simulated
