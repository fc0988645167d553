#pragma once

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/devices/Device.h"

#include <arv.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace cameralibs::transport {

/// An ArvStream that receives between begin() and end(). Not thread-safe.
class Reception {
public:
    Reception() = default;
    virtual ~Reception() = default;
    Reception(const Reception&) = delete;
    Reception& operator=(const Reception&) = delete;

    /// From now on the stream receives into the buffers that are pushed into it. It starts without any.
    [[nodiscard]] virtual Outcome begin() = 0;

    /// Once it returns, the stream no longer touches any buffer. Does nothing if there was no begin().
    virtual void end() = 0;

    /// The status of an image that Aravis considers complete.
    [[nodiscard]] virtual Orvo::CAM_API_STATUS check(std::uint64_t /*blockId*/, std::size_t /*size*/) const
    {
        return Orvo::CAM_API_STS_SUCCESS;
    }

    /// Valid between begin() and end().
    [[nodiscard]] ArvStream* stream() const noexcept { return m_stream.get(); }

    /// The maximum size of a buffer.
    [[nodiscard]] std::size_t largestBuffer() const noexcept { return m_largestBuffer; }

protected:
    GObjectPointer<ArvStream> m_stream;
    std::size_t m_largestBuffer = std::numeric_limits<std::size_t>::max();
};

} // namespace cameralibs::transport
