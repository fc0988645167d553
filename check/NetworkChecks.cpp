#include "check/Checks.h"

#include <set>

namespace check {

namespace {

/// What the camera library asks for, and what the packages' example for sysctl.d grants.
constexpr std::int64_t kWantedBuffer = 33'554'432;

/// Holds the burst of an image of medium size. Below, images are lost even where the machine is idle.
constexpr std::int64_t kSmallestBuffer = 4'000'000;

/// The smallest packets of a network with jumbo frames.
constexpr int kJumbo = 8000;

/// From this speed on the number of packets matters, in Mbit/s.
constexpr std::int64_t kFast = 1000;

std::string subjectOf(const Interface& interface)
{
    return "interface " + interface.name;
}

std::string addressesOf(const Interface& interface)
{
    std::string text;
    for (const Address& address : interface.addresses)
        text += (text.empty() ? "" : ", ") + textOf(address);
    return text;
}

Line lineOf(const View& view, const Interface& interface)
{
    const std::string subject = subjectOf(interface);
    // Cameras are connected by cables: other interfaces may be off.
    const Severity severity = interface.wired ? view.hidesCameras() : Severity::note;
    if (!interface.up) {
        return {severity, subject, "is switched off",
                interface.wired ? "sudo ip link set dev " + interface.name + " up" : ""};
    }
    if (!interface.running) {
        return {severity, subject, "nothing is connected",
                interface.wired ? "look at the cable, and at the power of camera and switch" : ""};
    }
    if (interface.addresses.empty()) {
        return {severity, subject, "has no IPv4 address, so that GigE cameras cannot be reached",
                interface.wired ? "sudo ip address add 169.254.1.1/16 dev " + interface.name +
                                      ", or an address of the camera's network"
                                : ""};
    }
    std::string text = addressesOf(interface);
    if (interface.mtu > 0)
        text += ", MTU " + std::to_string(interface.mtu);
    if (interface.speed)
        text += ", " + std::to_string(*interface.speed) + " Mbit/s";
    return {Severity::good, subject, text};
}

std::string openingFor(const Firewall& firewall, const std::string& interface, const std::string& chain)
{
    if (firewall.manager == "ufw")
        return "sudo ufw allow in on " + interface + " proto udp to any";
    if (firewall.manager == "firewalld") {
        return "sudo firewall-cmd --permanent --zone=$(firewall-cmd --get-zone-of-interface=" + interface +
               ") --add-protocol=udp && sudo firewall-cmd --reload";
    }
    return "sudo nft insert rule " + (chain.empty() ? "inet filter input" : chain) + " iifname " + interface +
           " meta l4proto udp accept";
}

Line lineOf(const View& view, const Interface& interface, const Passage& passage)
{
    const std::string subject = "firewall on " + interface.name;
    switch (passage.kind) {
    case Passage::accepted:
        return {Severity::good, subject, "no nftables rule drops UDP"};
    case Passage::dropped:
        return {view.cameraOn(interface.name) ? Severity::wrong : view.hidesCameras(), subject,
                "drops UDP, which GigE cameras use for answers and images",
                openingFor(view.machine.firewall, interface.name, passage.chain)};
    case Passage::unknown:
        break;
    }
    return {Severity::note, subject, "whether it lets the UDP of cameras in depends on its rules",
            openingFor(view.machine.firewall, interface.name, passage.chain)};
}

} // namespace

Lines checkInterfaces(const View& view)
{
    if (!view.machine.interfaces)
        return {{Severity::failed, "interfaces", "the system does not list them"}};
    Lines lines;
    for (const Interface& interface : *view.machine.interfaces) {
        if (!interface.loopback || view.cameraOn(interface.name))
            lines.push_back(lineOf(view, interface));
    }
    if (lines.empty())
        lines.push_back({Severity::note, "interfaces", "there is none by which GigE cameras could be reached"});
    return lines;
}

Lines checkNetworks(const View& view)
{
    Lines lines;
    const std::vector<Interface> networks = view.networks();
    for (std::size_t i = 0; i < networks.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            for (const Address& address : networks[i].addresses) {
                if (!networks[j].reaches(address.address))
                    continue;
                const bool used = view.cameraOn(networks[i].name) || view.cameraOn(networks[j].name);
                lines.push_back({used ? Severity::wrong : view.hidesCameras(), subjectOf(networks[i]),
                                 textOf(address) + " is in the network of " + networks[j].name +
                                     ", too: what is meant for a camera leaves by one of the two only",
                                 "give one of them, and its cameras, addresses of another network"});
            }
        }
    }
    return lines;
}

