#include "check/machine/Firewall.h"

#include <gtest/gtest.h>

#include <string>

using namespace check;

namespace {

const std::string kAccept = R"({"accept": null})";
const std::string kDrop = R"({"drop": null})";
const std::string kReject = R"({"reject": {"type": "icmpx", "expr": "port-unreachable"}})";

std::string chain(const std::string& name, const std::string& more)
{
    return R"({"chain": {"family": "inet", "table": "filter", "name": ")" + name + '"' + more + "}}";
}

/// With the policy of the input chain.
std::string input(const std::string& policy)
{
    return chain("input", R"(, "type": "filter", "hook": "input", "prio": 0, "policy": ")" + policy + '"');
}

std::string rule(const std::string& statements, const std::string& inChain = "input")
{
    return R"({"rule": {"family": "inet", "table": "filter", "chain": ")" + inChain + R"(", "expr": [)" + statements +
           "]}}";
}

std::string match(const std::string& left, const std::string& right, const std::string& op = "==")
{
    return R"({"match": {"op": ")" + op + R"(", "left": )" + left + R"(, "right": )" + right + "}}";
}

std::string meta(const std::string& key)
{
    return R"({"meta": {"key": ")" + key + R"("}})";
}

std::string payload(const std::string& protocol, const std::string& field)
{
    return R"({"payload": {"protocol": ")" + protocol + R"(", "field": ")" + field + R"("}})";
}

template <class... Items> Passage::Kind passage(const Items&... items)
{
    std::string all = R"({"metainfo": {"version": "1.0.6"}})";
    ((all += "," + std::string(items)), ...);
    return passageOf(R"({"nftables": [)" + all + "]}", "cam0").kind;
}

const std::string kEstablished = match(R"({"ct": {"key": "state"}})", R"(["established", "related"])", "in");

} // namespace

TEST(FirewallTest, PolicyDecidesWhereNoRuleDoes)
{
    EXPECT_EQ(passage(), Passage::accepted);
    EXPECT_EQ(passage(input("accept")), Passage::accepted);
    EXPECT_EQ(passage(input("drop")), Passage::dropped);
    EXPECT_EQ(passage(chain("output", R"(, "hook": "output", "policy": "drop")")), Passage::accepted);
}

TEST(FirewallTest, ChainThatDropsIsNamed)
{
    EXPECT_EQ(passageOf(R"({"nftables": [)" + input("drop") + "]}", "cam0").chain, "inet filter input");
}

TEST(FirewallTest, CamerasAreNewPeers)
{
    EXPECT_EQ(passage(input("drop"), rule(kEstablished + "," + kAccept)), Passage::dropped);
    EXPECT_EQ(passage(input("drop"),
                      rule(match(R"({"ct": {"key": "state"}})", R"({"set": ["new", "related"]})") + "," + kAccept)),
              Passage::accepted);
}

TEST(FirewallTest, RulesForTheInterfaceCount)
{
    const auto accepts = [](const std::string& interface) {
        return rule(match(meta("iifname"), interface) + "," + match(meta("l4proto"), R"("udp")") + "," + kAccept);
    };
    EXPECT_EQ(passage(input("drop"), accepts(R"("cam0")")), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), accepts(R"("cam*")")), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), accepts(R"({"set": ["lo", "cam0"]})")), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), accepts(R"("lo")")), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), accepts(R"("cam1")")), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), accepts(R"("can*")")), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), rule(match(meta("iifname"), R"("lo")", "!=") + "," + kAccept)), Passage::accepted);
}

TEST(FirewallTest, RulesForOtherProtocolsAndPortsDoNotCount)
{
    const auto accepts = [](const std::string& matches) { return rule(matches + "," + kAccept); };
    EXPECT_EQ(passage(input("drop"), accepts(match(payload("tcp", "dport"), "22"))), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), accepts(match(payload("tcp", "dport"), "50000"))), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), accepts(match(payload("udp", "dport"), R"({"set": [53, 67]})"))),
              Passage::dropped);
    EXPECT_EQ(passage(input("drop"), accepts(match(payload("ip", "protocol"), R"("icmp")"))), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), accepts(match(payload("ip", "protocol"), R"("udp")"))), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), accepts(match(meta("l4proto"), R"("tcp")"))), Passage::dropped);
}

TEST(FirewallTest, FirstRuleThatMatchesDecides)
{
    EXPECT_EQ(passage(input("accept"), rule(R"({"counter": {"packets": 0, "bytes": 0}},)" + kReject), rule(kAccept)),
              Passage::dropped);
    EXPECT_EQ(passage(input("accept"), rule(kAccept), rule(kDrop)), Passage::accepted);
}

