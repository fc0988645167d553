#include "cameralibs/devices/simulated/SimulatedDevice.h"

#include "cameralibs/devices/simulated/SimulatedDescription.h"
#include "cameralibs/devices/simulated/images/FrameGenerator.h"
#include "cameralibs/devices/simulated/registers/Attachment.h"
#include "cameralibs/devices/simulated/registers/CameraModel.h"

#include <utility>

namespace cameralibs::simulated {

SimulatedDevice::SimulatedDevice(const CameraModel& model, DeviceInfo info, std::shared_ptr<Attachment> attachment)
    : m_info(std::move(info))
    , m_attachment(std::move(attachment))
    , m_description(describe(model))
    , m_registers(model, m_info.serial, *m_attachment, m_acquisition, m_clock)
    , m_arvDevice(makeRegisterDevice(m_registers, m_description))
{
    m_registers.onUnplug([this](unsigned replugAfter) { unplug(replugAfter); });
}

Outcome SimulatedDevice::description(std::string& xml)
{
    xml = m_description;
    return {};
}

Outcome SimulatedDevice::openSource(FrameSink& sink, const ImageMemory& /*memory*/,
                                    const std::vector<FrameBuffer*>& buffers, std::unique_ptr<FrameSource>& source)
{
    source = std::make_unique<FrameGenerator>(m_acquisition, m_clock, sink, buffers);
    return {};
}

void SimulatedDevice::unplug(unsigned replugAfter)
{
    m_attachment->unplug(replugAfter);
    m_acquisition.disconnect();
    if (m_removed)
        m_removed("The camera was unplugged");
}

} // namespace cameralibs::simulated
