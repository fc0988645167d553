#pragma once

#include "cameralibs/devices/simulated/registers/RegisterEntry.h"

#include <array>
#include <cstdint>

namespace cameralibs::simulated {

struct CameraModel;
class RegisterMemory;

/// How the registers of the image depend on each other: the region of interest on binning, the greatest frame rate on
/// exposure, height and link, the automatic functions on what they adjust.
class SensorModel {
public:
    SensorModel(const CameraModel& model, RegisterMemory& memory);

    /// Sets the registers as the camera leaves the factory.
    void setFactoryDefaults();

    /// Whether the camera takes this value, beyond the limits of the table.
    [[nodiscard]] bool accepts(const RegisterEntry& entry, std::int64_t value) const;

    /// After a register was written by the user.
    void apply(const RegisterEntry& entry);

    /// After any number of registers changed together.
    void update();

private:
    void applyBinning();
    void applyAutomatics();
    void updateFrameRate();
    void updatePixels();

    const CameraModel& m_model;
    RegisterMemory& m_memory;
    std::array<std::int64_t, 2> m_binning{1, 1}; ///< that the region of interest is fitted to: across, down
};

} // namespace cameralibs::simulated
