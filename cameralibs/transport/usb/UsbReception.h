#pragma once

#include "cameralibs/transport/Reception.h"

namespace cameralibs::transport {

/// That of a USB3 Vision camera. A stream lives from begin to end, because as long as it does the camera's own stream
/// is enabled. The device outlives it.
class UsbReception : public Reception {
public:
    explicit UsbReception(ArvDevice* device);

    /// Errors: CAM_API_STS_CAMERA_NOT_RESPONDING, CAM_API_STS_GENICAM_ERR where the camera tells of impossible images.
    [[nodiscard]] Outcome begin() override;

    /// Disables the camera's stream, too. One that is plugged in but does not answer is given up after some tries.
    void end() override;

    /// By what the camera says of it in its trailer.
    [[nodiscard]] Orvo::CAM_API_STATUS check(std::uint64_t blockId, std::size_t size) const override;

private:
    ArvDevice* const m_device;
};

} // namespace cameralibs::transport
