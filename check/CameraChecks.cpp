#include "check/Checks.h"

#include "camera/StatusName.h"

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

// Of those that a user can do something about.
constexpr OpenFailure kOpenFailures[] = {
    {CAM_API_STS_ACCESS_DENIED, "another program controls it", "close the camera there"},
    {CAM_API_STS_BUSY, "another program has it", "close the camera there"},
    {CAM_API_STS_CAMERA_NOT_RESPONDING, "does not answer",
     "look at the cable and at other lines about it; else switch the camera off and on"},
    {CAM_API_STS_XML_LOAD_ERR, "its description cannot be read",
     "other firmware from the camera's maker; ORVO_CAMERA_LOG=info orvocam-check tells more"},
    {CAM_API_STS_GENICAM_ERR, "its description cannot be used",
     "other firmware from the camera's maker; ORVO_CAMERA_LOG=info orvocam-check tells more"},
};

std::string statusText(CAM_API_STATUS status)
{
    std::string name = cameraStatusName(status);
    name.erase(name.find_last_not_of(' ') + 1); // two names end in a blank
    return std::to_string(status) + " " + name;
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
        text += "; on this machine these have cameras: " + namesOf(view.machine.cameraPrograms);
    } else if (held && camera.link == CAM_LINK_GIGE_VISION) {
        text += "; no program with this camera library on this machine: another one, or another machine";
    }
    return {Severity::wrong, nameOf(camera), text, known->cure};
}

constexpr Address kLinkLocalNetwork = {0xa9fe0000, 16};

// Addresses that routers of the internet do not know. An interface may get one without cutting anybody off.
constexpr Address kPrivateNetworks[] = {{0x0a000000, 8}, {0xac100000, 12}, {0xc0a80000, 16}, kLinkLocalNetwork};

bool isIn(std::uint32_t address, const Address& network)
{
    return (address & network.mask()) == network.address;
}

/// An address of the camera's network that is not the camera's, and that routers rarely have. Nothing for a public
/// network: anybody can send an answer that names one.
std::optional<Address> neighbourOf(const GigeAnswer& answer)
{
    constexpr unsigned kUsual = 24;
    constexpr unsigned kLargestNetwork = 16;  // a larger one may be somebody else's
    constexpr unsigned kSmallestNetwork = 28; // of fourteen addresses
    if (std::none_of(std::begin(kPrivateNetworks), std::end(kPrivateNetworks),
                     [&](const Address& network) { return isIn(answer.address, network); }))
        return {};
    const unsigned told = prefixOf(answer.mask).value_or(kUsual);
    const Address network = {answer.address, told < kLargestNetwork || told > kSmallestNetwork ? kUsual : told};
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

/// Why images are missing, as far as the machine tells.
std::string cureOf(const View& view, const Camera& camera, const StreamResult& stream)
{
    const bool nothingCame = stream.images == 0 && stream.incomplete == 0;
    if (nothingCame && camera.waitsForTrigger)
        return "set TriggerMode to Off, or trigger the camera";
    if (camera.link == CAM_LINK_USB3_VISION)
        return "look at the lines on USB speed and memory; another port or cable";
    if (nothingCame)
        return "look at the line on the firewall, and at AcquisitionMode and AcquisitionFrameRate of the camera";
    if (camera.bufferErrors != 0) {
        return "the receive buffer overflowed " + std::to_string(camera.bufferErrors) +
               " times: sudo sysctl -w net.core.rmem_max=33554432";
    }
    if (stream.images == 0)
        return "packets that the network does not carry: set GevSCPSPacketSize of the camera to 1500 or less";
    const Interface* const interface = view.interfaceOf(camera);
    return "ip -s link show dev " + (interface == nullptr ? "INTERFACE" : interface->name) +
           " counts what is lost before: another cable or switch, larger packets, a lower AcquisitionFrameRate";
}

Line lineOf(const View& view, const Camera& camera, const StreamResult& stream)
{
    if (stream.status != CAM_API_STS_SUCCESS) {
        return {Severity::wrong, nameOf(camera),
                "its stream fails with " + statusText(stream.status) + "; " + figuresOf(stream),
                "ORVO_CAMERA_LOG=info orvocam-check --stream tells why"};
    }
    if (stream.images == 0 || stream.lost != 0 || stream.incomplete != 0)
        return {Severity::wrong, nameOf(camera), figuresOf(stream), cureOf(view, camera, stream)};
    return {Severity::good, nameOf(camera), figuresOf(stream)};
}

} // namespace

Lines checkCameras(const View& view)
{
    const CameraSearch& search = view.search;
    if (!search.failure.empty())
        return {{Severity::failed, "camera library", search.failure}};
    if (!view.anyCamera()) {
        return {{Severity::wrong, "cameras", "none is on USB, and none answers on the network",
                 "look at cable and power, and at the lines above; ORVO_CAMERA_LOG=warning orvocam-check tells whether "
                 "the search itself failed"}};
    }
    Lines lines;
    for (const Camera& camera : search.cameras) {
        std::string text = camera.listed ? "is listed" : "answers, but the camera library does not list it";
        if (camera.answer)
            text += ", at " + textOf(camera.answer->address) + " on " + camera.answer->interface;
        lines.push_back({camera.listed ? Severity::good : Severity::wrong, nameOf(camera), text,
                         camera.listed ? "" : "look at the lines on its address and the firewall"});
    }
    if (search.notOpened != 0) {
        lines.push_back(
            {Severity::failed, "cameras", std::to_string(search.notOpened) + " more are listed than are opened here"});
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
            lines.push_back({Severity::wrong, nameOf(*camera), "has no address yet",
                             "wait until it has taken one; a DHCP server, or a fixed address by its maker's program"});
        } else if (interface != nullptr && !interface->reaches(answer.address)) {
            const std::optional<Address> own = neighbourOf(answer);
            const std::string addition = own ? "sudo ip address add " + textOf(*own) + " dev " + answer.interface +
                                                   ", if nobody has that address; or "
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
        if (!camera.opened)
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
