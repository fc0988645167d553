#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/simulated/images/Acquisition.h"
#include "cameralibs/devices/simulated/images/DeviceClock.h"
#include "cameralibs/devices/simulated/registers/CameraRegisters.h"
#include "cameralibs/devices/simulated/registers/RegisterDevice.h"

#include <memory>
#include <string>

namespace cameralibs::simulated {

class Attachment;
struct CameraModel;

/// An opened built-in camera.
class SimulatedDevice : public Device {
public:
    SimulatedDevice(const CameraModel& model, DeviceInfo info, std::shared_ptr<Attachment> attachment);

    [[nodiscard]] const DeviceInfo& info() const override { return m_info; }
    [[nodiscard]] ArvDevice* registers() override { return m_arvDevice.get(); }
    [[nodiscard]] Outcome description(std::string& xml) override;
    [[nodiscard]] Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                     const std::vector<FrameBuffer*>& buffers,
                                     std::unique_ptr<FrameSource>& source) override;
    void onRemoval(std::function<void(const std::string&)> handler) override { m_removed = std::move(handler); }

private:
    void unplug(unsigned replugAfter);

    DeviceInfo m_info;
    std::shared_ptr<Attachment> m_attachment;
    std::string m_description;
    Acquisition m_acquisition;
    DeviceClock m_clock;
    CameraRegisters m_registers;
    GObjectPointer<ArvDevice> m_arvDevice;
    std::function<void(const std::string&)> m_removed;
};

} // namespace cameralibs::simulated