Lines checkReversePathFilter(const View& view)
{
    Lines lines;
    for (const Interface& interface : view.networks()) {
        if (interface.reversePathFilter == 1) {
            lines.push_back({view.hidesCameras(), "reverse path filter on " + interface.name,
                             "is strict: answers of cameras outside " + addressesOf(interface) + " are dropped unseen",
                             "sudo sysctl -w net/ipv4/conf/" + interface.name + "/rp_filter=2"});
        }
    }
    if (lines.empty() && !view.networks().empty())
        lines.push_back({Severity::good, "reverse path filter", "is off or loose"});
    return lines;
}

Lines checkFirewall(const View& view)
{
    const Firewall& firewall = view.machine.firewall;
    Lines lines;
    bool unseen = false;
    for (const Interface& interface : view.networks()) {
        const std::string subject = "firewall on " + interface.name;
        if (firewall.ruleSet) {
            lines.push_back(lineOf(view, interface, passageOf(*firewall.ruleSet, interface.name)));
        } else if (view.cameraOn(interface.name)) {
            lines.push_back({Severity::good, subject, "lets answers of cameras in"});
        } else if (!firewall.manager.empty()) {
            lines.push_back(
                {view.hidesCameras(), subject,
                 firewall.manager + " is on, and drops the answers of GigE cameras unless it is told not to",
                 openingFor(firewall, interface.name, {})});
        } else {
            unseen = true;
        }
    }
    if (unseen && view.machine.root) {
        lines.push_back({Severity::note, "firewall", "its rules cannot be read",
                         "sudo apt install nftables, then call this program again"});
    }
    if (unseen && !view.machine.root)
        lines.push_back({Severity::note, "firewall", "only root may read its rules", "sudo orvocam-check"});
    return lines;
}

Lines checkReceiveBuffer(const View& view)
{
    const std::string subject = "receive buffer";
    const auto size = view.machine.receiveBuffer;
    if (!size)
        return {{Severity::note, subject, "the limit net.core.rmem_max cannot be read here"}};
    std::string text = "a socket may have " + std::to_string(*size) + " bytes at most (net.core.rmem_max)";
    if (*size >= kWantedBuffer)
        return {{Severity::good, subject, text}};
    text += *size < kSmallestBuffer ? "; images of GigE cameras overflow it and are incomplete"
                                    : "; large images of GigE cameras may overflow it";
    const Severity severity = view.anyGige() && *size < kSmallestBuffer ? Severity::wrong : Severity::note;
    return {{severity, subject, text,
             "sudo sysctl -w net.core.rmem_max=" + std::to_string(kWantedBuffer) +
                 "; for good: sudo cp /usr/share/doc/liborvocam1/examples/60-orvocam-gige.conf /etc/sysctl.d/"}};
}

Lines checkMtu(const View& view)
{
    Lines lines;
    std::set<std::string> small; // interfaces of which it has been said
    for (const Camera& camera : view.search.cameras) {
        const Interface* const interface = view.interfaceOf(camera);
        if (interface == nullptr || interface->mtu <= 0)
            continue;
        const std::string limit = std::to_string(interface->mtu);
        const std::string larger =
            "sudo ip link set dev " + interface->name + " mtu 9000, where every switch on the way carries that";
        // Opening the stream may lower it. Larger packets come in pieces, unless the camera forbids that.
        const bool streamed = camera.stream && camera.stream->packetSize;
        const auto packets = streamed ? camera.stream->packetSize : camera.packetSize;
        const bool harms = streamed && (camera.stream->images == 0 || camera.stream->incomplete != 0);
        if (packets && *packets > interface->mtu) {
            lines.push_back({harms ? Severity::wrong : Severity::note, nameOf(camera),
                             "its packets of " + std::to_string(*packets) + " bytes exceed the MTU of " +
                                 interface->name + ", " + limit,
                             std::string(larger).append("; or set GevSCPSPacketSize of the camera to ").append(limit)});
        } else if (interface->mtu < kJumbo && interface->speed.value_or(0) >= kFast &&
                   small.insert(interface->name).second) {
            lines.push_back({Severity::note, "MTU of " + interface->name,
                             limit + " means many more packets than jumbo frames, and more work for the computer",
                             larger});
        }
    }
    return lines;
}

} // namespace check
