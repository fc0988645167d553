#include "DeviceConnection.h"

#include <utility>

namespace orvo {

DeviceConnection::DeviceConnection(GObjectPointer<ArvDevice> device, std::shared_ptr<Reaper> reaper)
    : m_device(std::move(device))
    , m_reaper(std::move(reaper))
{
}

DeviceConnection::~DeviceConnection()
{
    if (lost())
        m_reaper->take([device = m_device.release()] { g_object_unref(device); });
}

void DeviceConnection::setLostQuery(std::function<bool()> lost)
{
    m_lost = std::move(lost);
}

void DeviceConnection::leaveToReaper(GObjectPointer<GObject> object) const
{
    g_object_ref(m_device.get());
    m_reaper->take([object = object.release(), device = m_device.get()] {
        g_object_unref(object);
        g_object_unref(device);
    });
}

} // namespace orvo
