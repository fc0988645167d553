#pragma once

#include "check/machine/SystemFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// An IPv4 address in host byte order, with the bits of it that name the network.
struct Address {
    std::uint32_t address = 0;
    unsigned prefix = 32;

    [[nodiscard]] std::uint32_t mask() const { return prefix == 0 ? 0 : ~std::uint32_t{0} << (32 - prefix); }
    [[nodiscard]] bool sameNetwork(std::uint32_t other) const { return ((address ^ other) & mask()) == 0; }
};

[[nodiscard]] std::string textOf(std::uint32_t address);

/// With the prefix: "192.168.5.1/24".
[[nodiscard]] std::string textOf(const Address& address);

/// The bits that a subnet mask has; nothing for one with gaps.
[[nodiscard]] std::optional<unsigned> prefixOf(std::uint32_t mask);

struct Interface {
    std::string name;
    bool up = false;      ///< switched on
    bool running = false; ///< something is connected
    bool loopback = false;
    bool wired = false; ///< an Ethernet card, not a wireless, virtual or tunnelled interface
    int mtu = 0;
    std::optional<std::int64_t> speed;             ///< Mbit/s
    std::optional<std::int64_t> reversePathFilter; ///< 0 off, 1 strict, 2 loose
    std::vector<Address> addresses;

    /// Whether cameras can be reached by it at all.
    [[nodiscard]] bool usable() const { return up && running && !addresses.empty(); }

    /// Whether one of its networks has the address.
    [[nodiscard]] bool reaches(std::uint32_t address) const;
};

/// Sorted by name. Names, states, addresses and MTU are those of the network that this process is in. Nothing where the
/// system does not tell.
[[nodiscard]] std::optional<std::vector<Interface>> readInterfaces(const SystemFiles& files);

} // namespace check
