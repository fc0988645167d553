#include "cameralibs/api/Stream.h"

#include "camera/StatusName.h"
#include "cameralibs/api/Camera.h"
#include "cameralibs/api/HandleTable.h"
#include "cameralibs/api/ImageBounds.h"
#include "cameralibs/base/Log.h"

#include <algorithm>
#include <utility>

namespace cameralibs {

using namespace Orvo;

namespace {

constexpr std::uint32_t kMaxBuffers = 1024;

thread_local bool runsCallback = false;

class InsideCallback {
public:
    InsideCallback() = default;
    ~InsideCallback() { runsCallback = m_outer; }
    InsideCallback(const InsideCallback&) = delete;
    InsideCallback& operator=(const InsideCallback&) = delete;

private:
    const bool m_outer = std::exchange(runsCallback, true);
};

} // namespace

bool Stream::insideCallback() noexcept
{
    return runsCallback;
}

void Stream::forgetCallback() noexcept
{
    runsCallback = false;
}

Stream::Stream(std::shared_ptr<Camera> camera)
    : m_camera(std::move(camera))
    , m_handle(newHandles())
{
}

Stream::~Stream()
{
    close();
}

void Stream::open(std::uint32_t bufferCount)
{
    throwUnless(bufferCount > 0 && bufferCount <= kMaxBuffers, CAM_API_STS_INVALID_PARAMETER);
    {
        const std::lock_guard lock(m_stateMutex);
        throwUnless(m_state == State::stopped, CAM_API_STS_INVALID_CAMERA_HANDLE);
        m_state = State::changing;
    }
    try {
        m_camera->withDevice([&](Device& device, NodeMap& nodes) {
            m_bufferCount = bufferCount;
            m_ring = std::make_unique<SlotRing>(bufferCount, imageSize(nodes));
            throwIfFailed(device.openSource(*this, m_ring->memory(), m_ring->spares(), m_source));
        });
    } catch (...) {
        setState(State::stopped);
        throw;
    }
    setState(State::stopped);
}

void Stream::start()
{
    {
        const std::lock_guard lock(m_stateMutex);
        throwUnless(m_state != State::closing && m_state != State::closed, CAM_API_STS_INVALID_STREAM_HANDLE);
        throwUnless(m_state == State::stopped, CAM_API_STS_ALREADY_ACTIVATED);
        m_state = State::changing;
    }
    try {
        startDevice();
    } catch (...) {
        stopLocally();
        setState(State::stopped);
        throw;
    }
    setState(State::running);
}

void Stream::stop()
{
    {
        std::unique_lock lock(m_stateMutex);
        waitUntilSettled(lock);
        if (m_state != State::running)
            return;
        m_state = State::changing;
    }
    // No callback may run after this, even if the camera refuses to stop.
    try {
        stopDevice();
    } catch (...) {
        stopLocally();
        setState(State::stopped);
        throw;
    }
    setState(State::stopped);
}

void Stream::close()
{
    bool running = false;
    {
        std::unique_lock lock(m_stateMutex);
        waitUntilSettled(lock);
        if (m_state == State::closed)
            return;
        running = m_state == State::running;
        m_state = State::closing;
    }
    try {
        if (running)
            stopDevice();
    } catch (...) {
        // Closing cannot fail: stop at least the local side.
        stopLocally();
    }
    m_source.reset();
    setState(State::closed);
}

void Stream::setImageCallback(Callback<CAM_IMAGE_ACQUIRED_CALLBACK> callback)
{
    const std::lock_guard lock(m_callbackMutex);
    m_imageCallback = callback;
}

void Stream::setErrorCallback(Callback<CAM_IMAGE_ERROR_CALLBACK> callback)
{
    const std::lock_guard lock(m_callbackMutex);
    m_errorCallback = callback;
}

void Stream::setBusyCallback(Callback<CAM_BUFFER_BUSY_CALLBACK> callback)
{
    const std::lock_guard lock(m_callbackMutex);
    m_busyCallback = callback;
}

FrameBuffer* Stream::deliver(FrameBuffer* filled)
{
    SlotRing::Placed placed = m_ring->place(*filled);
    m_tally.noteImage(filled->frameNumber, !placed.stored);
    Callback<CAM_IMAGE_ACQUIRED_CALLBACK> image;
    Callback<CAM_BUFFER_BUSY_CALLBACK> busy;
    {
        const std::lock_guard lock(m_callbackMutex);
        image = m_imageCallback;
        busy = m_busyCallback;
    }
    const InsideCallback inside;
    if (placed.stored && image.function != nullptr)
        image.function(m_camera->handle(), m_handle, &placed.info, placed.slot, image.context);
    if (!placed.stored && busy.function != nullptr)
        busy.function(m_camera->handle(), m_handle, placed.slot, busy.context);
    return placed.free;
}

void Stream::fail(CAM_API_STATUS status)
{
    m_tally.noteFailure(status);
    Callback<CAM_IMAGE_ERROR_CALLBACK> error;
    {
        const std::lock_guard lock(m_callbackMutex);
        error = m_errorCallback;
    }
    const InsideCallback inside;
    if (error.function != nullptr)
        error.function(m_camera->handle(), m_handle, status, m_ring->nextSlot(), error.context);
}

SlotRing::ImageSize Stream::imageSize(const NodeMap& nodes) const
{
    return readImageSize(nodes, m_camera->reportedImages(), m_bufferCount);
}

// A larger image needs larger buffers, and a source is bound to its buffers.
void Stream::prepareSource(const SlotRing::ImageSize& size, Device& device)
{
    if (!m_ring->holds(size)) {
        m_source.reset();
        m_ring->grow(size);
    }
    if (m_source == nullptr)
        throwIfFailed(device.openSource(*this, m_ring->memory(), m_ring->spares(), m_source));
}

void Stream::startDevice()
{
    m_camera->withDevice([&](Device& device, NodeMap& nodes) {
        const SlotRing::ImageSize size = imageSize(nodes);
        prepareSource(size, device);
        m_ring->beginStart(size);
    });
    m_camera->lockTransportLayer(true);
    m_tally.start(m_camera->name());
    m_camera->withDevice([&](Device&, NodeMap&) { throwIfFailed(m_source->start()); });
    m_camera->execute("AcquisitionStart");
}

void Stream::stopDevice()
{
    if (!m_camera->removed())
        m_camera->execute("AcquisitionStop");
    // Not under the camera's lock: stopping waits for a running callback, which may be waiting for that lock.
    stopSource();
    if (!m_camera->removed())
        m_camera->lockTransportLayer(false);
}

void Stream::stopSource()
{
    m_source->stop();
    m_tally.end();
}

// Cleans up after a failure: stops the source and unlocks the camera's settings. Keeps quiet about further errors,
// because the caller reports the first one.
void Stream::stopLocally() noexcept
{
    if (m_source != nullptr)
        stopSource();
    try {
        m_camera->lockTransportLayer(false);
    } catch (...) {
        // The caller reports the first failure.
    }
}

/// Waits until no thread is starting, stopping or closing the stream.
void Stream::waitUntilSettled(std::unique_lock<std::mutex>& lock)
{
    m_stateChanged.wait(lock, [this] { return m_state != State::changing && m_state != State::closing; });
}

void Stream::setState(State state)
{
    const std::lock_guard lock(m_stateMutex);
    m_state = state;
    m_stateChanged.notify_all();
}

void ImageTally::start(std::string camera)
{
    *this = {};
    m_camera = std::move(camera);
    m_started = true;
    log(Severity::info, m_camera, "stream started");
}

void ImageTally::noteImage(std::uint64_t frameNumber, bool dropped)
{
    if (m_images++ == 0)
        m_firstNumber = frameNumber;
    m_lastNumber = frameNumber;
    m_dropped += dropped ? 1 : 0;
}

// A bad cable causes thousands of failures. The first one shows the kind; the rest would only flood the log.
void ImageTally::noteFailure(CAM_API_STATUS status)
{
    logText(m_failed++ == 0 ? Severity::warning : Severity::debug, m_camera,
            [&] { return "image failed: " + std::to_string(status) + " " + cameraStatusName(status); });
}

void ImageTally::end() noexcept
{
    if (!std::exchange(m_started, false))
        return;
    // The camera numbers every frame that it sends, so gaps are frames that failed or never arrived.
    const std::uint64_t sent = m_images == 0 ? 0 : m_lastNumber - m_firstNumber + 1;
    const std::uint64_t missing = sent - std::min(sent, m_images);
    const Severity severity = m_failed != 0 || missing != 0 ? Severity::warning : Severity::info;
    logText(severity, m_camera, [&] {
        return "stream stopped; " + std::to_string(m_images) + " images received, " + std::to_string(m_dropped) +
               " of them dropped because no buffer was free; " + std::to_string(m_failed) + " failed, " +
               std::to_string(missing) + " frame numbers missing";
    });
}

} // namespace cameralibs
