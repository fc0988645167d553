#pragma once

#include "cameralibs/devices/aravis/DeviceConnection.h"
#include "cameralibs/devices/aravis/Reception.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orvo {

/// That of a GigE Vision camera. Its stream lives as long as this, because the camera is asked a lot for each; only its
/// thread starts anew.
class GigeReception : public Reception {
public:
    GigeReception(std::string camera, std::shared_ptr<DeviceConnection> connection, GObjectPointer<ArvStream> stream);
    ~GigeReception() override;
    GigeReception(const GigeReception&) = delete;
    GigeReception& operator=(const GigeReception&) = delete;

    [[nodiscard]] Outcome begin() override;
    void end() override;

private:
    [[nodiscard]] bool stopThread(); ///< false where it did not run
    void logLosses() noexcept;

    const std::string m_camera; ///< in the diagnostic log
    const std::shared_ptr<DeviceConnection> m_connection;
    std::uint64_t m_resent = 0;  ///< packets, until the last begin
    std::uint64_t m_missing = 0; ///< those that never came
    bool m_receiving = true;     ///< as Aravis makes every stream
};

} // namespace orvo
