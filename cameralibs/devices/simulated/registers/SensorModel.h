#pragma once

#include "cameralibs/devices/simulated/images/FrameSettings.h"
#include "cameralibs/devices/simulated/registers/RegisterEntry.h"

#include <array>
#include <cstdint>

namespace cameralibs::simulated {

struct CameraModel;
class RegisterMemory;

/// The dependencies between image registers: the region of interest depends on binning, the maximum frame rate on
/// exposure, height and link speed, and the automatic functions on the values they adjust.
class SensorModel {
public:
    SensorModel(const CameraModel& model, RegisterMemory& memory);

    /// Sets the factory defaults.
    void setFactoryDefaults();

    /// Whether the camera accepts this value. Checks only dependencies, not the limits of the table.
    [[nodiscard]] bool accepts(const RegisterEntry& entry, std::int64_t value) const;

    /// To be called after the user has written a register.
    void apply(const RegisterEntry& entry);

    /// To be called after several registers have changed together.
    void update();

private:
    void applyBinning();
    void applyAutomatics();
    void updateFrameRate();
    void updatePixels();

    const CameraModel& m_model;
    RegisterMemory& m_memory;
    std::array<std::int64_t, 2> m_binning{1, 1}; ///< that the region of interest is adapted to: horizontal, vertical
};

/// Reads the image settings from the registers of a built-in camera.
[[nodiscard]] FrameSettings readSettings(const RegisterMemory& memory);

/// Factor between the brightness of the scene and the image, from exposure and gain.
[[nodiscard]] double brightness(double exposureTime, double gain);

} // namespace cameralibs::simulated
