#include "LossListener.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace orvo {

namespace {

constexpr const char* kSignal = "control-lost";

/// GLib hands it from the thread that sets it to the one that calls it and back, by means of its own.
struct Handler {
    std::function<void()> call;
    std::promise<void> gone;
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
    handler->gone.set_value();
}

/// A thread that tells of a loss finds the handlers first and takes hold of the device then, with no lock between. Only
/// where it boxes no arguments it keeps the handler meanwhile, so that ours cannot end before it holds the device.
void keepHandlersThatAreFound()
{
    static std::once_flag once;
    std::call_once(once, [] {
        g_signal_set_va_marshaller(g_signal_lookup(kSignal, ARV_TYPE_DEVICE), ARV_TYPE_DEVICE,
                                   g_cclosure_marshal_VOID__VOIDv);
    });
}

} // namespace

LossListener::LossListener(ArvDevice* device, std::function<void()> handler)
    : m_device(device)
{
    keepHandlersThatAreFound();
    // The closure owns the handler: one that runs while it is being disconnected keeps it.
    auto owned = std::make_unique<Handler>();
    owned->call = std::move(handler);
    m_handlerGone = owned->gone.get_future();
    owned->handedOver.store(true, std::memory_order_release);
    m_connection = g_signal_connect_data(m_device, kSignal, G_CALLBACK(callHandler), owned.release(), deleteHandler,
                                         static_cast<GConnectFlags>(0));
}

LossListener::~LossListener()
{
    g_signal_handler_disconnect(m_device, m_connection);
    m_handlerGone.wait();
}

} // namespace orvo
