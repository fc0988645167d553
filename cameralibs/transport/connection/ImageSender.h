#pragma once

#include "camera/OrvoCamApi.h"
#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/transport/Channel.h"
#include "cameralibs/transport/Reception.h"
#include "cameralibs/transport/connection/SharedMemory.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <unordered_map>

namespace cameralibs::transport {

/// Receives images into the library's buffers. A separate thread takes them from the stream, because a callback of the
/// stream would delay its reception.
class ImageSender {
public:
    ImageSender(std::unique_ptr<Reception> reception, std::unique_ptr<SharedMemory> memory);
    ~ImageSender();
    ImageSender(const ImageSender&) = delete;
    ImageSender& operator=(const ImageSender&) = delete;

    /// Runs for every image, on the sender's thread. To be set before the first start.
    std::function<void()> onImage;

    [[nodiscard]] Outcome start(Descriptor channel);

    /// Once it returns, no buffer is written any more.
    void stop();

private:
    void run();
    [[nodiscard]] bool takeFreeBuffers();
    [[nodiscard]] bool send(ArvBuffer* buffer);
    void push(ArvBuffer* buffer);

    const std::unique_ptr<Reception> m_reception;
    const std::unique_ptr<SharedMemory> m_memory;
    std::unordered_map<std::uint64_t, GObjectPointer<ArvBuffer>> m_buffers; ///< of this start, by offset
    std::size_t m_pushed = 0;                                               ///< buffers that the stream holds
    Channel m_channel;
    Packet m_packet;
    std::thread m_thread;
    std::atomic<bool> m_running{false};
};

/// The status of the image in a buffer. Images with padding between their rows (`rowPadding` bytes) fail, because the
/// camera API cannot describe them.
[[nodiscard]] Orvo::CAM_API_STATUS imageStatus(ArvBufferStatus status, int rowPadding);

} // namespace cameralibs::transport
