#include "AravisDevice.h"

#include "cameralibs/devices/aravis/AravisSource.h"
#include "cameralibs/devices/aravis/GigeReception.h"
#include "cameralibs/devices/aravis/GigeStream.h"
#include "cameralibs/devices/aravis/UsbReception.h"
#include "cameralibs/genicam/ErrorStatus.h"

#include <atomic>
#include <memory>
#include <utility>

namespace orvo {

using namespace Orvo;

namespace {

/// GLib hands it from the thread that sets it to the one that calls it and back, by means of its own.
struct Handler {
    std::function<void()> call;
    std::atomic<bool> handedOver{false}; ///< the same in terms that a thread sanitizer sees
};

void callHandler(ArvDevice*, void* data)
{
    auto& handler = *static_cast<Handler*>(data);
    if (handler.handedOver.load(std::memory_order_acquire))
        handler.call();
    handler.handedOver.store(true, std::memory_order_release);
}

void deleteHandler(void* data, GClosure*)
{
    const std::unique_ptr<Handler> handler(static_cast<Handler*>(data));
    (void)handler->handedOver.load(std::memory_order_acquire);
}

} // namespace

AravisDevice::AravisDevice(DeviceInfo info, std::shared_ptr<DeviceConnection> connection)
    : m_info(std::move(info))
    , m_connection(std::move(connection))
{
}

AravisDevice::~AravisDevice()
{
    if (m_removalConnection != 0)
        g_signal_handler_disconnect(m_connection->device(), m_removalConnection);
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

Outcome AravisDevice::openSource(FrameSink& sink, const std::vector<FrameBuffer*>& buffers,
                                 std::unique_ptr<FrameSource>& source)
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
    // The closure owns the handler: one that runs while it is being disconnected keeps it.
    auto owned = std::make_unique<Handler>();
    owned->call = std::move(handler);
    owned->handedOver.store(true, std::memory_order_release);
    m_removalConnection = g_signal_connect_data(m_connection->device(), "control-lost", G_CALLBACK(callHandler),
                                                owned.release(), deleteHandler, static_cast<GConnectFlags>(0));
}

Outcome AravisDevice::openGigeReception(std::unique_ptr<Reception>& reception)
{
    auto* const device = ARV_GV_DEVICE(m_connection->device());
    prepareGigeDevice(device);
    GError* error = nullptr;
    GObjectPointer<ArvStream> stream(arv_device_create_stream(ARV_DEVICE(device), nullptr, nullptr, &error));
    if (Outcome outcome = takeOpenError(error); !outcome.ok())
        return outcome;
    if (stream == nullptr)
        return {CAM_API_STS_NOT_IMPLEMENTED, {}};
    prepareGigeStream(device, ARV_GV_STREAM(stream.get()));
    reception = std::make_unique<GigeReception>(m_connection, std::move(stream));
    return {};
}

} // namespace orvo
