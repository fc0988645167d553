#pragma once

#include "cameralibs/devices/simulated/registers/Firmware.h"
#include "cameralibs/devices/simulated/registers/RegisterDevice.h"
#include "cameralibs/devices/simulated/registers/RegisterMemory.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace cameralibs::simulated {

/// The registers of a built-in camera as accessed through its link. Simulates a slow, refusing or disconnected link,
/// enforces the access modes and limits of the table, and lets the firmware react.
class CameraRegisters : public RegisterSpace {
public:
    CameraRegisters(const CameraModel& model, const std::string& serial, Attachment& attachment,
                    Acquisition& acquisition, DeviceClock& clock);

    /// The handler is called once, when the camera is told to unplug itself.
    void onUnplug(std::function<void(unsigned replugAfter)> handler) { m_unplugged = std::move(handler); }

    [[nodiscard]] AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) override;
    [[nodiscard]] AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) override;

private:
    [[nodiscard]] AccessResult checkAccess(const RegisterEntry* entry) const;
    [[nodiscard]] bool accepts(const RegisterEntry& entry, const void* buffer, std::uint32_t size) const;
    [[nodiscard]] bool acceptsElement(const RegisterEntry& entry, const std::uint8_t* element) const;
    void unplug();

    RegisterMemory m_memory;
    Firmware m_firmware;
    std::function<void(unsigned)> m_unplugged;
    bool m_connected = true;
};

} // namespace cameralibs::simulated
