#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/simulated/images/Acquisition.h"
#include "cameralibs/devices/simulated/images/ImageMaker.h"

#include <memory>
#include <thread>
#include <vector>

namespace cameralibs::simulated {

class DeviceClock;

/// Generates the images of a simulated camera on its own thread and delivers each one to the sink when it is due.
class FrameGenerator : public FrameSource {
public:
    FrameGenerator(Acquisition& acquisition, const DeviceClock& clock, FrameSink& sink,
                   const std::vector<FrameBuffer*>& buffers);
    ~FrameGenerator() override;

    [[nodiscard]] Outcome start() override;
    void stop() override;

private:
    void run();
    void sendImage(const FrameSettings& settings);
    [[nodiscard]] bool makeImage(const FrameSettings& settings);

    Acquisition& m_acquisition;
    const DeviceClock& m_clock;
    FrameSink& m_sink;
    FrameBuffer* m_buffer; ///< to fill next; the generator needs only one
    ImageMaker m_maker;
    std::uint64_t m_frameNumber = 0;
    std::thread m_thread;
};

} // namespace cameralibs::simulated