TEST(FirewallTest, ChainsBeforeRoutingCount)
{
    const std::string early =
        chain("early", R"(, "type": "filter", "hook": "prerouting", "prio": -300, "policy": "accept")");
    EXPECT_EQ(passage(input("accept"), early, rule(kDrop, "early")), Passage::dropped);
}

TEST(FirewallTest, ChainsAtTheInterfaceCount)
{
    const auto ingress = [](const std::string& family, const std::string& device) {
        return R"({"chain": {"family": ")" + family +
               R"(", "table": "t", "name": "early", "hook": "ingress", "policy": "drop", "dev": )" + device + "}}";
    };
    const std::string open = input("accept");
    EXPECT_EQ(passage(open, ingress("netdev", R"("cam0")")), Passage::dropped);
    EXPECT_EQ(passage(open, ingress("netdev", R"(["cam1", "cam0"])")), Passage::dropped);
    EXPECT_EQ(passage(open, ingress("inet", R"("cam0")")), Passage::dropped);
    EXPECT_EQ(passage(open, ingress("netdev", R"("cam1")")), Passage::accepted);
}

TEST(FirewallTest, JumpsAreFollowed)
{
    const auto jump = rule(R"({"jump": {"target": "cameras"}})");
    EXPECT_EQ(passage(input("drop"), jump, chain("cameras", ""), rule(kAccept, "cameras")), Passage::accepted);
    EXPECT_EQ(passage(input("accept"), jump, chain("cameras", ""), rule(kDrop, "cameras")), Passage::dropped);
    EXPECT_EQ(passage(input("accept"), jump, chain("cameras", ""), rule(R"({"return": null})", "cameras"),
                      rule(kDrop, "cameras")),
              Passage::accepted);
    EXPECT_EQ(passage(input("drop"), jump, chain("cameras", ""), rule(R"({"jump": {"target": "cameras"}})", "cameras")),
              Passage::unknown)
        << "in circles";
}

TEST(FirewallTest, GotoDoesNotComeBack)
{
    const auto to = [](const std::string& kind) { return rule("{\"" + kind + R"(": {"target": "cameras"}})"); };
    EXPECT_EQ(passage(input("drop"), to("goto"), chain("cameras", ""), rule(kAccept, "cameras")), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), to("goto"), chain("cameras", ""), rule(kAccept)), Passage::dropped);
    EXPECT_EQ(passage(input("drop"), to("jump"), chain("cameras", ""), rule(kAccept)), Passage::accepted);
}

TEST(FirewallTest, RulesWithoutAVerdictDecideNothing)
{
    const std::string limit = R"({"limit": {"rate": 3, "burst": 10, "per": "minute"}})";
    const std::string log = R"({"log": {"prefix": "[blocked] "}})";
    EXPECT_EQ(passage(input("accept"), rule(log)), Passage::accepted);
    EXPECT_EQ(passage(input("accept"), rule(limit + "," + log)), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), rule(limit + "," + log), rule(kAccept)), Passage::accepted);
    EXPECT_EQ(passage(input("drop"), rule(limit + "," + kAccept)), Passage::unknown) << "some packets pass";
}

TEST(FirewallTest, WhatIsNotUnderstoodIsUnknown)
{
    const std::string from = match(payload("ip", "saddr"), R"("192.168.5.20")");
    EXPECT_EQ(passage(input("drop"), rule(from + "," + kAccept)), Passage::unknown);
    EXPECT_EQ(passage(input("accept"), rule(from + "," + kDrop)), Passage::unknown);
    EXPECT_EQ(passage(input("drop"), rule(R"({"xt": null},)" + kAccept)), Passage::unknown);
    EXPECT_EQ(
        passage(input("drop"), rule(match(payload("udp", "dport"), R"({"range": [1024, 65535]})") + "," + kAccept)),
        Passage::unknown);
    EXPECT_EQ(passage(input("drop"), rule(match(payload("udp", "sport"), "3956") + "," + kAccept)), Passage::unknown)
        << "answers come from there, images do not";
    EXPECT_EQ(passage(input("drop"), rule(match(meta("iifname"), R"("@lan")") + "," + kAccept)), Passage::unknown)
        << "a named set";
    EXPECT_EQ(passage(input("drop"), rule(R"({"vmap": {"key": {"meta": {"key": "iifname"}}, "data": "@jumps"}})")),
              Passage::unknown);
    const std::string from20 = from + R"(,{"goto": {"target": "cameras"}})";
    EXPECT_EQ(passage(input("drop"), rule(from20), rule(kAccept), chain("cameras", "")), Passage::unknown);
    EXPECT_EQ(passageOf("", "cam0").kind, Passage::unknown);
    EXPECT_EQ(passageOf(R"({"nftables": [{"chain": {"name": 5}}]})", "cam0").kind, Passage::unknown);
}
