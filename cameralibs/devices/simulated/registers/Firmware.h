#pragma once

#include "cameralibs/devices/simulated/registers/RegisterEntry.h"
#include "cameralibs/devices/simulated/registers/SensorModel.h"
#include "cameralibs/devices/simulated/registers/UserSets.h"

#include <array>
#include <cstdint>
#include <string>

namespace cameralibs::simulated {

class Acquisition;
class DeviceClock;

/// What a built-in camera does when its registers are read and written: it executes commands, brings up to date what
/// moves by itself and tells the acquisition what the images are to be like. Accessed by one thread at a time.
class Firmware {
public:
    Firmware(const CameraModel& model, std::string serial, RegisterMemory& memory, Attachment& attachment,
             Acquisition& acquisition, DeviceClock& clock);

    /// Puts the registers as they are when the camera is switched on.
    void powerUp();

    [[nodiscard]] const SensorModel& sensor() const { return m_sensor; }

    /// Before a register is read.
    void refresh(const RegisterEntry& entry);

    /// After a register was written.
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
