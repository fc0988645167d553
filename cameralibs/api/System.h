#pragma once

#include "cameralibs/api/Camera.h"
#include "cameralibs/api/HandleTable.h"
#include "cameralibs/api/Signal.h"
#include "cameralibs/api/Stream.h"
#include "cameralibs/devices/Device.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace cameralibs {

/// The root object, alive between Sys_Initialize and Sys_Terminate. Thread-safe.
class System {
public:
    /// `layers` is a combination of CAM_LAYER flags.
    explicit System(std::uint32_t layers);
    ~System();

    /// Null before initialize() and once terminate() has begun.
    [[nodiscard]] static std::shared_ptr<System> current();
    [[nodiscard]] static Orvo::CAM_API_STATUS initialize(std::uint32_t layers);
    [[nodiscard]] static Orvo::CAM_API_STATUS terminate();

    [[nodiscard]] HandleTable<Signal>& signals() noexcept { return m_signals; }
    [[nodiscard]] const HandleTable<Camera>& cameras() const noexcept { return m_cameras; }
    [[nodiscard]] const HandleTable<Stream>& streams() const noexcept { return m_streams; }

    /// Looks for cameras and returns how many there are.
    [[nodiscard]] std::uint32_t enumerate();

    // About a camera of the last enumeration. Both throw Failure(CAM_API_STS_INVALID_CAMERA_INDEX).
    [[nodiscard]] Orvo::CAM_INFO record(std::uint32_t index) const;
    [[nodiscard]] std::string nameForLog(std::uint32_t index) const { return listed(index).info.logName(); }

    /// `handle` may be null: the documented order of checks reports other errors first.
    void openCamera(std::uint32_t index, Orvo::CAM_SIGNAL_HANDLE removalSignal, Orvo::CAM_HANDLE* handle);

    /// False if another thread has closed the handle meanwhile. The camera counts as open until this returns.
    [[nodiscard]] bool closeCamera(Orvo::CAM_HANDLE handle);

    [[nodiscard]] std::shared_ptr<Stream> openStream(const std::shared_ptr<Camera>& camera, std::uint32_t bufferCount);
    [[nodiscard]] bool closeStream(Orvo::CAM_STRM_HANDLE handle);

private:
    struct Listed {
        DeviceProvider* provider = nullptr;
        DeviceInfo info;
    };

    using DeviceKey = std::pair<Orvo::CAM_LINK, std::string>;

    [[nodiscard]] Listed listed(std::uint32_t index) const;
    [[nodiscard]] bool isOpen(const DeviceInfo& info) const;
    [[nodiscard]] Orvo::CAM_INFO record(const DeviceInfo& info, std::uint32_t index) const;
    void updateRecord(Camera& camera) const;
    void rememberUserName(Camera& camera);
    void close(Camera& camera) noexcept;
    void shutDown();

    std::vector<std::unique_ptr<DeviceProvider>> m_providers;
    std::atomic<bool> m_ending{false}; ///< shutting down: no camera is listed or opened any more

    mutable std::mutex m_listMutex;
    std::vector<Listed> m_list;
    std::map<DeviceKey, std::string> m_userNames; ///< as read when the cameras were last open

    mutable std::mutex m_closingMutex;
    std::condition_variable m_closed;
    std::vector<std::shared_ptr<Camera>> m_closing; ///< without a handle, but still holding their devices

    HandleTable<Signal> m_signals;
    HandleTable<Camera> m_cameras;
    HandleTable<Stream> m_streams;
};

} // namespace cameralibs
