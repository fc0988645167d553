#include "DeviceConnection.h"

#include <utility>

namespace orvo {

DeviceConnection::DeviceConnection(GObjectPointer<ArvDevice> device, std::shared_ptr<Reaper> reaper)
    : m_device(std::make_unique<HeldDevice>(std::move(device)))
    , m_reaper(std::move(reaper))
{
}

DeviceConnection::~DeviceConnection()
{
    if (lost() || !m_device->letGo())
        m_reaper->take([device = m_device.release()] { const std::unique_ptr<HeldDevice> owned(device); });
}

void DeviceConnection::setLostQuery(std::function<bool()> lost)
{
    m_lost = std::move(lost);
}

void DeviceConnection::leaveToReaper(GObjectPointer<GObject> object) const
{
    g_object_ref(device());
    m_reaper->take([object = object.release(), device = device()] {
        g_object_unref(object);
        g_object_unref(device);
    });
}

} // namespace orvo
