#pragma once

#include "check/machine/SystemFiles.h"

#include <optional>
#include <string>

namespace check {

/// What happens to UDP packets from a new peer, such as a camera's answers and images.
struct Passage {
    enum Kind {
        accepted,
        dropped,
        unknown, ///< depends on ports, addresses, or rules that are not understood here
    };
    Kind kind = accepted;
    std::string chain; ///< the one that does not simply accept them, as nft names it: "inet filter input"
};

/// Evaluates a rule set as `nft --json list ruleset` prints it. Anything else gives unknown.
[[nodiscard]] Passage passageOf(const std::string& ruleSet, const std::string& interface);

struct Firewall {
    /// The rule set as JSON; no value if it cannot be read. Only root may read it.
    std::optional<std::string> ruleSet;

    bool hasNft = false; ///< the program that prints it

    /// The one that is on according to the distribution's files and the running programs: "ufw", "firewalld",
    /// "nftables" or none.
    std::string manager;
};

[[nodiscard]] Firewall readFirewall(const SystemFiles& files);

} // namespace check
