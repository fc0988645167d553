#pragma once

#include "check/Checks.h"

#include <gmock/gmock.h>

#include <string>

/// Machines and cameras of the tests, and what is said of them.
namespace check {

/// 192.168.5.1/24 on a wired gigabit interface that works.
[[nodiscard]] inline Interface workingInterface(const std::string& name = "enp3s0", std::uint32_t address = 0xc0a80501)
{
    Interface interface;
    interface.name = name;
    interface.up = true;
    interface.running = true;
    interface.wired = true;
    interface.mtu = 9000;
    interface.speed = 1000;
    interface.reversePathFilter = 0;
    interface.addresses = {{address, 24}};
    return interface;
}

/// A GigE Vision camera that is listed and answers on enp3s0.
[[nodiscard]] inline Camera workingCamera(const std::string& serial = "G1", std::uint32_t address = 0xc0a80514)
{
    Camera camera;
    camera.vendor = "Maker";
    camera.model = "Model";
    camera.serial = serial;
    camera.listed = true;
    camera.opened = Orvo::CAM_API_STS_SUCCESS;
    camera.answer = GigeAnswer{"enp3s0", address, address, 0xffffff00, "Maker", "Model", serial, {}};
    return camera;
}

/// A USB3 Vision camera, and how the camera library lists it.
[[nodiscard]] inline UsbDevice workingDevice(const std::string& serial = "U1")
{
    UsbDevice device;
    device.maker = "Maker";
    device.model = "Model";
    device.serial = serial;
    device.node = "/dev/bus/usb/002/003";
    device.speed = 5000;
    device.hasNode = true;
    device.allowed = true;
    return device;
}

[[nodiscard]] inline Camera listedAs(const UsbDevice& device)
{
    Camera camera;
    camera.link = Orvo::CAM_LINK_USB3_VISION;
    camera.vendor = device.maker;
    camera.model = device.model;
    camera.serial = device.serial;
    camera.listed = true;
    camera.opened = Orvo::CAM_API_STS_SUCCESS;
    return camera;
}

/// Nothing is wrong with it, and there is a camera of each kind.
[[nodiscard]] inline View workingView()
{
    View view;
    view.machine.interfaces = {workingInterface()};
    view.machine.usbDevices = {workingDevice()};
    view.machine.usbMemory = 256;
    view.machine.receiveBuffer = 33'554'432;
    view.machine.receiveBufferSetHere = true;
    view.machine.firewall.ruleSet = R"({"nftables": []})";
    view.machine.udevRule = true;
    view.machine.inPlugdev = true;
    view.search.cameras = {listedAs(workingDevice()), workingCamera()};
    return view;
}

/// The machine without cameras.
[[nodiscard]] inline View viewWithoutCameras()
{
    View view = workingView();
    view.machine.usbDevices->clear();
    view.search.cameras.clear();
    return view;
}

} // namespace check

MATCHER_P3(IsLine, severity, text, cure, "")
{
    return arg.severity == severity && (arg.subject + ": " + arg.text).find(text) != std::string::npos &&
           arg.cure.find(cure) != std::string::npos;
}

MATCHER(IsFine, "")
{
    return arg.severity == check::Severity::good && arg.cure.empty();
}
