#include "check/machine/Firewall.h"

#include "check/machine/Command.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace check {

namespace {

using nlohmann::json;

/// Users do not have this folder in their path.
constexpr const char* kNft = "/usr/sbin/nft";
constexpr std::chrono::seconds kNftLimit{5};

/// Deeper than any sensible chain of jumps.
constexpr int kDeepest = 16;

/// By default the kernel gives no lower port to the sockets that receive images.
constexpr int kFirstOwnPort = 32768;

enum class Match { no, maybe, yes };

Match opposite(Match match)
{
    return match == Match::maybe ? match : match == Match::yes ? Match::no : Match::yes;
}

Match matchIf(bool matches)
{
    return matches ? Match::yes : Match::no;
}

/// The values of a match's right side: one, a list, or a set.
std::vector<json> valuesOf(const json& right)
{
    if (right.is_object() && right.contains("set"))
        return valuesOf(right["set"]);
    if (right.is_array())
        return right.get<std::vector<json>>();
    return {right};
}

/// The elements of a named set are not in the rule.
bool isNamedSet(const json& right)
{
    return right.is_string() && right.get<std::string>().rfind('@', 0) == 0;
}

bool namesInterface(const json& pattern, const std::string& interface)
{
    if (!pattern.is_string())
        return false;
    const auto text = pattern.get<std::string>();
    const bool open = !text.empty() && text.back() == '*';
    return open ? interface.rfind(text.substr(0, text.size() - 1), 0) == 0 : text == interface;
}

/// Whether this may be a port to which cameras send.
bool mayBeOwnPort(const json& port)
{
    if (port.is_number_integer())
        return port.get<std::int64_t>() >= kFirstOwnPort;
    return !port.is_string(); // a range, or something unknown
}

template <class Test> bool any(const json& right, Test test)
{
    const auto values = valuesOf(right);
    return std::any_of(values.begin(), values.end(), test);
}

Match matchOf(const json& match, const std::string& interface)
{
    const json left = match.value("left", json());
    const json right = match.value("right", json());
    if (!left.is_object())
        return Match::maybe;
    Match result = Match::maybe;
    if (isNamedSet(right))
        return result;
    if (left.contains("meta") && left["meta"].is_object()) {
        const std::string key = left["meta"].value("key", "");
        if (key == "iifname" || key == "iif") {
            result = matchIf(any(right, [&](const json& value) { return namesInterface(value, interface); }));
        } else if (key == "l4proto") {
            result = matchIf(any(right, [](const json& value) { return value == "udp" || value == 17; }));
        } else if (key == "nfproto") {
            result = matchIf(any(right, [](const json& value) { return value == "ipv4"; }));
        }
    } else if (left.contains("ct") && left["ct"].is_object() && left["ct"].value("key", "") == "state") {
        result = matchIf(any(right, [](const json& value) { return value == "new"; }));
    } else if (left.contains("payload") && left["payload"].is_object()) {
        const std::string protocol = left["payload"].value("protocol", "");
        const std::string field = left["payload"].value("field", "");
        static const std::set<std::string> others = {"tcp", "icmp", "icmpv6", "ip6", "sctp", "arp"};
        if (others.count(protocol) != 0)
            return Match::no;
        if (protocol == "ip" && field == "protocol")
            result = matchIf(any(right, [](const json& value) { return value == "udp"; }));
        if (field == "dport" && !any(right, mayBeOwnPort))
            result = Match::no;
    }
    return match.value("op", "==") == "!=" ? opposite(result) : result;
}

// Statements that a packet always passes, and those that it passes up to a number or rate.
const std::set<std::string> kHarmless = {"comment", "counter", "ct helper", "log", "mangle", "notrack", "set"};
const std::set<std::string> kLimits = {"ct count", "limit", "quota"};

/// The chains of a rule set, and the path of a packet through them.
class RuleSet {
public:
    RuleSet(const json& ruleSet, std::string interface)
        : m_interface(std::move(interface))
    {
        for (const json& item : ruleSet.value("nftables", json::array())) {
            if (!item.is_object())
                continue;
            if (item.contains("chain") && item["chain"].is_object()) {
                m_chains[keyOf(item["chain"], "name")].head = item["chain"];
            } else if (item.contains("rule") && item["rule"].is_object()) {
                m_chains[keyOf(item["rule"], "chain")].rules.push_back(item["rule"]);
            }
        }
    }

