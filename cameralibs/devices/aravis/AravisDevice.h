#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/aravis/DeviceConnection.h"
#include "cameralibs/devices/aravis/LossListener.h"
#include "cameralibs/devices/aravis/Reception.h"

#include <memory>
#include <optional>

namespace orvo {

/// A USB3 Vision or GigE Vision camera that this process controls.
class AravisDevice : public Device {
public:
    AravisDevice(DeviceInfo info, std::shared_ptr<DeviceConnection> connection);

    [[nodiscard]] const DeviceInfo& info() const override { return m_info; }
    [[nodiscard]] ArvDevice* registers() override { return m_connection->device(); }
    [[nodiscard]] Outcome description(std::string& xml) override;
    [[nodiscard]] Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                     const std::vector<FrameBuffer*>& buffers,
                                     std::unique_ptr<FrameSource>& source) override;
    void onRemoval(std::function<void()> handler) override;
    void setLostQuery(std::function<bool()> lost) override { m_connection->setLostQuery(std::move(lost)); }

private:
    [[nodiscard]] Outcome openGigeReception(std::unique_ptr<Reception>& reception);

    const DeviceInfo m_info;
    const std::shared_ptr<DeviceConnection> m_connection;
    std::optional<LossListener> m_lossListener; ///< ends before the connection is dropped
};

} // namespace orvo
