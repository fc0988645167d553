#pragma once

#include "cameralibs/api/Camera.h"
#include "cameralibs/api/HandleTable.h"
#include "cameralibs/api/Signal.h"
#include "cameralibs/api/Stream.h"
#include "cameralibs/devices/Device.h"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace cameralibs {

/// The root object, alive between Sys_Initialize and Sys_Terminate. Any thread.
class System {
public:
    /// `layers` are CAM_LAYER values added up.
    explicit System(std::uint32_t layers);
    ~System();

    /// Null before initialize() and from the begin of terminate() on.
    [[nodiscard]] static std::shared_ptr<System> current();
    [[nodiscard]] static Orvo::CAM_API_STATUS initialize(std::uint32_t layers);
    [[nodiscard]] static Orvo::CAM_API_STATUS terminate();

    [[nodiscard]] HandleTable<Signal>& signals() noexcept { return m_signals; }
    [[nodiscard]] const HandleTable<Camera>& cameras() const noexcept { return m_cameras; }
    [[nodiscard]] const HandleTable<Stream>& streams() const noexcept { return m_streams; }

    /// Looks for cameras; the number of them.
    [[nodiscard]] std::uint32_t enumerate();

    /// A camera of the last enumeration. Throws Failure(CAM_API_STS_INVALID_CAMERA_INDEX).
    [[nodiscard]] DeviceInfo listedCamera(std::uint32_t index) const;

    /// The index that an open camera has in the last enumeration, and what is known of it.
    [[nodiscard]] std::uint32_t indexOf(const Camera& camera) const;
    [[nodiscard]] DeviceInfo infoOf(const Camera& camera) const;

    /// `handle` may be null, which is told in its turn.
    void openCamera(std::uint32_t index, Orvo::CAM_SIGNAL_HANDLE removalSignal, Orvo::CAM_HANDLE* handle);

    /// False for a handle that another thread closed meanwhile. Until it returns the camera counts as open.
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
    void rememberUserName(Camera& camera);
    void close(Camera& camera) noexcept;
    void shutDown();

    std::vector<std::unique_ptr<DeviceProvider>> m_providers;
    bool m_ended = false; ///< without providers any more; whoever waited for them finds it so

    mutable std::mutex m_listMutex;
    std::vector<Listed> m_list;
    std::map<DeviceKey, std::string> m_userNames; ///< as they were when their cameras were last open

    mutable std::mutex m_closingMutex;
    std::condition_variable m_closed;
    std::vector<std::shared_ptr<Camera>> m_closing; ///< without a handle any more, but with their devices yet

    HandleTable<Signal> m_signals;
    HandleTable<Camera> m_cameras;
    HandleTable<Stream> m_streams;
};

} // namespace cameralibs
