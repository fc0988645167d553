#pragma once

#include "cameralibs/transport/Reception.h"

#include <cstdint>
#include <memory>

namespace cameralibs::transport {

/// That of a GigE Vision camera. Its stream lives as long as this, because the camera is asked a lot for each; only its
/// thread starts anew.
class GigeReception : public Reception {
public:
    /// Makes the stream and sets what lets its images arrive.
    [[nodiscard]] static Outcome make(ArvGvDevice* device, std::unique_ptr<Reception>& reception);

    explicit GigeReception(GObjectPointer<ArvStream> stream);
    ~GigeReception() override;
    GigeReception(const GigeReception&) = delete;
    GigeReception& operator=(const GigeReception&) = delete;

    [[nodiscard]] Outcome begin() override;
    void end() override;

private:
    [[nodiscard]] bool stopThread(); ///< false where it did not run
    void noteLosses();

    std::uint64_t m_resent = 0;  ///< packets, until the last begin
    std::uint64_t m_missing = 0; ///< those that never came
    bool m_receiving = true;     ///< as Aravis makes every stream
};

} // namespace cameralibs::transport
