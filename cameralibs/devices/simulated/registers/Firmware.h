#pragma once

#include "cameralibs/devices/simulated/registers/RegisterEntry.h"
#include "cameralibs/devices/simulated/registers/SensorModel.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace cameralibs::simulated {

class Acquisition;
class Attachment;
class DeviceClock;

/// The user sets and other non-volatile settings of a built-in camera.
class UserSets {
public:
    UserSets(RegisterMemory& memory, Attachment& attachment);

    /// Loads the non-volatile settings. To be called at power-up, when the registers have their factory defaults.
    void powerUp();

    /// Loads or saves the selected set.
    void load();
    void save();

    /// Saves the registers that are non-volatile without a user set.
    void keep();

private:
    [[nodiscard]] std::uint32_t selected() const;
    void loadSet(std::uint32_t number);

    RegisterMemory& m_memory;
    Attachment& m_attachment;
    std::vector<std::uint8_t> m_factory;
};

/// Reacts to register accesses of a built-in camera: executes commands, updates live values and configures the
/// acquisition. Not thread-safe.
class Firmware {
public:
    Firmware(const CameraModel& model, std::string serial, RegisterMemory& memory, Attachment& attachment,
             Acquisition& acquisition, DeviceClock& clock);

    /// Sets the registers to their power-up values.
    void powerUp();

    [[nodiscard]] const SensorModel& sensor() const { return m_sensor; }

    /// To be called before a register is read.
    void refresh(const RegisterEntry& entry);

    /// To be called after a register has been written.
    void apply(const RegisterEntry& entry);

private:
    struct Rule {
        const RegisterEntry& entry;
        void (Firmware::*act)();
    };
    static const Rule kOnRead[];
    static const Rule kOnWrite[];

    void showTemperature();
    void showUpTime();
    void showTimestamp();
    void showAcquisitionStatus();
    void showLines();
    void showCounters();

    void startAcquisition();
    void stopAcquisition();
    void triggerImage();
    void latchTimestamp();
    void resetTimestamp();
    void resetCounter();
    void loadUserSet();
    void saveUserSet();
    void keepSettings();
    void joinUserOutputs();
    void splitUserOutputs();
    void sendErrors();
    void countCommand();
    void countAndDisarm();

    const CameraModel& m_model;
    const std::string m_serial;
    RegisterMemory& m_memory;
    Acquisition& m_acquisition;
    DeviceClock& m_clock;
    SensorModel m_sensor;
    UserSets m_userSets;
    std::array<std::uint64_t, 2> m_counterZero{};
};

} // namespace cameralibs::simulated
