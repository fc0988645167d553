#include "cameralibs/transport/discovery/Discovery.h"

#include "cameralibs/transport/AravisHooks.h"
#include "cameralibs/transport/Channel.h"
#include "cameralibs/transport/Reporting.h"

#include <arv.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

constexpr const char* kUsb = "USB3Vision";
constexpr const char* kGige = "GigEVision";

/// Cameras have a second to answer. Answers that go on arriving after this time are not from real cameras.
constexpr std::chrono::seconds kListening{2};

std::string orEmpty(const char* text)
{
    return text == nullptr ? "" : text;
}

/// A part of a GigE Vision camera's answer to a search.
struct Field {
    std::size_t offset;
    std::size_t size;
};
constexpr Field kAddress = {0x24, 4};
constexpr Field kVendor = {0x48, 32};
constexpr Field kModel = {0x68, 32};
constexpr Field kSerial = {0xd8, 16};

/// No network has as many cameras.
constexpr std::size_t kMaxAnswers = 1000;

std::string textAt(std::string_view answer, const Field& field)
{
    if (answer.size() < field.offset + field.size)
        return {};
    const std::string_view text = answer.substr(field.offset, field.size);
    return std::string(text.substr(0, text.find('\0')));
}

std::string addressIn(std::string_view answer)
{
    std::string text;
    for (std::size_t i = 0; i < kAddress.size && answer.size() >= kAddress.offset + kAddress.size; ++i)
        text += (i == 0 ? "" : ".") + std::to_string(static_cast<unsigned char>(answer[kAddress.offset + i]));
    return text;
}

/// GigE Vision cameras by their addresses, as they answer.
std::map<std::string, Listed> s_answers;

void noteAnswer(std::string_view answer)
{
    const std::string address = addressIn(answer);
    const std::string serial = textAt(answer, kSerial);
    if (address.empty() || serial.empty() || s_answers.size() >= kMaxAnswers)
        return;
    Listed& camera = s_answers[address];
    camera.link = CAM_LINK_GIGE_VISION;
    setText(camera.vendor, textAt(answer, kVendor));
    setText(camera.model, textAt(answer, kModel));
    setText(camera.serial, serial);
    setText(camera.id, textOf(camera.vendor) + "-" + textOf(camera.model) + "-" + serial);
    setText(camera.address, address);
}

/// Aravis lists only one camera of each vendor, model and serial number. A device that pretends to be a present camera
/// must not hide it, so all of them are listed, with the address in their ids.
void addNamesakes(std::vector<Listed>& found)
{
    std::map<std::string, std::size_t> count;
    for (const Listed& camera : found)
        s_answers.erase(textOf(camera.address));
    for (const Listed& camera : found)
        ++count[textOf(camera.id)];
    for (const auto& [address, camera] : s_answers) {
        if (const auto namesake = count.find(textOf(camera.id)); namesake != count.end()) {
            ++namesake->second;
            found.push_back(camera);
        }
    }
    for (Listed& camera : found) {
        if (count[textOf(camera.id)] > 1)
            setText(camera.id, textOf(camera.id) + " at " + textOf(camera.address));
    }
}

/// Empty for protocols other than these two.
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
    s_answers.clear();
    beginSearch(Clock::now() + kListening, noteAnswer);
    arv_update_device_list();
    if (!endSearch() && gige)
        note(Severity::warning, "This version of Aravis searches in an unknown way, so a search may take longer");
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
    addNamesakes(found);
    return found;
}

} // namespace cameralibs::transport
