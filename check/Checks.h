#pragma once

#include "check/Report.h"
#include "check/cameras/CameraSearch.h"
#include "check/machine/Machine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace check {

/// Everything that the checks look at.
struct View {
    Machine machine;
    CameraSearch search;

    /// Whether any camera was found, even one that cannot be opened.
    [[nodiscard]] bool anyCamera() const { return anyUsb() || !search.cameras.empty(); }
    [[nodiscard]] bool anyUsb() const;
    [[nodiscard]] bool anyGige() const;

    /// Whether a GigE Vision camera answers on the interface.
    [[nodiscard]] bool cameraOn(const std::string& interface) const;

    [[nodiscard]] const Interface* interfaceOf(const Camera& camera) const;

    /// The interfaces through which cameras outside this machine can be reached.
    [[nodiscard]] std::vector<Interface> networks() const;

    /// The severity of a setting that can hide GigE cameras. Many machines have such settings, so they are notes while
    /// GigE cameras answer, and on wireless interfaces, because cameras have cables. A USB camera only makes them notes
    /// on interfaces that are not dedicated to cameras.
    [[nodiscard]] Severity hidesGige(const Interface& interface) const;

    /// The USB device as the camera library lists it; null if it does not.
    [[nodiscard]] const Camera* listed(const UsbDevice& device) const;

    /// Whether another program has the device, so that the camera was not opened.
    [[nodiscard]] bool held(const UsbDevice& device) const;
};

/// Whether the camera library lists this device as this camera.
[[nodiscard]] bool isSame(const Camera& camera, const UsbDevice& device);

/// The camera library asks for a receive buffer of this size, and the packages' example for sysctl.d allows it.
constexpr std::int64_t kWantedBuffer = 33'554'432;

using Lines = std::vector<Line>;

// The table in Checks.cpp describes them.
[[nodiscard]] Lines checkInterfaces(const View& view);
[[nodiscard]] Lines checkNetworks(const View& view);
[[nodiscard]] Lines checkReversePathFilter(const View& view);
[[nodiscard]] Lines checkFirewall(const View& view);
[[nodiscard]] Lines checkReceiveBuffer(const View& view);
[[nodiscard]] Lines checkMtu(const View& view);
[[nodiscard]] Lines checkUsbDevices(const View& view);
[[nodiscard]] Lines checkUsbPermission(const View& view);
[[nodiscard]] Lines checkUsbSpeed(const View& view);
[[nodiscard]] Lines checkUsbHolders(const View& view);
[[nodiscard]] Lines checkUsbMemory(const View& view);
[[nodiscard]] Lines checkCameras(const View& view);
[[nodiscard]] Lines checkAddresses(const View& view);
[[nodiscard]] Lines checkOpening(const View& view);
[[nodiscard]] Lines checkImages(const View& view);

/// Runs every check, in the order of the table.
[[nodiscard]] Lines runChecks(const View& view);

/// A camera's name in the lines: maker, model, serial number and the name that its user gave it.
[[nodiscard]] std::string nameOf(const Camera& camera);

/// The programs with their process numbers, separated by commas.
[[nodiscard]] std::string namesOf(const std::vector<Program>& programs);

} // namespace check
