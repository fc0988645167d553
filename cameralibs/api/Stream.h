#pragma once

#include "cameralibs/api/SlotRing.h"
#include "cameralibs/devices/Device.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace cameralibs {

class Camera;
class NodeMap;

/// Counts the images of one acquisition for the diagnostic log. The note functions run on the source's thread; start()
/// and end() are called while the source is stopped.
class ImageTally {
public:
    void start(std::string camera);

    void noteImage(std::uint64_t frameNumber, bool dropped);
    void noteFailure(Orvo::CAM_API_STATUS status);

    /// Does nothing unless start() was called since the last end().
    void end() noexcept;

private:
    std::string m_camera;
    bool m_started = false;
    std::uint64_t m_images = 0;
    std::uint64_t m_dropped = 0;
    std::uint64_t m_failed = 0;
    std::uint64_t m_firstNumber = 0;
    std::uint64_t m_lastNumber = 0;
};

/// The image stream of a camera. Thread-safe. The callbacks run on the source's thread with no lock held.
class Stream : private FrameSink {
public:
    explicit Stream(std::shared_ptr<Camera> camera);
    ~Stream() override;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Whether the calling thread is inside a callback of any stream.
    [[nodiscard]] static bool insideCallback() noexcept;

    /// For a forked process, whose only thread may run a callback of its parent. Nothing waits for that callback.
    static void forgetCallback() noexcept;

    [[nodiscard]] Orvo::CAM_STRM_HANDLE handle() const noexcept { return m_handle; }
    [[nodiscard]] Camera& camera() const noexcept { return *m_camera; }

    /// To be called once, before the functions below. All throw Failure.
    void open(std::uint32_t bufferCount);
    [[nodiscard]] std::size_t payload() const { return m_ring->payload(); }
    void start();
    void stop();

    /// Stops the stream and closes its source. It cannot be started any more. If several threads close, one does the
    /// work and the others wait for it. Does not throw.
    void close();

    [[nodiscard]] SlotRing& slots() noexcept { return *m_ring; }

    template <class Function> struct Callback {
        Function function = nullptr;
        void* context = nullptr;
    };
    void setImageCallback(Callback<Orvo::CAM_IMAGE_ACQUIRED_CALLBACK> callback);
    void setErrorCallback(Callback<Orvo::CAM_IMAGE_ERROR_CALLBACK> callback);
    void setBusyCallback(Callback<Orvo::CAM_BUFFER_BUSY_CALLBACK> callback);

private:
    enum class State { stopped, changing, running, closing, closed };

    [[nodiscard]] FrameBuffer* deliver(FrameBuffer* filled) override;
    void fail(Orvo::CAM_API_STATUS status) override;

    [[nodiscard]] SlotRing::ImageSize imageSize(const NodeMap& nodes) const;
    void prepareSource(const SlotRing::ImageSize& size, Device& device);
    void startDevice();
    void stopDevice();
    void stopSource();
    void stopLocally() noexcept;
    void waitUntilSettled(std::unique_lock<std::mutex>& lock);
    void setState(State state);

    const std::shared_ptr<Camera> m_camera;
    const Orvo::CAM_STRM_HANDLE m_handle;

    std::mutex m_stateMutex;
    std::condition_variable m_stateChanged;
    State m_state = State::stopped;

    std::uint32_t m_bufferCount = 0;
    std::unique_ptr<SlotRing> m_ring;
    std::unique_ptr<FrameSource> m_source;
    ImageTally m_tally;

    std::mutex m_callbackMutex;
    Callback<Orvo::CAM_IMAGE_ACQUIRED_CALLBACK> m_imageCallback;
    Callback<Orvo::CAM_IMAGE_ERROR_CALLBACK> m_errorCallback;
    Callback<Orvo::CAM_BUFFER_BUSY_CALLBACK> m_busyCallback;
};

} // namespace cameralibs