    [[nodiscard]] Passage passage() const
    {
        Passage result;
        for (const auto& [key, chain] : m_chains) {
            if (!concerns(chain.head))
                continue;
            const auto policy = chain.head.value("policy", "accept") == "drop" ? Passage::dropped : Passage::accepted;
            Passage one = {follow(key, 0).value_or(policy), key};
            // A packet has to pass every chain.
            if (one.kind == Passage::dropped)
                return one;
            if (one.kind == Passage::unknown)
                result = std::move(one);
        }
        return result;
    }

private:
    struct Chain {
        json head = json::object();
        std::vector<json> rules;
    };

    static std::string keyOf(const json& item, const char* name)
    {
        return item.value("family", "") + " " + item.value("table", "") + " " + item.value(name, "");
    }

    /// Whether the packet meets this chain on its way to a program.
    [[nodiscard]] bool concerns(const json& head) const
    {
        const std::string hook = head.value("hook", "");
        const std::string family = head.value("family", "");
        if (hook == "ingress")
            return any(head.value("dev", json()), [&](const json& device) { return device == m_interface; });
        return (hook == "input" || hook == "prerouting") && (family == "inet" || family == "ip");
    }

    /// No value if the packet reaches the end of the chain.
    [[nodiscard]] std::optional<Passage::Kind> follow(const std::string& key, int depth) const
    {
        const auto found = m_chains.find(key);
        if (found == m_chains.end() || depth > kDeepest)
            return Passage::unknown;
        for (const json& rule : found->second.rules) {
            Match match = Match::yes;
            for (const json& statement : rule.value("expr", json::array())) {
                if (!statement.is_object() || statement.empty())
                    continue;
                const std::string kind = statement.begin().key();
                const json& body = statement.begin().value();
                if (kind == "match" && body.is_object()) {
                    match = std::min(match, matchOf(body, m_interface));
                    if (match == Match::no)
                        break;
                    continue;
                }
                if (kHarmless.count(kind) != 0)
                    continue;
                std::optional<Passage::Kind> end;
                if (kind == "accept") {
                    end = Passage::accepted;
                } else if (kind == "drop" || kind == "reject") {
                    end = Passage::dropped;
                } else if (kind == "return") {
                    if (match == Match::yes)
                        return {};
                    end = Passage::unknown;
                } else if ((kind == "jump" || kind == "goto") && body.is_object()) {
                    end = follow(rule.value("family", "") + " " + rule.value("table", "") + " " +
                                     body.value("target", ""),
                                 depth + 1);
                    if (kind == "goto" && !end)
                        return match == Match::yes ? end : Passage::unknown;
                } else if (kLimits.count(kind) != 0) {
                    match = Match::maybe;
                    continue;
                } else { // it may be a verdict, such as a verdict map or a queue
                    end = Passage::unknown;
                }
                if (end)
                    return match == Match::yes ? *end : Passage::unknown;
            }
        }
        return {};
    }

    std::map<std::string, Chain> m_chains;
    std::string m_interface;
};

bool runs(const SystemFiles& files, const std::string& name)
{
    const auto processes = files.entries("/proc");
    return std::any_of(processes.begin(), processes.end(),
                       [&](const std::string& process) { return files.line("/proc/" + process + "/comm") == name; });
}

std::string managerIn(const SystemFiles& files)
{
    if (files.text("/etc/ufw/ufw.conf").value_or("").find("\nENABLED=yes") != std::string::npos)
        return "ufw";
    if (runs(files, "firewalld"))
        return "firewalld";
    if (!files.linkTarget("/etc/systemd/system/sysinit.target.wants/nftables.service").empty() &&
        files.text("/etc/nftables.conf").value_or("").find("policy drop") != std::string::npos)
        return "nftables";
    return {};
}

} // namespace

Passage passageOf(const std::string& ruleSet, const std::string& interface)
{
    try {
        return RuleSet(json::parse(ruleSet), interface).passage();
    } catch (const json::exception&) {
        return {Passage::unknown, {}}; // a form of another version of nft
    }
}

Firewall readFirewall(const SystemFiles& files)
{
    return {outputOf({kNft, "--json", "list", "ruleset"}, kNftLimit), SystemFiles().exists(kNft), managerIn(files)};
}

} // namespace check
