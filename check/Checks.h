#pragma once

#include "check/Report.h"
#include "check/cameras/CameraSearch.h"
#include "check/machine/Machine.h"

#include <string>
#include <vector>

namespace check {

/// All that the checks look at.
struct View {
    Machine machine;
    CameraSearch search;

    /// Whether there is any camera, be it one that cannot be opened.
    [[nodiscard]] bool anyCamera() const { return anyUsb() || !search.cameras.empty(); }
    [[nodiscard]] bool anyUsb() const;
    [[nodiscard]] bool anyGige() const;

    /// Whether a GigE Vision camera answers on the interface.
    [[nodiscard]] bool cameraOn(const std::string& interface) const;

    [[nodiscard]] const Interface* interfaceOf(const Camera& camera) const;

    /// The interfaces by which cameras other than those of this very machine can be reached.
    [[nodiscard]] std::vector<Interface> networks() const;

    /// Of what may keep a camera from being found: on most machines some of it is so, and harmless where the cameras
    /// are found.
    [[nodiscard]] Severity hidesCameras() const { return anyCamera() ? Severity::note : Severity::wrong; }
};

using Lines = std::vector<Line>;

// What each looks at and says stands in the table of Checks.cpp.
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

/// Of every check, in the order of the table.
[[nodiscard]] Lines runChecks(const View& view);

/// How a camera is called in the lines: by maker, model, serial number and the name that its user gave.
[[nodiscard]] std::string nameOf(const Camera& camera);

/// The programs with their process numbers, separated by commas.
[[nodiscard]] std::string namesOf(const std::vector<Program>& programs);

} // namespace check
