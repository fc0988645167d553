#include "cameralibs/transport/discovery/Discovery.h"

#include "cameralibs/transport/Channel.h"

#include <arv.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include <dlfcn.h>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

constexpr const char* kUsb = "USB3Vision";
constexpr const char* kGige = "GigEVision";

using Clock = std::chrono::steady_clock;

/// Cameras have a second to answer; the rest of what comes is made up.
constexpr std::chrono::seconds kListening{2};

/// Nothing is heard any more from then on.
std::atomic<Clock::time_point> s_deafFrom{Clock::time_point::max()};

std::string orEmpty(const char* text)
{
    return text == nullptr ? "" : text;
}

/// Nothing for protocols that are not listed here.
std::optional<CAM_LINK> linkOf(const std::string& protocol)
{
    if (protocol == kUsb)
        return CAM_LINK_USB3_VISION;
    if (protocol == kGige)
        return CAM_LINK_GIGE_VISION;
    return {};
}

} // namespace

void enableKinds(bool usb, bool gige)
{
    for (unsigned i = 0; i < arv_get_n_interfaces(); ++i) {
        const char* const id = arv_get_interface_id(i);
        const auto link = linkOf(id);
        const bool wanted = (link == CAM_LINK_USB3_VISION && usb) || (link == CAM_LINK_GIGE_VISION && gige);
        (wanted ? arv_enable_interface : arv_disable_interface)(id);
    }
}

std::vector<Listed> listCameras(bool usb, bool gige)
{
    enableKinds(usb, gige);
    s_deafFrom = Clock::now() + kListening;
    arv_update_device_list();
    s_deafFrom = Clock::time_point::max();
    std::vector<Listed> found;
    for (unsigned i = 0; i < arv_get_n_devices(); ++i) {
        const auto link = linkOf(orEmpty(arv_get_device_protocol(i)));
        if (!link)
            continue;
        Listed camera{};
        camera.link = *link;
        setText(camera.id, orEmpty(arv_get_device_id(i)));
        setText(camera.vendor, orEmpty(arv_get_device_vendor(i)));
        setText(camera.model, orEmpty(arv_get_device_model(i)));
        setText(camera.serial, orEmpty(arv_get_device_serial_nbr(i)));
        if (link == CAM_LINK_GIGE_VISION)
            setText(camera.address, orEmpty(arv_get_device_address(i)));
        found.push_back(camera);
    }
    return found;
}

} // namespace cameralibs::transport

// Aravis listens until nothing has come for a second: one that never stops talking would hide every other camera.
extern "C" __attribute__((visibility("default"))) gint g_poll(GPollFD* descriptors, guint count, gint timeout)
{
    static const auto poll = reinterpret_cast<decltype(&g_poll)>(::dlsym(RTLD_NEXT, "g_poll"));
    return cameralibs::transport::Clock::now() < cameralibs::transport::s_deafFrom.load()
               ? poll(descriptors, count, timeout)
               : 0;
}
