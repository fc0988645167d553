#pragma once

#include "cameralibs/devices/aravis/GObjectPointer.h"
#include "cameralibs/devices/aravis/HeldDevice.h"
#include "cameralibs/devices/aravis/Reaper.h"

#include <arv.h>

#include <functional>
#include <memory>

namespace orvo {

/// An ArvDevice that a device and its sources share, and whether it is known to be gone. Given back by whoever drops it
/// last: at once while the device is there, by the reaper once it is gone or going.
class DeviceConnection {
public:
    DeviceConnection(GObjectPointer<ArvDevice> device, std::shared_ptr<Reaper> reaper);
    ~DeviceConnection();
    DeviceConnection(const DeviceConnection&) = delete;
    DeviceConnection& operator=(const DeviceConnection&) = delete;

    [[nodiscard]] ArvDevice* device() const noexcept { return m_device->get(); }

    /// Set before anything else uses the connection.
    void setLostQuery(std::function<bool()> lost);
    [[nodiscard]] bool lost() const { return m_lost && m_lost(); }

    /// Drops one reference of an object that uses the device, later. The device stays until that is done.
    void leaveToReaper(GObjectPointer<GObject> object) const;

private:
    std::unique_ptr<HeldDevice> m_device;
    std::shared_ptr<Reaper> m_reaper;
    std::function<bool()> m_lost;
};

} // namespace orvo
