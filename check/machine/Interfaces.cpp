#include "check/machine/Interfaces.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace check {

namespace {

std::uint32_t addressIn(const sockaddr* address)
{
    sockaddr_in internet{};
    std::memcpy(&internet, address, sizeof internet);
    return ntohl(internet.sin_addr.s_addr);
}

int mtuOf(const std::string& name)
{
    ifreq request{};
    name.copy(request.ifr_name, sizeof request.ifr_name - 1);
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool known = descriptor >= 0 && ::ioctl(descriptor, SIOCGIFMTU, &request) == 0;
    if (descriptor >= 0)
        ::close(descriptor);
    return known ? request.ifr_mtu : 0;
}

/// The interfaces that have a default route.
std::set<std::string> readDefaultRoutes(const SystemFiles& files)
{
    std::set<std::string> names;
    std::istringstream lines(files.text("/proc/net/route").value_or(""));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        std::string destination;
        if (words >> name >> destination && destination == "00000000")
            names.insert(name);
    }
    return names;
}

/// The larger of two settings applies: that for all interfaces and that of the interface.
std::optional<std::int64_t> reversePathFilterOf(const SystemFiles& files, const std::string& name)
{
    const auto one = files.number("/proc/sys/net/ipv4/conf/" + name + "/rp_filter");
    const auto all = files.number("/proc/sys/net/ipv4/conf/all/rp_filter");
    return one && all ? std::max(one, all) : std::nullopt;
}

} // namespace

std::string textOf(std::uint32_t address)
{
    return std::to_string(address >> 24) + "." + std::to_string(address >> 16 & 0xff) + "." +
           std::to_string(address >> 8 & 0xff) + "." + std::to_string(address & 0xff);
}

std::string textOf(const Address& address)
{
    return textOf(address.address) + "/" + std::to_string(address.prefix);
}

std::optional<unsigned> prefixOf(std::uint32_t mask)
{
    unsigned prefix = 0;
    while (prefix < 32 && (mask >> (31 - prefix) & 1) != 0)
        ++prefix;
    if (Address{0, prefix}.mask() != mask)
        return {};
    return prefix;
}

bool Interface::reaches(std::uint32_t address) const
{
    return std::any_of(addresses.begin(), addresses.end(),
                       [&](const Address& own) { return own.sameNetwork(address); });
}

std::optional<std::vector<Interface>> readInterfaces(const SystemFiles& files)
{
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0)
        return {};
    std::map<std::string, Interface> found;
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        // An address may have a label, such as "eth0:1".
        const std::string_view label = entry->ifa_name;
        const std::string name(label.substr(0, label.find(':')));
        Interface& interface = found[name];
        interface.name = name;
        interface.up = (entry->ifa_flags & IFF_UP) != 0;
        interface.running = (entry->ifa_flags & IFF_RUNNING) != 0;
        interface.loopback = (entry->ifa_flags & IFF_LOOPBACK) != 0;
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET || entry->ifa_netmask == nullptr)
            continue;
        interface.addresses.push_back(
            {addressIn(entry->ifa_addr), prefixOf(addressIn(entry->ifa_netmask)).value_or(32)});
    }
    ::freeifaddrs(list);

    const std::set<std::string> defaultRoutes = readDefaultRoutes(files);
    std::vector<Interface> interfaces;
    for (auto& [name, interface] : found) {
        const std::string folder = "/sys/class/net/" + name + "/";
        interface.mtu = mtuOf(name);
        interface.wireless = files.exists(folder + "wireless") || files.exists(folder + "phy80211");
        interface.wired = files.exists(folder + "device") && !interface.wireless;
        if (const auto speed = files.number(folder + "speed"); speed && *speed > 0)
            interface.speed = speed;
        interface.leadsOut = defaultRoutes.count(name) != 0;
        interface.reversePathFilter = reversePathFilterOf(files, name);
        interfaces.push_back(std::move(interface));
    }
    return interfaces;
}

} // namespace check
