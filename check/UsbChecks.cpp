#include "check/Checks.h"

#include <algorithm>

namespace check {

namespace {

/// In MiB. The kernel's default is 16.
constexpr std::int64_t kSmallestMemory = 128;
constexpr int kWantedMemory = 256;

/// The speed of USB 3 in Mbit/s.
constexpr std::int64_t kUsb3 = 5000;

const std::vector<UsbDevice>& devicesOf(const View& view)
{
    static const std::vector<UsbDevice> none;
    return view.machine.usbDevices ? *view.machine.usbDevices : none;
}

std::string nameOf(const UsbDevice& device)
{
    std::string name = "USB camera";
    for (const std::string& part : {device.maker, device.model, device.serial}) {
        if (!part.empty())
            name += " " + part;
    }
    return name;
}

/// The cure that lets this user open USB3 Vision cameras.
std::string permissionFor(const Machine& machine)
{
    if (!machine.udevRule) {
        return "install the package liborvocam1, or copy its rule packaging/system/70-orvocam-u3v.rules to "
               "/etc/udev/rules.d and call sudo udevadm control --reload; then plug the camera in anew";
    }
    if (!machine.inPlugdev)
        return "sudo usermod -aG plugdev $USER, then log in anew; at the machine itself plug the camera in anew";
    return "plug the camera in anew, or sudo udevadm trigger --subsystem-match=usb";
}

bool isUsb(const Camera& camera)
{
    return camera.link == Orvo::CAM_LINK_USB3_VISION;
}

/// Whether a lack of memory may be the reason; a camera that has gone has another one.
bool imagesFail(const Camera& camera)
{
    if (!isUsb(camera) || !camera.stream)
        return false;
    const StreamResult& stream = *camera.stream;
    const bool gone = stream.status == Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING;
    return (stream.status != Orvo::CAM_API_STS_SUCCESS && !gone) || stream.incomplete != 0 || stream.lost != 0;
}

bool imagesCome(const Camera& camera)
{
    return isUsb(camera) && camera.stream && camera.stream->images != 0;
}

Line holderLine(const View& view, const UsbDevice& device)
{
    const std::string text = "another program has it: ";
    const std::string cure = "close the camera there";
    if (!device.holders.empty())
        return {Severity::wrong, nameOf(device), text + namesOf(device.holders), cure};
    if (!view.machine.root) {
        return {Severity::wrong, nameOf(device), text + "one of another user",
                "sudo orvocam-check tells which; " + cure};
    }
    return {Severity::wrong, nameOf(device), text + "one that is not visible here",
            cure + "; in a container, look outside it and in other containers"};
}

} // namespace

Lines checkUsbDevices(const View& view)
{
    if (view.machine.withoutUsb)
        return {{Severity::note, "USB", "this machine has none"}};
    if (!view.machine.usbDevices)
        return {{Severity::failed, "USB", "/sys does not list the devices"}};
    Lines lines;
    for (const UsbDevice& device : devicesOf(view)) {
        lines.push_back({Severity::good, nameOf(device),
                         device.node + (device.speed ? ", " + std::to_string(*device.speed) + " Mbit/s" : "")});
    }
    if (lines.empty())
        lines.push_back({Severity::good, "USB", "no device of the class USB3 Vision is plugged in"});
    return lines;
}

Lines checkUsbPermission(const View& view)
{
    Lines lines;
    for (const UsbDevice& device : devicesOf(view)) {
        if (!device.hasNode) {
            lines.push_back({Severity::wrong, nameOf(device), "there is no " + device.node,
                             "in a container, start it with --device=/dev/bus/usb"});
        } else if (!device.allowed) {
            lines.push_back(
                {Severity::wrong, nameOf(device), "you may not open " + device.node, permissionFor(view.machine)});
        } else {
            lines.push_back({Severity::good, nameOf(device), "you may open it"});
        }
    }
    return lines;
}

Lines checkUsbSpeed(const View& view)
{
    Lines lines;
    for (const UsbDevice& device : devicesOf(view)) {
        if (device.speed.value_or(kUsb3) < kUsb3) {
            lines.push_back({Severity::wrong, nameOf(device),
                             "is connected at " + std::to_string(*device.speed) + " Mbit/s, where USB 3 has 5000",
                             "another port, a USB 3 cable, no hub"});
        }
    }
    return lines;
}

Lines checkUsbHolders(const View& view)
{
    Lines lines;
    for (const UsbDevice& device : devicesOf(view)) {
        if (view.held(device)) {
            lines.push_back(holderLine(view, device));
        } else if (!device.driver.empty() && device.driver != "usbfs") {
            lines.push_back(
                {Severity::wrong, nameOf(device), "the kernel's driver " + device.driver + " has it",
                 "echo " + device.controlInterface + " | sudo tee /sys/bus/usb/drivers/" + device.driver + "/unbind"});
        } else if (device.allowed && view.search.failures.empty() && view.listed(device) == nullptr) {
            lines.push_back({Severity::wrong, nameOf(device), "the camera library does not list it",
                             "ORVO_CAMERA_LOG=debug orvocam-check tells why; another cable or port may help"});
        }
    }
    return lines;
}

Lines checkUsbMemory(const View& view)
{
    const std::string subject = "USB memory";
    const auto memory = view.machine.usbMemory;
    if (!memory) {
        return view.anyUsb() ? Lines{{Severity::failed, subject, "its limit, usbfs_memory_mb, cannot be read"}}
                             : Lines();
    }
    if (*memory == 0)
        return {{Severity::good, subject, "no limit (usbfs_memory_mb)"}};
    const std::string text = std::to_string(*memory) + " MiB for all cameras together (usbfs_memory_mb)";
    if (*memory >= kSmallestMemory || !view.anyUsb())
        return {{Severity::good, subject, text}};
    // How much is needed depends on how the camera library transfers images, so only a trial shows whether it suffices.
    const auto& cameras = view.search.cameras;
    const bool fails = std::any_of(cameras.begin(), cameras.end(), imagesFail);
    if (!fails && std::any_of(cameras.begin(), cameras.end(), imagesCome))
        return {{Severity::good, subject, text + ", enough for the images of this trial"}};
    const std::string wanted = std::to_string(kWantedMemory);
    return {{fails ? Severity::wrong : Severity::note, subject, text + "; large images may need more",
             "echo " + wanted +
                 " | sudo tee /sys/module/usbcore/parameters/usbfs_memory_mb; permanently: the kernel parameter "
                 "usbcore.usbfs_memory_mb=" +
                 wanted}};
}

} // namespace check
