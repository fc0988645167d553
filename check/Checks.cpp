#include "check/Checks.h"

#include <algorithm>
#include <iterator>

namespace check {

namespace {

struct Check {
    const char* name;
    Lines (*run)(const View&);
};

constexpr Check kChecks[] = {
    {"interface", checkInterfaces},                  // states and addresses of the network interfaces
    {"network", checkNetworks},                      // two interfaces in one network
    {"reverse-path-filter", checkReversePathFilter}, // a kernel that drops packets from other networks
    {"firewall", checkFirewall},                     // that drops UDP
    {"receive-buffer", checkReceiveBuffer},          // too small for the images of GigE Vision cameras
    {"mtu", checkMtu},                               // smaller than the camera's packets
    {"usb-device", checkUsbDevices},                 // of the USB3 Vision class
    {"usb-permission", checkUsbPermission},          // to open them
    {"usb-speed", checkUsbSpeed},                    // a link below USB 3
    {"usb-holder", checkUsbHolders},                 // the program that has a camera
    {"usb-memory", checkUsbMemory},                  // for transfers
    {"camera", checkCameras},                        // none, or one that the camera library does not list
    {"address", checkAddresses},                     // of a camera outside the interface's network
    {"open", checkOpening},                          // a camera that does not open
    {"images", checkImages},                         // of a trial
};

} // namespace

bool isSame(const Camera& camera, const UsbDevice& device)
{
    return camera.link == Orvo::CAM_LINK_USB3_VISION && camera.model == device.model && camera.serial == device.serial;
}

bool View::anyUsb() const
{
    return (machine.usbDevices && !machine.usbDevices->empty()) ||
           std::any_of(search.cameras.begin(), search.cameras.end(),
                       [](const Camera& camera) { return camera.link == Orvo::CAM_LINK_USB3_VISION; });
}

bool View::anyGige() const
{
    return std::any_of(search.cameras.begin(), search.cameras.end(),
                       [](const Camera& camera) { return camera.link == Orvo::CAM_LINK_GIGE_VISION; });
}

bool View::cameraOn(const std::string& interface) const
{
    return std::any_of(search.cameras.begin(), search.cameras.end(),
                       [&](const Camera& camera) { return camera.answer && camera.answer->interface == interface; });
}

Severity View::hidesGige(const Interface& interface) const
{
    if (anyGige() || interface.wireless)
        return Severity::note;
    return !anyCamera() || interface.dedicated() ? Severity::wrong : Severity::note;
}

const Camera* View::listed(const UsbDevice& device) const
{
    const auto found = std::find_if(search.cameras.begin(), search.cameras.end(),
                                    [&](const Camera& camera) { return isSame(camera, device); });
    return found == search.cameras.end() ? nullptr : &*found;
}

bool View::held(const UsbDevice& device) const
{
    const Camera* const camera = listed(device);
    const bool refused = camera == nullptr || !camera->opened || camera->opened == Orvo::CAM_API_STS_BUSY ||
                         camera->opened == Orvo::CAM_API_STS_ACCESS_DENIED;
    return device.driver == "usbfs" && refused;
}

const Interface* View::interfaceOf(const Camera& camera) const
{
    if (!camera.answer || !machine.interfaces)
        return nullptr;
    for (const Interface& interface : *machine.interfaces) {
        if (interface.name == camera.answer->interface)
            return &interface;
    }
    return nullptr;
}

std::vector<Interface> View::networks() const
{
    std::vector<Interface> result;
    for (const Interface& interface : machine.interfaces.value_or(std::vector<Interface>())) {
        if (interface.usable() && !interface.loopback)
            result.push_back(interface);
    }
    return result;
}

Lines runChecks(const View& view)
{
    Lines all;
    for (const Check& check : kChecks) {
        for (Line& line : check.run(view)) {
            line.check = check.name;
            all.push_back(line);
        }
    }
    return all;
}

std::string nameOf(const Camera& camera)
{
    std::string name = camera.link == Orvo::CAM_LINK_USB3_VISION   ? "USB camera"
                       : camera.link == Orvo::CAM_LINK_GIGE_VISION ? "GigE camera"
                                                                   : "camera";
    for (const std::string& part : {camera.vendor, camera.model, camera.serial}) {
        if (!part.empty())
            name += " " + part;
    }
    return camera.userName.empty() ? name : name + " \"" + camera.userName + "\"";
}

std::string namesOf(const std::vector<Program>& programs)
{
    std::string names;
    for (const Program& program : programs)
        names += (names.empty() ? "" : ", ") + program.name + " (process " + std::to_string(program.process) + ")";
    return names;
}

} // namespace check
