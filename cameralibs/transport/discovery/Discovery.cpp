#include "Discovery.h"

#include "cameralibs/transport/Channel.h"

#include <arv.h>

#include <optional>
#include <string>

namespace orvo::transport {

using namespace Orvo;

namespace {

constexpr const char* kUsb = "USB3Vision";
constexpr const char* kGige = "GigEVision";

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
    arv_update_device_list();
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

} // namespace orvo::transport
