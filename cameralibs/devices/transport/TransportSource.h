#pragma once

#include "cameralibs/base/ImageMemory.h"
#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/transport/BlockIds.h"
#include "cameralibs/devices/transport/Connection.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace cameralibs {

/// Delivers the images that a transport receives into the stream's memory.
class TransportSource : public FrameSource {
public:
    /// The transport must have mapped the memory.
    TransportSource(std::shared_ptr<Connection> connection, FrameSink& sink, const ImageMemory& memory,
                    const std::vector<FrameBuffer*>& buffers);
    ~TransportSource() override;
    TransportSource(const TransportSource&) = delete;
    TransportSource& operator=(const TransportSource&) = delete;

    [[nodiscard]] Outcome start() override;
    void stop() override;

private:
    void run();
    [[nodiscard]] bool handle(const transport::Packet& packet);
    [[nodiscard]] bool deliver(const transport::Image& image);
    [[nodiscard]] bool lend(const FrameBuffer& buffer) const;
    [[nodiscard]] FrameBuffer** lentAt(std::uint64_t offset);

    const std::shared_ptr<Connection> m_connection;
    FrameSink& m_sink;
    const std::size_t m_stride; ///< from one buffer of the memory to the next
    std::vector<FrameBuffer*>
        m_lent; ///< buffers that the transport may fill, by their position in the memory; null if not lent
    transport::Channel m_channel;
    transport::Packet m_packet;
    std::atomic<bool> m_stopping{false};
    std::thread m_thread;
    BlockIds m_blockIds;
};

} // namespace cameralibs
