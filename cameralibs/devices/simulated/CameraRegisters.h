#pragma once

#include "cameralibs/devices/simulated/RegisterMemory.h"
#include "cameralibs/devices/simulated/RegisterSpace.h"
#include "cameralibs/devices/simulated/SensorModel.h"

#include <cstdint>
#include <functional>

namespace orvo::simulated {

/// The registers of a built-in camera as they are reached from outside: through a link that can be slow, refuse or be
/// gone, by the rules of the table, with the consequences that the sensor model knows.
class CameraRegisters : public RegisterSpace {
public:
    CameraRegisters(const CameraModel& model, Acquisition& acquisition);

    [[nodiscard]] RegisterMemory& memory() { return m_memory; }

    /// Called once, when the camera was told to unplug itself.
    void onUnplug(std::function<void(unsigned replugAfter)> handler) { m_unplugged = std::move(handler); }

    [[nodiscard]] AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) override;
    [[nodiscard]] AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) override;

private:
    [[nodiscard]] AccessResult reach(const RegisterEntry* entry) const;
    [[nodiscard]] bool accepts(const RegisterEntry& entry, const void* buffer, std::uint32_t size) const;
    void unplug();

    RegisterMemory m_memory;
    SensorModel m_sensor;
    std::function<void(unsigned)> m_unplugged;
    bool m_connected = true;
};

} // namespace orvo::simulated
