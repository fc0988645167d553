#pragma once

/// Every register of the built-in cameras. A feature "Width" of the description refers to the register "Width" by the
/// node name "WidthReg". What differs between the cameras is set when one of them is switched on (CameraModel.h).

#include "cameralibs/devices/simulated/RegisterRows.h"

#include <stdexcept>

namespace orvo::simulated {

namespace rows {

constexpr auto kTable = laidOut(std::array{
    // Device
    text("DeviceVendorName", RO, 32, "Simulated"),
    text("DeviceModelName", RO, 32),
    text("DeviceVersion", RO, 32, "1.0"),
    text("DeviceSerialNumber", RO, 32),
    text("DeviceUserID", RW, 64).notStored(),
    choice("DeviceTemperatureSelector", 2),
    real("DeviceTemperature", RO).times(2, "DeviceTemperatureSelector"),
    command("DeviceReset"),
    i64("Timestamp", RO),
    command("TimestampLatch"),
    i64("TimestampLatchValue", RO),
    command("TimestampReset"),

    // Image format
    u32("SensorWidth", RO),
    u32("SensorHeight", RO),
    flag("ColorSensor", RO),
    u32("WidthMax", RO),
    u32("HeightMax", RO),
    u32("Width", RW),
    u32("Height", RW),
    u32("OffsetX", RW),
    u32("OffsetY", RW),
    flag("ReverseX", RW),
    flag("ReverseY", RW),
    u32("PixelFormat", RW),
    choice("TestPattern", 10),

    // Acquisition
    choice("AcquisitionMode", 3, 2),
    command("AcquisitionStart"),
    command("AcquisitionStop"),
    u32("AcquisitionFrameCount", RW, 10).between(1, 65535),
    real("AcquisitionFrameRate", RW, 60.0),
    real("AcquisitionFrameRateMax", RO),
    choice("TriggerMode", 2),
    choice("TriggerSource", 3),
    command("TriggerSoftware"),
    real("TriggerDelay", RW).between(0, 1000000),
    real("ExposureTime", RW, 10000.0).between(10, 10000000),

    // Analog
    real("Gain", RW).between(0, 24),
    real("BlackLevel", RW).between(0, 64),
    real("Gamma", RW, 1.0).between(0.25, 4),

    // Transport
    i64("PayloadSize", RO),
    flag("TLParamsLocked", RW).notStored(),

    // Faults on demand
    command("SimulationUnplug"),
    u32("SimulationReplugAfter", RW).between(0, 3600).notStored(),
    u32("SimulationLoseEvery", RW).between(0, 1000000).notStored(),
    u32("SimulationIncompleteEvery", RW).between(0, 1000000).notStored(),
    u32("SimulationAccessDelay", RW).between(0, 1000000).notStored(),
    u32("SimulationErrorBurst", RW).between(0, 1000).notStored(),
    flag("SimulationRefuseAccess", RW).notStored(),
});

} // namespace rows

inline constexpr auto kRegisters = rows::kTable;

/// For constants of the compiler: a name that is not in the table does not compile.
constexpr const RegisterEntry& registerNamed(std::string_view name)
{
    for (const RegisterEntry& row : kRegisters) {
        if (row.name == name)
            return row;
    }
    throw std::out_of_range("no such register");
}

} // namespace orvo::simulated
