#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/aravis/BlockIds.h"
#include "cameralibs/devices/aravis/DeviceConnection.h"

#include <atomic>
#include <memory>
#include <thread>
#include <unordered_map>

namespace orvo {

/// The images of an ArvStream. The stream is made without a callback of its own: what a callback does there holds up
/// the reception, so a thread takes the images out.
class AravisSource : public FrameSource {
public:
    AravisSource(std::shared_ptr<DeviceConnection> connection, GObjectPointer<ArvStream> stream, FrameSink& sink,
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
    void abandon();
    void recycleBuffers();

    const std::shared_ptr<DeviceConnection> m_connection;
    GObjectPointer<ArvStream> m_stream;
    FrameSink& m_sink;
    std::unordered_map<FrameBuffer*, GObjectPointer<ArvBuffer>> m_buffers; ///< every one that was ever handed in
    std::thread m_thread;
    std::atomic<bool> m_running{false};
    bool m_receiving = true; ///< whether Aravis' own thread runs
    BlockIds m_blockIds;
};

} // namespace orvo
