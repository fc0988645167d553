#pragma once

#include "cameralibs/transport/Reception.h"

#include <cstdint>
#include <memory>

namespace cameralibs::transport {

/// Receives from a GigE Vision camera. The stream lives as long as this object, because creating one takes many
/// commands; each start only restarts its thread.
class GigeReception : public Reception {
public:
    /// Creates the stream and configures camera and stream for reception.
    [[nodiscard]] static Outcome make(ArvGvDevice* device, std::unique_ptr<Reception>& reception);

    explicit GigeReception(GObjectPointer<ArvStream> stream);
    ~GigeReception() override;
    GigeReception(const GigeReception&) = delete;
    GigeReception& operator=(const GigeReception&) = delete;

    [[nodiscard]] Outcome begin() override;
    void end() override;

private:
    [[nodiscard]] bool stopThread(); ///< false if it was not running
    void noteLosses();

    std::uint64_t m_resent = 0;  ///< packets, until the last end
    std::uint64_t m_missing = 0; ///< those that never arrived
    bool m_receiving = true;     ///< Aravis starts the thread of a new stream
};

} // namespace cameralibs::transport
