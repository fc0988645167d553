#pragma once

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/transport/Connection.h"

#include <arv.h>

#include <memory>

namespace cameralibs {

/// A USB3 Vision or GigE Vision camera that a transport controls.
class TransportDevice : public Device {
public:
    /// The transport has opened the camera.
    TransportDevice(DeviceInfo info, std::shared_ptr<Connection> connection);

    [[nodiscard]] const DeviceInfo& info() const override { return m_info; }
    [[nodiscard]] ArvDevice* registers() override { return m_registers.get(); }
    [[nodiscard]] Outcome description(std::string& xml) override;
    [[nodiscard]] Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                     const std::vector<FrameBuffer*>& buffers,
                                     std::unique_ptr<FrameSource>& source) override;
    void onRemoval(std::function<void(const std::string&)> handler) override
    {
        m_connection->onGone(std::move(handler));
    }
    void closeBy(std::chrono::steady_clock::time_point time) override { m_connection->endBy(time); }
    void hurry(std::chrono::steady_clock::time_point end) override { m_connection->hurry(end); }
    void relax() override { m_connection->relax(); }

private:
    const DeviceInfo m_info;
    const std::shared_ptr<Connection> m_connection;
    const GObjectPointer<ArvDevice> m_registers;
};

} // namespace cameralibs
