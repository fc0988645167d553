#pragma once

#include "check/machine/SystemFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// An IPv4 address in host byte order, and how many of its bits are the network's.
struct Address {
    std::uint32_t address = 0;
    unsigned prefix = 32;

    [[nodiscard]] std::uint32_t mask() const { return prefix == 0 ? 0 : ~std::uint32_t{0} << (32 - prefix); }
    [[nodiscard]] bool sameNetwork(std::uint32_t other) const { return ((address ^ other) & mask()) == 0; }
};

[[nodiscard]] std::string textOf(std::uint32_t address);

/// With the prefix: "192.168.5.1/24".
[[nodiscard]] std::string textOf(const Address& address);

/// The number of bits in a subnet mask; no value for a mask with gaps.
[[nodiscard]] std::optional<unsigned> prefixOf(std::uint32_t mask);

struct Interface {
    std::string name;
    bool up = false;      ///< switched on
    bool running = false; ///< something is connected
    bool loopback = false;
    bool wired = false; ///< an Ethernet card, not a wireless, virtual or tunnelled interface
    bool wireless = false;
    bool leadsOut = false; ///< has a default route
    int mtu = 0;
    std::optional<std::int64_t> speed;             ///< Mbit/s
    std::optional<std::int64_t> reversePathFilter; ///< 0 off, 1 strict, 2 loose
    std::vector<Address> addresses;

    /// Whether cameras can be reached through it at all.
    [[nodiscard]] bool usable() const { return up && running && !addresses.empty(); }

    /// Whether it may be dedicated to cameras: an Ethernet card without a default route.
    [[nodiscard]] bool dedicated() const { return wired && !leadsOut; }

    /// Whether the address is in one of its networks.
    [[nodiscard]] bool reaches(std::uint32_t address) const;
};

/// The interfaces of this network namespace, sorted by name. No value if the system does not list them.
[[nodiscard]] std::optional<std::vector<Interface>> readInterfaces(const SystemFiles& files);

} // namespace check
