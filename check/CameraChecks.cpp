#include "check/Checks.h"

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>

namespace check {

using namespace Orvo;

namespace {

struct OpenFailure {
    CAM_API_STATUS status;
    const char* text;
    const char* cure;
};

// Failures that the user can do something about.
constexpr OpenFailure kOpenFailures[] = {
    {CAM_API_STS_ACCESS_DENIED, "another program controls it", "close the camera there"},
    {CAM_API_STS_BUSY, "another program has it", "close the camera there"},
    {CAM_API_STS_CAMERA_NOT_RESPONDING, "does not answer",
     "check the cable and the other lines about it; otherwise switch the camera off and on"},
    {CAM_API_STS_XML_LOAD_ERR, "its description cannot be read",
     "other firmware from the camera's maker; ORVO_CAMERA_LOG=info orvocam-check tells more"},
    {CAM_API_STS_GENICAM_ERR, "its description cannot be used",
     "other firmware from the camera's maker; ORVO_CAMERA_LOG=info orvocam-check tells more"},
};

bool isHeld(const View& view, const Camera& camera)
{
    const auto& devices = view.machine.usbDevices;
    return devices && std::any_of(devices->begin(), devices->end(),
                                  [&](const UsbDevice& device) { return isSame(camera, device) && view.held(device); });
}

Line lineOf(const View& view, const Camera& camera, CAM_API_STATUS status)
{
    const auto* const known = std::find_if(std::begin(kOpenFailures), std::end(kOpenFailures),
                                           [&](const OpenFailure& failure) { return failure.status == status; });
    if (known == std::end(kOpenFailures)) {
        return {Severity::wrong, nameOf(camera), "cannot be opened: " + statusText(status),
                "ORVO_CAMERA_LOG=info orvocam-check tells why"};
    }
    std::string text = std::string(known->text) + " (" + statusText(status) + ")";
    if (!camera.whyNot.empty())
        text += ": " + camera.whyNot;
    const bool held = status == CAM_API_STS_ACCESS_DENIED || status == CAM_API_STS_BUSY;
    if (held && !view.machine.cameraPrograms.empty()) {
        text += "; programs on this machine that use cameras: " + namesOf(view.machine.cameraPrograms);
    } else if (held && camera.link == CAM_LINK_GIGE_VISION) {
        text += "; no program on this machine that uses this camera library, so another one or another machine";
    }
    return {Severity::wrong, nameOf(camera), text, known->cure};
}

constexpr Address kLinkLocalNetwork = {0xa9fe0000, 16};

// Addresses that the internet does not route.
constexpr Address kPrivateNetworks[] = {{0x0a000000, 8}, {0xac100000, 12}, {0xc0a80000, 16}, kLinkLocalNetwork};

bool isIn(std::uint32_t address, const Address& network)
{
    return (address & network.mask()) == network.address;
}

bool overlap(const Address& one, const Address& other)
{
    const std::uint32_t mask = one.prefix < other.prefix ? one.mask() : other.mask();
    return (one.address & mask) == (other.address & mask);
}

/// Whether an interface other than the camera's is in the network.
bool isElsewhere(const View& view, const GigeAnswer& answer, const Address& network)
{
    if (!view.machine.interfaces)
        return false;
    for (const Interface& interface : *view.machine.interfaces) {
        const auto& own = interface.addresses;
        if (interface.name != answer.interface &&
            std::any_of(own.begin(), own.end(), [&](const Address& address) { return overlap(address, network); }))
            return true;
    }
    return false;
}

/// An address in the camera's network that is neither the camera's nor one that routers usually have. No value for a
/// public network, because anybody can send an answer that names one, and for the network of another interface, which
/// would become unreachable.
std::optional<Address> neighbourOf(const View& view, const GigeAnswer& answer)
{
    constexpr unsigned kUsual = 24;
    constexpr unsigned kLargestNetwork = 16;  // a larger one may contain other people's networks
    constexpr unsigned kSmallestNetwork = 28; // has 14 addresses
    if (std::none_of(std::begin(kPrivateNetworks), std::end(kPrivateNetworks),
                     [&](const Address& network) { return isIn(answer.address, network); }))
        return {};
    const unsigned told = prefixOf(answer.mask).value_or(kUsual);
    const Address network = {answer.address, told < kLargestNetwork || told > kSmallestNetwork ? kUsual : told};
    if (isElsewhere(view, answer, network))
        return {};
    constexpr std::uint32_t kFirstLinkLocal = 0x100; // the first and the last 256 are reserved
    const std::uint32_t first = (answer.address & network.mask()) +
                                (isIn(answer.address, kLinkLocalNetwork) && network.prefix == 16 ? kFirstLinkLocal : 0);
    constexpr std::uint32_t kNumber = 10;
    return Address{first + (answer.address == first + kNumber ? kNumber + 1 : kNumber), network.prefix};
}

std::vector<const Camera*> answering(const View& view)
{
    std::vector<const Camera*> cameras;
    for (const Camera& camera : view.search.cameras) {
        if (camera.answer)
            cameras.push_back(&camera);
    }
    return cameras;
}

std::string figuresOf(const StreamResult& stream)
{
    const double seconds = stream.seconds > 0 ? stream.seconds : 1;
    std::ostringstream text;
    text << stream.images << " images in " << std::fixed << std::setprecision(1) << stream.seconds << " s, "
         << stream.lost << " lost, " << stream.incomplete << " incomplete; "
         << static_cast<double>(stream.images) / seconds << " images a second, "
         << static_cast<double>(stream.bytes) / seconds / 1e6 << " MB a second";
    if (stream.packetSize)
        text << ", packets of " << *stream.packetSize << " bytes";
    return text.str();
}

/// The cure for missing images, as far as their cause is known.
std::string cureOf(const View& view, const Camera& camera, const StreamResult& stream)
{
    const bool nothingCame = stream.images == 0 && stream.incomplete == 0;
    if (nothingCame && camera.waitsForTrigger)
        return "set TriggerMode to Off, or trigger the camera";
    if (camera.link == CAM_LINK_USB3_VISION)
        return "check the lines on USB speed and memory; another port or cable";
    if (nothingCame)
        return "check the line on the firewall, and the camera's AcquisitionMode and AcquisitionFrameRate";
    if (camera.bufferErrors != 0) {
        const std::string overflows = "the receive buffer overflowed " + std::to_string(camera.bufferErrors) + " times";
        if (view.machine.receiveBuffer.value_or(0) >= kWantedBuffer) {
            return overflows +
                   ", although it is as large as it may be: a lower AcquisitionFrameRate, or less other work";
        }
        return overflows + ": sudo sysctl -w net.core.rmem_max=" + std::to_string(kWantedBuffer);
    }
    if (stream.images == 0)
        return "the packets may be too large for the network: set GevSCPSPacketSize of the camera to 1500 or less";
    const Interface* const interface = view.interfaceOf(camera);
    return "ip -s link show dev " + (interface == nullptr ? "INTERFACE" : interface->name) +
           " counts packets lost earlier: another cable or switch, larger packets, a lower AcquisitionFrameRate";
}

Line lineOf(const View& view, const Camera& camera, const StreamResult& stream)
{
    const std::string howToLearnMore = "ORVO_CAMERA_LOG=info orvocam-check --stream tells why";
    if (stream.status != CAM_API_STS_SUCCESS && stream.seconds <= 0) {
        return {Severity::wrong, nameOf(camera), "its stream does not start: " + statusText(stream.status),
                howToLearnMore};
    }
    if (stream.status != CAM_API_STS_SUCCESS) {
        return {Severity::wrong, nameOf(camera),
                "its stream fails with " + statusText(stream.status) + "; " + figuresOf(stream), howToLearnMore};
    }
    if (stream.images == 0 || stream.lost != 0 || stream.incomplete != 0)
        return {Severity::wrong, nameOf(camera), figuresOf(stream), cureOf(view, camera, stream)};
    return {Severity::good, nameOf(camera), figuresOf(stream)};
}

} // namespace

Lines checkCameras(const View& view)
{
    const CameraSearch& search = view.search;
    Lines lines;
    for (const std::string& failure : search.failures)
        lines.push_back({Severity::failed, "camera library", failure});
    if (!view.anyCamera() && search.failures.empty()) {
        lines.push_back({Severity::wrong, "cameras", "none is on USB, and none answers on the network",
                         "check cable and power, and the lines above"});
    }
    for (const Camera& camera : search.cameras) {
        std::string at;
        if (camera.answer)
            at = " at " + textOf(camera.answer->address) + " on " + camera.answer->interface;
        if (camera.listed) {
            lines.push_back({Severity::good, nameOf(camera), "is listed" + at});
        } else if (!search.failures.empty()) {
            lines.push_back({Severity::good, nameOf(camera), "answers" + at});
        } else {
            lines.push_back({Severity::wrong, nameOf(camera),
                             "answers" + at + ", but the camera library does not list it",
                             "check the lines on its address and the firewall"});
        }
    }
    if (search.notOpened != 0) {
        lines.push_back(
            {Severity::failed, "cameras",
             std::to_string(search.notOpened) + " listed cameras are not opened, which would take too long"});
    }
    return lines;
}

Lines checkAddresses(const View& view)
{
    Lines lines;
    const auto cameras = answering(view);
    for (const Camera* const camera : cameras) {
        const Interface* const interface = view.interfaceOf(*camera);
        const GigeAnswer& answer = *camera->answer;
        const std::string address = textOf(answer.address);
        const auto sameAddress = [&](const Camera* other) {
            return other->answer->address == answer.address && other->answer->interface == answer.interface;
        };
        if (answer.address == 0) {
            lines.push_back(
                {Severity::wrong, nameOf(*camera), "has no address yet",
                 "wait until it has one; otherwise a DHCP server, or a fixed address set with its maker's program"});
        } else if (interface != nullptr && !interface->reaches(answer.address)) {
            const std::optional<Address> own = neighbourOf(view, answer);
            const std::string addition = own ? "sudo ip address add " + textOf(*own) + " dev " + answer.interface +
                                                   ", if nothing else has that address; or "
                                             : "";
            lines.push_back({Severity::wrong, nameOf(*camera),
                             address + " is outside the network of " + answer.interface + ", so it cannot be opened",
                             addition + "give the camera an address of the interface's network"});
        } else if (std::count_if(cameras.begin(), cameras.end(), sameAddress) > 1) {
            lines.push_back({Severity::wrong, nameOf(*camera), "another camera has its address " + address + ", too",
                             "give each camera an address of its own"});
        }
    }
    return lines;
}

Lines checkOpening(const View& view)
{
    Lines lines;
    for (const Camera& camera : view.search.cameras) {
        if (!camera.opened || isHeld(view, camera)) // the check of the holders tells that
            continue;
        if (camera.opened != CAM_API_STS_SUCCESS) {
            lines.push_back(lineOf(view, camera, *camera.opened));
        } else {
            lines.push_back({Severity::good, nameOf(camera), "opens"});
        }
        if (camera.waitsForTrigger) {
            lines.push_back({Severity::note, nameOf(camera), "its TriggerMode is On: no image comes without a trigger",
                             "set TriggerMode to Off, or trigger the camera"});
        }
    }
    return lines;
}

Lines checkImages(const View& view)
{
    Lines lines;
    for (const Camera& camera : view.search.cameras) {
        if (camera.stream)
            lines.push_back(lineOf(view, camera, *camera.stream));
    }
    return lines;
}

} // namespace check
