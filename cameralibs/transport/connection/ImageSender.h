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

/// Receives images into the library's buffers. The stream is made without a callback of its own: what a callback does
/// there holds up the reception, so a thread takes the images out.
class ImageSender {
public:
    ImageSender(std::unique_ptr<Reception> reception, std::unique_ptr<SharedMemory> memory);
    ~ImageSender();
    ImageSender(const ImageSender&) = delete;
    ImageSender& operator=(const ImageSender&) = delete;

    /// Runs for every image, on the sender's thread. Set while nothing is started.
    std::function<void()> onImage;

    [[nodiscard]] Outcome start(Descriptor channel);

    /// Afterwards no buffer is written.
    void stop();

private:
    void run();
    [[nodiscard]] bool takeFreeBuffers();
    [[nodiscard]] bool send(ArvBuffer* buffer);
    void push(ArvBuffer* buffer);

    const std::unique_ptr<Reception> m_reception;
    const std::unique_ptr<SharedMemory> m_memory;
    std::unordered_map<std::uint64_t, GObjectPointer<ArvBuffer>> m_buffers; ///< by offset; those of this start
    std::size_t m_pushed = 0;                                               ///< how many the stream holds
    Channel m_channel;
    Packet m_packet;
    std::thread m_thread;
    std::atomic<bool> m_running{false};
};

/// What the status of a buffer means to whoever waits for its image. `rowPadding` are the bytes between the rows, which
/// the interface has no place for.
[[nodiscard]] Orvo::CAM_API_STATUS imageStatus(ArvBufferStatus status, int rowPadding);

} // namespace cameralibs::transport
