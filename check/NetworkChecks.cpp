#include "check/Checks.h"

#include <set>

namespace check {

namespace {

/// Holds an image of medium size that arrives at once. A smaller buffer loses images even on an idle machine.
constexpr std::int64_t kSmallestBuffer = 4'000'000;

/// The smallest MTU that counts as jumbo frames.
constexpr int kJumbo = 8000;

/// In Mbit/s. The number of packets matters from this speed on.
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
    // Cameras have cables, so a wireless interface may be off. So may an unused one while any camera is found.
    const Severity unused = interface.wired && !view.anyCamera() ? Severity::wrong : Severity::note;
    if (!interface.up) {
        return {unused, subject, "is switched off",
                interface.wired ? "sudo ip link set dev " + interface.name + " up" : ""};
    }
    if (!interface.running) {
        return {unused, subject, "nothing is connected",
                interface.wired ? "look at the cable, and at the power of camera and switch" : ""};
    }
    if (interface.addresses.empty()) {
        return {interface.wired ? view.hidesGige(interface) : Severity::note, subject,
                "has no IPv4 address, so that GigE cameras cannot be reached",
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

std::string commandFor(const Firewall& firewall, const std::string& interface, const std::string& chain)
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

/// The cure for a firewall. None for a wireless interface without a camera: its network may be open to everybody.
std::string openingFor(const View& view, const Interface& interface, const std::string& chain = {})
{
    if (interface.wireless && !view.cameraOn(interface.name))
        return {};
    std::string cure = commandFor(view.machine.firewall, interface.name, chain);
    if (interface.leadsOut)
        cure += "; " + interface.name + " then accepts UDP from everybody in its network";
    return cure;
}

Line lineOf(const View& view, const Interface& interface, const Passage& passage)
{
    const std::string subject = "firewall on " + interface.name;
    switch (passage.kind) {
    case Passage::accepted:
        return {Severity::good, subject, "no nftables rule drops UDP"};
    case Passage::dropped:
        return {view.cameraOn(interface.name) ? Severity::wrong : view.hidesGige(interface), subject,
                "drops UDP, which GigE cameras use for answers and images", openingFor(view, interface, passage.chain)};
    case Passage::unknown:
        break;
    }
    return {Severity::note, subject, "it depends on its rules whether it accepts UDP from cameras",
            openingFor(view, interface, passage.chain)};
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
        lines.push_back({Severity::note, "interfaces", "there is none through which GigE cameras could be reached"});
    for (const SilentInterface& silent : view.search.silent) {
        lines.push_back({Severity::failed, "interface " + silent.name,
                         "GigE cameras cannot be searched for on it: " + silent.reason,
                         "if a firewall forbids it: accept UDP to port 3956 in its output chain"});
    }
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
                lines.push_back(
                    {used ? Severity::wrong : view.hidesGige(networks[i].wireless ? networks[j] : networks[i]),
                     subjectOf(networks[i]),
                     textOf(address) + " is in the network of " + networks[j].name +
                         ", too: packets to a camera leave through only one of the two",
                     "give one of them and its cameras addresses of another network"});
            }
        }
    }
    return lines;
}

Lines checkReversePathFilter(const View& view)
{
    Lines lines;
    for (const Interface& interface : view.networks()) {
        const std::string subject = "reverse path filter on " + interface.name;
        if (!interface.reversePathFilter) {
            lines.push_back({Severity::failed, subject, "cannot be read"});
        } else if (*interface.reversePathFilter == 1) {
            lines.push_back({view.hidesGige(interface), subject,
                             "is strict: the kernel drops answers of cameras outside " + addressesOf(interface),
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
            lines.push_back({Severity::good, subject, "accepts answers of cameras"});
        } else if (!firewall.manager.empty()) {
            lines.push_back(
                {view.hidesGige(interface), subject,
                 firewall.manager + " is on, and drops the answers of GigE cameras unless a rule accepts them",
                 openingFor(view, interface)});
        } else {
            unseen = true;
        }
    }
    if (!unseen)
        return lines;
    if (!view.machine.root) {
        lines.push_back({Severity::note, "firewall", "only root may read its rules", "sudo orvocam-check"});
    } else if (!firewall.hasNft) {
        lines.push_back({Severity::note, "firewall", "its rules cannot be read without nft",
                         "sudo apt install nftables, then call this program again"});
    } else {
        lines.push_back({Severity::failed, "firewall", "nft does not print its rules"});
    }
    return lines;
}

Lines checkReceiveBuffer(const View& view)
{
    const std::string subject = "receive buffer";
    const auto size = view.machine.receiveBuffer;
    if (!size)
        return {{Severity::failed, subject, "its limit, net.core.rmem_max, can be neither read nor measured"}};
    std::string text = "at most " + std::to_string(*size) + " bytes for a socket (net.core.rmem_max)";
    if (*size >= kWantedBuffer)
        return {{Severity::good, subject, text}};
    text += *size < kSmallestBuffer ? "; images of GigE cameras are incomplete because they overflow it"
                                    : "; large images of GigE cameras may overflow it";
    const Severity severity = view.anyGige() && *size < kSmallestBuffer ? Severity::wrong : Severity::note;
    const std::string where = view.machine.receiveBufferSetHere ? "" : "outside this network namespace: ";
    return {{severity, subject, text,
             where + "sudo sysctl -w net.core.rmem_max=" + std::to_string(kWantedBuffer) +
                 "; for good: sudo cp /usr/share/doc/liborvocam1/examples/60-orvocam-gige.conf /etc/sysctl.d/"}};
}

Lines checkMtu(const View& view)
{
    Lines lines;
    std::set<std::string> small; // interfaces that already have their line
    for (const Camera& camera : view.search.cameras) {
        const Interface* const interface = view.interfaceOf(camera);
        if (interface == nullptr || interface->mtu <= 0)
            continue;
        const std::string limit = std::to_string(interface->mtu);
        const std::string larger =
            "sudo ip link set dev " + interface->name + " mtu 9000, if every switch on the way supports that";
        // Opening the stream may lower the packet size. Larger packets arrive in fragments unless the camera forbids
        // that.
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
                             limit + " means more packets, and so more work for the computer, than jumbo frames",
                             larger});
        }
    }
    return lines;
}

} // namespace check
