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

/// Whether a camera is gone. A separate object, because the thread that detects the removal may outlive the camera.
/// Thread-safe.
class Removal {
public:
    /// `signal` may be null.
    explicit Removal(std::shared_ptr<Signal> signal)
        : m_signal(std::move(signal))
    {
    }

    /// Sets the flag and the signal together, so no thread sees one without the other. True for the first call only.
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

/// An opened camera. Thread-safe: device accesses and evaluations of the description are serialised.
class Camera {
public:
    Camera(std::uint32_t index, DeviceInfo info, std::shared_ptr<Removal> removal, std::unique_ptr<Device> device,
           std::shared_ptr<const Description> description);
    ~Camera();

    [[nodiscard]] Orvo::CAM_HANDLE handle() const noexcept { return m_handle; }
    [[nodiscard]] std::uint32_t indexWhenOpened() const noexcept { return m_index; }
    [[nodiscard]] const DeviceInfo& info() const noexcept { return m_info; }

    /// The record that Cam_GetInformation gives. Kept ready, because image callbacks ask for it.
    void setRecord(const Orvo::CAM_INFO& record);
    void copyRecord(Orvo::CAM_INFO& record) const;

    [[nodiscard]] const std::string& name() const noexcept { return m_name; } ///< for the diagnostic log
    [[nodiscard]] const Description& description() const noexcept { return *m_description; }

    [[nodiscard]] bool removed() const noexcept { return m_removal->noted(); }

    /// False once the camera is gone or closed. The device may then be opened again.
    [[nodiscard]] bool holdsDevice() const noexcept
    {
        return !removed() && !m_released.load(std::memory_order_acquire);
    }

    /// Throws Failure(CAM_API_STS_INVALID_NODE_HANDLE) if the handle does not belong to this camera.
    [[nodiscard]] NodeId nodeOf(Orvo::CAM_NODE_HANDLE node) const;
    [[nodiscard]] Orvo::CAM_NODE_HANDLE handleOf(NodeId node) const noexcept { return m_firstNode + node; }

    /// Calls `work(NodeMap&)` with exclusive access to the device. A failure that means a lost device marks the camera
    /// as removed before it propagates.
    template <class Work> void evaluate(Work&& work)
    {
        withDevice([&](Device&, NodeMap& nodes) { work(nodes); });
    }

    /// The same with `work(Device&, NodeMap&)`.
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

    /// Executes a command if the camera has it. Throws Failure.
    void execute(const char* command);

    /// Tells the camera whether a stream is started, so that it protects its settings. Throws Failure if it is gone.
    void lockTransportLayer(bool locked);

    /// Stops the acquisition and unlocks the settings, as far as the camera allows it. Throws Failure if it is gone.
    void stopAcquisition();

    /// The image sizes and formats that the program has been given since the camera was opened. Only to be used inside
    /// evaluate() and withDevice().
    [[nodiscard]] ImageBounds& reportedImages() noexcept { return m_reportedImages; }

    /// Null if none is open.
    [[nodiscard]] std::shared_ptr<Stream> stream() const;

    /// Makes `stream` this camera's stream. Throws Failure(CAM_API_STS_ALREADY_OPENED) if it has one, and
    /// Failure(CAM_API_STS_INVALID_CAMERA_HANDLE) if it is being closed.
    void attachStream(const std::shared_ptr<Stream>& stream);
    void detachStream(const Stream& stream);

    /// Returns the stream to close first, if any. No stream can be attached from now on.
    [[nodiscard]] std::shared_ptr<Stream> beginClosing();
    [[nodiscard]] bool closing() const;

    /// Limits every wait for the device, current or future, to `time`. To be called before release().
    void closeBy(std::chrono::steady_clock::time_point time) { m_device->closeBy(time); }

    /// The same until relax(). Meanwhile a camera's requests for more time are not granted. Does nothing while the
    /// camera is being closed, because closeBy() sets its own limit.
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

    mutable std::mutex m_recordMutex;
    Orvo::CAM_INFO m_record{};

    std::mutex m_mutex; ///< guards the three members below
    std::unique_ptr<Device> m_device;
    std::unique_ptr<NodeMap> m_nodes;
    ImageBounds m_reportedImages;

    mutable std::mutex m_streamMutex;
    std::shared_ptr<Stream> m_stream;
    bool m_closing = false;
};

} // namespace cameralibs
