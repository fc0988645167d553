#pragma once

#include "cameralibs/devices/aravis/DeviceConnection.h"
#include "cameralibs/devices/aravis/Reception.h"

#include <memory>

namespace orvo {

/// That of a USB3 Vision camera. A stream lives from begin to end: as long as it does, the camera's own stream is
/// enabled, and where the camera is gone it spins.
class UsbReception : public Reception {
public:
    explicit UsbReception(std::shared_ptr<DeviceConnection> connection);

    /// Errors: CAM_API_STS_CAMERA_NOT_RESPONDING, CAM_API_STS_GENICAM_ERR where the camera tells of impossible images.
    [[nodiscard]] Outcome begin() override;

    /// Disables the camera's stream, too. One that is plugged in but does not answer is given up after some tries.
    void end() override;

private:
    const std::shared_ptr<DeviceConnection> m_connection;
};

} // namespace orvo
