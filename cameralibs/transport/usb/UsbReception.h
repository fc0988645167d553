#pragma once

#include "cameralibs/transport/Reception.h"

namespace cameralibs::transport {

/// Receives from a USB3 Vision camera. The stream exists from begin() to end() only, because while it exists, streaming
/// is enabled in the camera. The device must outlive this object.
class UsbReception : public Reception {
public:
    explicit UsbReception(ArvDevice* device);

    /// Errors: CAM_API_STS_CAMERA_NOT_RESPONDING, CAM_API_STS_GENICAM_ERR for impossible image sizes.
    [[nodiscard]] Outcome begin() override;

    /// Also disables streaming in the camera; gives up after some attempts if it does not answer.
    void end() override;

    /// Checks status and size in the image's trailer.
    [[nodiscard]] Orvo::CAM_API_STATUS check(std::uint64_t blockId, std::size_t size) const override;

private:
    ArvDevice* const m_device;
};

} // namespace cameralibs::transport
