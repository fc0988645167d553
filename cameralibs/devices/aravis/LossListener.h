#pragma once

#include <arv.h>

#include <functional>
#include <future>

namespace orvo {

/// Calls a handler, on a thread of Aravis', when that finds out that a device is gone. Destroying this waits for a call
/// under way; afterwards a thread that is still telling of the loss holds the device.
class LossListener {
public:
    LossListener(ArvDevice* device, std::function<void()> handler);
    ~LossListener();
    LossListener(const LossListener&) = delete;
    LossListener& operator=(const LossListener&) = delete;

private:
    ArvDevice* const m_device;
    std::future<void> m_handlerGone;
    unsigned long m_connection;
};

} // namespace orvo
