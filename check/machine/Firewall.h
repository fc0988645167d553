#pragma once

#include "check/machine/SystemFiles.h"

#include <optional>
#include <string>

namespace check {

/// What becomes of UDP packets of a new peer, such as a camera's answers and images.
struct Passage {
    enum Kind {
        accepted,
        dropped,
        unknown, ///< it depends on rules that are not understood, or on ports and addresses
    };
    Kind kind = accepted;
    std::string chain; ///< that does not simply accept them, as nft names it: "inet filter input"
};

/// By a rule set as `nft --json list ruleset` prints it. What is no rule set gives unknown.
[[nodiscard]] Passage passageOf(const std::string& ruleSet, const std::string& interface);

struct Firewall {
    /// The rule set as JSON; nothing where this user may not read it.
    std::optional<std::string> ruleSet;

    /// The one that the distribution's files and the running programs tell of: "ufw", "firewalld", "nftables" or none.
    std::string manager;
};

[[nodiscard]] Firewall readFirewall(const SystemFiles& files);

} // namespace check
