#pragma once

#include "cameralibs/devices/aravis/DeviceConnection.h"
#include "cameralibs/devices/aravis/Reception.h"

#include <memory>

namespace orvo {

/// That of a GigE Vision camera. Its stream lives as long as this, because the camera is asked a lot for each; only its
/// thread starts anew.
class GigeReception : public Reception {
public:
    GigeReception(std::shared_ptr<DeviceConnection> connection, GObjectPointer<ArvStream> stream);
    ~GigeReception() override;
    GigeReception(const GigeReception&) = delete;
    GigeReception& operator=(const GigeReception&) = delete;

    [[nodiscard]] Outcome begin() override;
    void end() override;

private:
    const std::shared_ptr<DeviceConnection> m_connection;
    bool m_receiving = true; ///< as Aravis makes every stream
};

} // namespace orvo
