#include "AravisProvider.h"

#include "cameralibs/devices/aravis/AravisDevice.h"
#include "cameralibs/devices/aravis/Reaper.h"
#include "cameralibs/devices/aravis/UsbReads.h"
#include "cameralibs/genicam/ErrorStatus.h"

#include <arv.h>

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>

namespace orvo {

using namespace Orvo;

namespace {

constexpr const char* kUsb = "USB3Vision";
constexpr const char* kGige = "GigEVision";

std::string orEmpty(const char* text)
{
    return text == nullptr ? "" : text;
}

/// Nothing for a protocol that cameras are not wanted of; newer versions of Aravis know more of them.
std::optional<CAM_LINK> linkOf(const std::string& protocol)
{
    if (protocol == kUsb)
        return CAM_LINK_USB3_VISION;
    if (protocol == kGige)
        return CAM_LINK_GIGE_VISION;
    return {};
}

class AravisProvider : public DeviceProvider {
public:
    AravisProvider(bool usb, bool gige)
    {
        defineFailedUsbReads();
        for (unsigned i = 0; i < arv_get_n_interfaces(); ++i) {
            const char* const id = arv_get_interface_id(i);
            const auto link = linkOf(id);
            const bool wanted = (link == CAM_LINK_USB3_VISION && usb) || (link == CAM_LINK_GIGE_VISION && gige);
            (wanted ? arv_enable_interface : arv_disable_interface)(id);
        }
    }

    [[nodiscard]] std::vector<DeviceInfo> enumerate() override
    {
        arv_update_device_list();
        std::vector<DeviceInfo> found;
        m_listed.clear();
        for (unsigned i = 0; i < arv_get_n_devices(); ++i) {
            const auto link = linkOf(orEmpty(arv_get_device_protocol(i)));
            if (!link)
                continue;
            DeviceInfo info{*link,
                            orEmpty(arv_get_device_id(i)),
                            orEmpty(arv_get_device_vendor(i)),
                            orEmpty(arv_get_device_model(i)),
                            orEmpty(arv_get_device_serial_nbr(i)),
                            {}};
            m_listed[info.id] = {info, link == CAM_LINK_GIGE_VISION ? orEmpty(arv_get_device_address(i)) : ""};
            found.push_back(std::move(info));
        }
        // Aravis' own order changes from one time to the next.
        std::sort(found.begin(), found.end(), [](const DeviceInfo& a, const DeviceInfo& b) {
            return std::tie(a.link, a.id) < std::tie(b.link, b.id);
        });
        return found;
    }

    [[nodiscard]] Outcome open(const std::string& id, std::unique_ptr<Device>& device) override
    {
        const auto listed = m_listed.find(id);
        if (listed == m_listed.end())
            return {CAM_API_STS_CAMERA_NOT_RESPONDING, "The camera was not there when cameras were last looked for"};
        // By its address a camera is reached through the network interface that leads to it.
        const auto& [info, address] = listed->second;
        const std::string& name = address.empty() ? id : address;
        GError* error = nullptr;
        GObjectPointer<ArvDevice> opened(arv_open_device(name.c_str(), &error));
        if (Outcome outcome = takeOpenError(error); !outcome.ok())
            return outcome;
        if (opened == nullptr)
            return {CAM_API_STS_CAMERA_NOT_RESPONDING, {}};
        if (ARV_IS_GV_DEVICE(opened.get()) && arv_gv_device_is_controller(ARV_GV_DEVICE(opened.get())) == FALSE) {
            // Giving it back asks the camera to give up a control that it never gave, and waits for the answer.
            m_reaper->take([refused = opened.release()] { g_object_unref(refused); });
            return {CAM_API_STS_ACCESS_DENIED, "Another program controls the camera"};
        }
        device = std::make_unique<AravisDevice>(info, std::make_shared<DeviceConnection>(std::move(opened), m_reaper));
        return {};
    }

private:
    struct Listed {
        DeviceInfo info;
        std::string address; ///< of a GigE Vision camera
    };
    std::map<std::string, Listed> m_listed; ///< by id
    const std::shared_ptr<Reaper> m_reaper = std::make_shared<Reaper>();
};

} // namespace

std::unique_ptr<DeviceProvider> makeAravisProvider(bool usb, bool gige)
{
    return std::make_unique<AravisProvider>(usb, gige);
}

} // namespace orvo
