#pragma once

#include "cameralibs/devices/simulated/registers/Firmware.h"
#include "cameralibs/devices/simulated/registers/RegisterMemory.h"
#include "cameralibs/devices/simulated/registers/RegisterSpace.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace cameralibs::simulated {

/// The registers of a built-in camera as they are reached from outside: through a link that can be slow, refuse or be
/// gone, by the rules of the table, with the consequences that the firmware knows.
class CameraRegisters : public RegisterSpace {
public:
    CameraRegisters(const CameraModel& model, const std::string& serial, Attachment& attachment,
                    Acquisition& acquisition, DeviceClock& clock);

    /// Called once, when the camera was told to unplug itself.
    void onUnplug(std::function<void(unsigned replugAfter)> handler) { m_unplugged = std::move(handler); }

    [[nodiscard]] AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) override;
    [[nodiscard]] AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) override;

private:
    [[nodiscard]] AccessResult reach(const RegisterEntry* entry) const;
    [[nodiscard]] bool accepts(const RegisterEntry& entry, const void* buffer, std::uint32_t size) const;
    [[nodiscard]] bool acceptsElement(const RegisterEntry& entry, const std::uint8_t* element) const;
    void unplug();

    RegisterMemory m_memory;
    Firmware m_firmware;
    std::function<void(unsigned)> m_unplugged;
    bool m_connected = true;
};

} // namespace cameralibs::simulated
