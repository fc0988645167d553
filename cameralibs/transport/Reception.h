#pragma once

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/devices/Device.h"

#include <arv.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace cameralibs::transport {

/// An ArvStream, and when it receives. For one thread at a time.
class Reception {
public:
    Reception() = default;
    virtual ~Reception() = default;
    Reception(const Reception&) = delete;
    Reception& operator=(const Reception&) = delete;

    /// The stream receives into what is pushed into it from now on: nothing yet.
    [[nodiscard]] virtual Outcome begin() = 0;

    /// It touches no buffer any more. Nothing to do for one that has ended.
    virtual void end() = 0;

    /// The status of an image that Aravis takes for whole.
    [[nodiscard]] virtual Orvo::CAM_API_STATUS check(std::uint64_t /*blockId*/, std::size_t /*size*/) const
    {
        return Orvo::CAM_API_STS_SUCCESS;
    }

    /// There between begin and end.
    [[nodiscard]] ArvStream* stream() const noexcept { return m_stream.get(); }

    /// How large a buffer may be at most.
    [[nodiscard]] std::size_t largestBuffer() const noexcept { return m_largestBuffer; }

protected:
    GObjectPointer<ArvStream> m_stream;
    std::size_t m_largestBuffer = std::numeric_limits<std::size_t>::max();
};

} // namespace cameralibs::transport
