#pragma once

#include "cameralibs/devices/aravis/GObjectPointer.h"

#include <arv.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orvo {

/// An ArvDevice until it is given back, which the thread that destroys this does and no other. While a thread of the
/// device tells that the camera is gone it holds the device, too; were that reference the last one, the thread would
/// wait for its own end.
class HeldDevice {
public:
    explicit HeldDevice(GObjectPointer<ArvDevice> device,
                        std::chrono::milliseconds patience = std::chrono::seconds(30));

    /// Waits until nobody else holds the device. One whose reference somebody has lost is left to itself after a while.
    ~HeldDevice();
    HeldDevice(const HeldDevice&) = delete;
    HeldDevice& operator=(const HeldDevice&) = delete;

    [[nodiscard]] ArvDevice* get() const noexcept { return m_device; }

    /// The destructor's first step, for those who must not wait: true where it has nobody to wait for. From now on
    /// nobody here uses the device.
    [[nodiscard]] bool letGo();

private:
    static void noteHolders(void* held, GObject* device, gboolean onlyOurs);

    ArvDevice* const m_device;
    const std::chrono::milliseconds m_patience;
    GObjectPointer<ArvDevice> m_inUse;
    std::mutex m_mutex; ///< guards m_onlyOurs, which the thread that drops the last other reference sets
    std::condition_variable m_changed;
    bool m_onlyOurs = false;
};

} // namespace orvo
