#include "cameralibs/devices/simulated/images/FrameGenerator.h"

#include "cameralibs/devices/simulated/images/DeviceClock.h"

#include <chrono>
#include <exception>
#include <system_error>

namespace cameralibs::simulated {

namespace {

bool isNth(std::uint64_t number, std::uint32_t every)
{
    return every != 0 && number % every == 0;
}

} // namespace

FrameGenerator::FrameGenerator(Acquisition& acquisition, const DeviceClock& clock, FrameSink& sink,
                               const std::vector<FrameBuffer*>& buffers)
    : m_acquisition(acquisition)
    , m_clock(clock)
    , m_sink(sink)
    , m_buffer(buffers.front())
{
}

FrameGenerator::~FrameGenerator()
{
    FrameGenerator::stop();
}

Outcome FrameGenerator::start()
{
    m_frameNumber = 0;
    m_acquisition.openSource();
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        m_acquisition.closeSource();
        return {Orvo::CAM_API_STS_NO_MEMORY, "There are no more threads"};
    }
    return {};
}

void FrameGenerator::stop()
{
    if (!m_thread.joinable())
        return;
    m_acquisition.closeSource();
    m_thread.join();
}

void FrameGenerator::run()
{
    for (;;) {
        const Acquisition::Next next = m_acquisition.waitForNext();
        switch (next.task) {
        case Acquisition::Task::End:
            return;
        case Acquisition::Task::Error:
            m_sink.fail(Orvo::CAM_API_STS_PACKET_STATUS_ERROR);
            break;
        case Acquisition::Task::Image:
            sendImage(next.settings);
            break;
        }
    }
}

void FrameGenerator::sendImage(const FrameSettings& settings)
{
    ++m_frameNumber;
    if (isNth(m_frameNumber, settings.loseEvery))
        return;
    if (isNth(m_frameNumber, settings.incompleteEvery)) {
        m_sink.fail(Orvo::CAM_API_STS_MISSING_PACKETS);
        return;
    }
    const std::size_t size = ImageMaker::sizeOf(settings.image);
    if (m_buffer->capacity < size) {
        m_sink.fail(Orvo::CAM_API_STS_BUFFER_FULL);
        return;
    }
    m_buffer->timestampNs = static_cast<std::uint64_t>(m_clock.nanoseconds());
    if (!makeImage(settings)) {
        m_sink.fail(Orvo::CAM_API_STS_NO_MEMORY);
        return;
    }
    m_buffer->size = size;
    m_buffer->frameNumber = m_frameNumber;
    m_buffer = m_sink.deliver(m_buffer);
}

/// False if there is not enough memory: a description file may ask for very long rows.
bool FrameGenerator::makeImage(const FrameSettings& settings)
{
    // The scene does not use the camera's clock: it neither stops with the camera nor jumps when the clock is reset.
    const std::chrono::duration<double> sceneTime = Acquisition::Clock::now().time_since_epoch();
    try {
        m_maker.make(settings.image, m_frameNumber, sceneTime.count(), m_buffer->data);
        return true;
    } catch (const std::exception&) {
        m_maker = ImageMaker(); // the exception may have left it inconsistent
        return false;
    }
}

} // namespace cameralibs::simulated
