#include "HeldDevice.h"

#include <utility>

namespace orvo {

// The toggle reference, the only one of GLib's that tells when it is the last, is told of nothing as long as there is
// an ordinary one beside it.
HeldDevice::HeldDevice(GObjectPointer<ArvDevice> device, std::chrono::milliseconds patience)
    : m_device(device.get())
    , m_patience(patience)
    , m_inUse(std::move(device))
{
    g_object_add_toggle_ref(G_OBJECT(m_device), noteHolders, this);
}

HeldDevice::~HeldDevice()
{
    (void)letGo();
    std::unique_lock lock(m_mutex);
    (void)m_changed.wait_for(lock, m_patience, [this] { return m_onlyOurs; });
    lock.unlock();
    g_object_remove_toggle_ref(G_OBJECT(m_device), noteHolders, this);
}

bool HeldDevice::letGo()
{
    m_inUse.reset();
    const std::lock_guard lock(m_mutex);
    return m_onlyOurs;
}

void HeldDevice::noteHolders(void* held, GObject*, gboolean onlyOurs)
{
    auto& self = *static_cast<HeldDevice*>(held);
    const std::lock_guard lock(self.m_mutex);
    self.m_onlyOurs = onlyOurs != FALSE;
    self.m_changed.notify_all();
}

} // namespace orvo
