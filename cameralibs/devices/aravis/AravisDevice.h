#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/aravis/DeviceConnection.h"
#include "cameralibs/devices/aravis/Reception.h"

#include <memory>

namespace orvo {

/// A USB3 Vision or GigE Vision camera that this process controls.
class AravisDevice : public Device {
public:
    AravisDevice(DeviceInfo info, std::shared_ptr<DeviceConnection> connection);
    ~AravisDevice() override;
    AravisDevice(const AravisDevice&) = delete;
    AravisDevice& operator=(const AravisDevice&) = delete;

    [[nodiscard]] const DeviceInfo& info() const override { return m_info; }
    [[nodiscard]] ArvDevice* registers() override { return m_connection->device(); }
    [[nodiscard]] Outcome description(std::string& xml) override;
    [[nodiscard]] Outcome openSource(FrameSink& sink, const std::vector<FrameBuffer*>& buffers,
                                     std::unique_ptr<FrameSource>& source) override;
    void onRemoval(std::function<void()> handler) override;
    void setLostQuery(std::function<bool()> lost) override { m_connection->setLostQuery(std::move(lost)); }

private:
    [[nodiscard]] Outcome openGigeReception(std::unique_ptr<Reception>& reception);

    const DeviceInfo m_info;
    const std::shared_ptr<DeviceConnection> m_connection;
    unsigned long m_removalConnection = 0;
};

} // namespace orvo
