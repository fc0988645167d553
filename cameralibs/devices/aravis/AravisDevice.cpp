#include "AravisDevice.h"

#include "cameralibs/devices/aravis/AravisSource.h"
#include "cameralibs/devices/aravis/GigeReception.h"
#include "cameralibs/devices/aravis/GigeStream.h"
#include "cameralibs/devices/aravis/UsbReception.h"
#include "cameralibs/genicam/ErrorStatus.h"

#include <memory>
#include <utility>

namespace orvo {

using namespace Orvo;

AravisDevice::AravisDevice(DeviceInfo info, std::shared_ptr<DeviceConnection> connection)
    : m_info(std::move(info))
    , m_connection(std::move(connection))
{
}

Outcome AravisDevice::description(std::string& xml)
{
    std::size_t size = 0;
    const char* text = arv_device_get_genicam_xml(m_connection->device(), &size);
    if (text == nullptr || size == 0)
        return {CAM_API_STS_XML_LOAD_ERR, "The camera gives no description"};
    xml.assign(text, size);
    return {};
}

Outcome AravisDevice::openSource(FrameSink& sink, const ImageMemory& /*memory*/,
                                 const std::vector<FrameBuffer*>& buffers, std::unique_ptr<FrameSource>& source)
{
    std::unique_ptr<Reception> reception;
    if (ARV_IS_UV_DEVICE(m_connection->device())) {
        reception = std::make_unique<UsbReception>(m_connection);
    } else if (Outcome outcome = openGigeReception(reception); !outcome.ok()) {
        return outcome;
    }
    source = std::make_unique<AravisSource>(m_connection, std::move(reception), sink, buffers);
    return {};
}

void AravisDevice::onRemoval(std::function<void()> handler)
{
    m_lossListener.emplace(m_connection->device(), std::move(handler));
}

Outcome AravisDevice::openGigeReception(std::unique_ptr<Reception>& reception)
{
    auto* const device = ARV_GV_DEVICE(m_connection->device());
    prepareGigeDevice(device, m_info.logName());
    GError* error = nullptr;
    GObjectPointer<ArvStream> stream(arv_device_create_stream(ARV_DEVICE(device), nullptr, nullptr, &error));
    if (Outcome outcome = takeOpenError(error); !outcome.ok())
        return outcome;
    if (stream == nullptr)
        return {CAM_API_STS_NOT_IMPLEMENTED, {}};
    prepareGigeStream(device, ARV_GV_STREAM(stream.get()));
    reception = std::make_unique<GigeReception>(m_info.logName(), m_connection, std::move(stream));
    return {};
}

} // namespace orvo
