#pragma once

#include "cameralibs/api/ImageBounds.h"
#include "cameralibs/api/Signal.h"
#include "cameralibs/base/Outcome.h"
#include "cameralibs/devices/Device.h"
#include "cameralibs/genicam/nodes/NodeMap.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace cameralibs {

class Stream;

/// Whether a camera is gone. Its own object, because whoever finds out may outlive the camera. Any thread.
class Removal {
public:
    /// `signal` may be null.
    explicit Removal(std::shared_ptr<Signal> signal)
        : m_signal(std::move(signal))
    {
    }

    /// Who sees that the camera is gone finds the signal set, and the other way round. True for the first who notes it.
    [[nodiscard]] bool note()
    {
        if (m_signal != nullptr)
            return m_signal->setTogetherWith(m_noted);
        return !m_noted.exchange(true, std::memory_order_acq_rel);
    }

    [[nodiscard]] bool noted() const noexcept { return m_noted.load(std::memory_order_acquire); }

private:
    std::shared_ptr<Signal> m_signal;
    std::atomic<bool> m_noted{false};
};

/// An opened camera. Any thread; whatever reaches the device or evaluates the description runs one at a time.
class Camera {
public:
    Camera(std::uint32_t index, DeviceInfo info, std::shared_ptr<Removal> removal, std::unique_ptr<Device> device,
           std::shared_ptr<const Description> description);
    ~Camera();

    [[nodiscard]] Orvo::CAM_HANDLE handle() const noexcept { return m_handle; }
    [[nodiscard]] std::uint32_t indexWhenOpened() const noexcept { return m_index; }
    [[nodiscard]] const DeviceInfo& info() const noexcept { return m_info; }
    [[nodiscard]] const std::string& name() const noexcept { return m_name; } ///< in the diagnostic log
    [[nodiscard]] const Description& description() const noexcept { return *m_description; }

    [[nodiscard]] bool removed() const noexcept { return m_removal->noted(); }

    /// False once the camera is gone or closed: the device may be opened anew.
    [[nodiscard]] bool holdsDevice() const noexcept
    {
        return !removed() && !m_released.load(std::memory_order_acquire);
    }

    /// Throws Failure(CAM_API_STS_INVALID_NODE_HANDLE) for a handle that is not one of this camera's.
    [[nodiscard]] NodeId nodeOf(Orvo::CAM_NODE_HANDLE node) const;
    [[nodiscard]] Orvo::CAM_NODE_HANDLE handleOf(NodeId node) const noexcept { return m_firstNode + node; }

    /// `work(NodeMap&)` with the device to itself. A status that tells of a lost device is noted before it is passed
    /// on.
    template <class Work> void evaluate(Work&& work)
    {
        withDevice([&](Device&, NodeMap& nodes) { work(nodes); });
    }

    template <class Work> void withDevice(Work&& work)
    {
        const std::lock_guard lock(m_mutex);
        requireDevice();
        try {
            work(*m_device, *m_nodes);
        } catch (const Failure& failure) {
            noteFailure(failure);
            throw;
        }
    }

    /// What the library has told of the camera's images since it was opened. For the work of evaluate() and
    /// withDevice().
    [[nodiscard]] ImageBounds& toldImages() noexcept { return m_toldImages; }

    /// Null without one.
    [[nodiscard]] std::shared_ptr<Stream> stream() const;

    /// Makes `stream` this camera's stream. Throws Failure(CAM_API_STS_ALREADY_OPENED) where it has one, and
    /// Failure(CAM_API_STS_INVALID_CAMERA_HANDLE) where it is being closed.
    void attachStream(const std::shared_ptr<Stream>& stream);
    void detachStream(const Stream& stream);

    /// The stream to close first, if any; no other can be attached from now on.
    [[nodiscard]] std::shared_ptr<Stream> beginClosing();
    [[nodiscard]] bool closing() const;

    /// Whatever waits for the device does so until `time` at most. Comes before release().
    void closeBy(std::chrono::steady_clock::time_point time) { m_device->closeBy(time); }

    /// The same until relax(). Meanwhile a camera that asks for patience gets none. Nothing to do for one that is being
    /// closed, which is in a greater hurry.
    void hurry(std::chrono::steady_clock::time_point end);
    void relax();

    /// Closes the device.
    void release();

private:
    void requireDevice() const;
    void noteFailure(const Failure& failure);

    const Orvo::CAM_HANDLE m_handle;
    const std::uint32_t m_index;
    const DeviceInfo m_info;
    const std::string m_name;
    const std::shared_ptr<Removal> m_removal;
    const std::shared_ptr<const Description> m_description;
    const Orvo::CAM_NODE_HANDLE m_firstNode;
    std::atomic<bool> m_released{false};

    std::mutex m_mutex; ///< guards the device, its node map and what was told
    std::unique_ptr<Device> m_device;
    std::unique_ptr<NodeMap> m_nodes;
    ImageBounds m_toldImages;

    mutable std::mutex m_streamMutex;
    std::shared_ptr<Stream> m_stream;
    bool m_closing = false;
};

} // namespace cameralibs
