#pragma once

/// What the registers of a built-in camera mean: which values they take, what a write changes elsewhere and what the
/// images look like afterwards. Accessed like the registers, by one thread at a time.

#include "cameralibs/devices/simulated/RegisterEntry.h"

#include <cstdint>

namespace orvo::simulated {

class Acquisition;
struct CameraModel;
class RegisterMemory;

class SensorModel {
public:
    SensorModel(const CameraModel& model, RegisterMemory& memory, Acquisition& acquisition);

    /// Puts the registers as they are when the camera is switched on.
    void powerUp();

    /// Whether the camera takes this value, beyond the limits of the table.
    [[nodiscard]] bool accepts(const RegisterEntry& entry, std::int64_t value) const;

    /// Before a register is read: those that change by themselves are brought up to date.
    void refresh(const RegisterEntry& entry);

    /// After a register was written.
    void apply(const RegisterEntry& entry);

private:
    void execute(const RegisterEntry& entry);
    void updateDerived();
    void publish();

    const CameraModel& m_model;
    RegisterMemory& m_memory;
    Acquisition& m_acquisition;
    std::int64_t m_timestampZero = 0;
};

} // namespace orvo::simulated
