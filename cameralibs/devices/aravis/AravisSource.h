#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/aravis/BlockIds.h"
#include "cameralibs/devices/aravis/DeviceConnection.h"
#include "cameralibs/devices/aravis/Reception.h"

#include <atomic>
#include <memory>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace orvo {

/// The images of an ArvStream. The stream is made without a callback of its own: what a callback does there holds up
/// the reception, so a thread takes the images out.
class AravisSource : public FrameSource {
public:
    AravisSource(std::shared_ptr<DeviceConnection> connection, std::unique_ptr<Reception> reception, FrameSink& sink,
                 const std::vector<FrameBuffer*>& buffers);
    ~AravisSource() override;
    AravisSource(const AravisSource&) = delete;
    AravisSource& operator=(const AravisSource&) = delete;

    [[nodiscard]] Outcome start() override;
    void stop() override;

private:
    void run();
    void handle(ArvBuffer* buffer);
    void push(FrameBuffer* frame);

    const std::shared_ptr<DeviceConnection> m_connection;
    const std::unique_ptr<Reception> m_reception;
    FrameSink& m_sink;
    std::unordered_set<FrameBuffer*> m_free;                               ///< to be filled
    std::unordered_map<FrameBuffer*, GObjectPointer<ArvBuffer>> m_buffers; ///< every one that was pushed since start
    std::thread m_thread;
    std::atomic<bool> m_running{false};
    BlockIds m_blockIds;
};

} // namespace orvo
