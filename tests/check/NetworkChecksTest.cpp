#include "tests/check/Views.h"

using namespace check;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

/// Rejects all that is not an answer to something sent.
constexpr const char* kClosed = R"({"nftables": [
    {"chain": {"family": "inet", "table": "filter", "name": "input", "hook": "input", "policy": "drop"}}]})";

/// Whether it lets a camera in depends on the address.
constexpr const char* kByAddress = R"({"nftables": [
    {"chain": {"family": "inet", "table": "filter", "name": "input", "hook": "input", "policy": "drop"}},
    {"rule": {"family": "inet", "table": "filter", "chain": "input", "expr": [
        {"match": {"op": "==", "left": {"payload": {"protocol": "ip", "field": "saddr"}}, "right": "192.168.5.20"}},
        {"accept": null}]}}]})";

} // namespace

TEST(NetworkChecksTest, WorkingMachineIsFine)
{
    const View view = workingView();
    for (const auto check :
         {checkInterfaces, checkNetworks, checkReversePathFilter, checkFirewall, checkReceiveBuffer, checkMtu})
        EXPECT_THAT(check(view), Each(IsFine()));
    EXPECT_THAT(checkInterfaces(view),
                ElementsAre(IsLine(Severity::good, "interface enp3s0: 192.168.5.1/24, MTU 9000, 1000 Mbit/s", "")));
}

TEST(NetworkChecksTest, InterfacesThatAreNotListedCouldNotBeLookedAt)
{
    View view = workingView();
    view.machine.interfaces.reset();
    EXPECT_THAT(checkInterfaces(view), ElementsAre(IsLine(Severity::failed, "does not list", "")));
}

TEST(NetworkChecksTest, WiredInterfaceHidesCamerasWhileNoneIsFound)
{
    View view = viewWithoutCameras();
    Interface& interface = view.machine.interfaces->front();
    interface.addresses.clear();
    EXPECT_THAT(checkInterfaces(view),
                ElementsAre(IsLine(Severity::wrong, "no IPv4 address", "ip address add 169.254.1.1/16 dev enp3s0")));
    interface.running = false;
    EXPECT_THAT(checkInterfaces(view), ElementsAre(IsLine(Severity::wrong, "nothing is connected", "cable")));
    interface.up = false;
    EXPECT_THAT(checkInterfaces(view),
                ElementsAre(IsLine(Severity::wrong, "switched off", "sudo ip link set dev enp3s0 up")));
    interface.wired = false;
    EXPECT_THAT(checkInterfaces(view), ElementsAre(IsLine(Severity::note, "switched off", "")));

    view = workingView();
    view.machine.interfaces->push_back(workingInterface("enp4s0"));
    view.machine.interfaces->back().up = false;
    EXPECT_THAT(checkInterfaces(view), Contains(IsLine(Severity::note, "enp4s0: is switched off", "sudo")));
}

TEST(NetworkChecksTest, UsbCameraDoesNotExcuseWhatHidesGigeCamerasOnADedicatedInterface)
{
    View view = viewWithoutCameras();
    view.search.cameras = {listedAs(workingDevice())};
    view.machine.firewall.ruleSet = kClosed;
    view.machine.interfaces->front().reversePathFilter = 1;
    view.machine.interfaces->push_back(workingInterface("enp4s0", 0xc0a80502));
    view.machine.interfaces->back().addresses.push_back({0xc0a80601, 24});
    Interface& dedicated = view.machine.interfaces->front();
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(IsLine(Severity::wrong, "is strict", "sysctl")));
    EXPECT_THAT(checkFirewall(view), Contains(IsLine(Severity::wrong, "on enp3s0: drops UDP", "sudo nft")));
    EXPECT_THAT(checkNetworks(view), ElementsAre(IsLine(Severity::wrong, "enp4s0: 192.168.5.2/24 is in", "")));
    dedicated.leadsOut = true;
    view.machine.interfaces->back().leadsOut = true;
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(IsLine(Severity::note, "is strict", "sysctl")));
    EXPECT_THAT(checkFirewall(view), Contains(IsLine(Severity::note, "on enp3s0: drops UDP", "sudo nft")));
    EXPECT_THAT(checkNetworks(view), ElementsAre(IsLine(Severity::note, "enp4s0: 192.168.5.2/24 is in", "")));
    dedicated.leadsOut = false;
    dedicated.wired = false;
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(IsLine(Severity::note, "is strict", "sysctl")));
    dedicated.wired = true;
    dedicated.addresses.clear();
    EXPECT_THAT(checkInterfaces(view), Contains(IsLine(Severity::wrong, "enp3s0: has no IPv4 address", "sudo ip")));
    dedicated.running = false;
    EXPECT_THAT(checkInterfaces(view), Contains(IsLine(Severity::note, "enp3s0: nothing is connected", "cable")))
        << "an unused socket is no fault";
}

TEST(NetworkChecksTest, InterfaceWithoutASearchCouldNotBeLookedAt)
{
    View view = workingView();
    view.search.silent = {{"enp3s0", "Operation not permitted"}};
    EXPECT_THAT(checkInterfaces(view), Contains(IsLine(Severity::failed,
                                                       "enp3s0: GigE cameras cannot be searched for "
                                                       "on it: Operation not permitted",
                                                       "firewall")));
}

TEST(NetworkChecksTest, LoopbackCountsOnlyWhereACameraAnswersOnIt)
{
    View view = viewWithoutCameras();
    view.machine.interfaces->front().loopback = true;
    EXPECT_THAT(checkInterfaces(view), ElementsAre(IsLine(Severity::note, "there is none", "")));
    view.search.cameras = {workingCamera()};
    EXPECT_THAT(checkInterfaces(view), ElementsAre(IsFine()));
}

TEST(NetworkChecksTest, TwoInterfacesInOneNetworkAreWrong)
{
    View view = workingView();
    view.machine.interfaces->push_back(workingInterface("enp4s0", 0xc0a80502));
    EXPECT_THAT(checkNetworks(view),
                ElementsAre(IsLine(Severity::wrong, "enp4s0: 192.168.5.2/24 is in the network of enp3s0", "another")));
    view.machine.interfaces->back().addresses.front().address = 0xc0a80601;
    EXPECT_THAT(checkNetworks(view), IsEmpty());
}

TEST(NetworkChecksTest, StrictReversePathFilterHidesCameras)
{
    View view = viewWithoutCameras();
    view.machine.interfaces->front().reversePathFilter = 1;
    const auto line = [](Severity severity) {
        return IsLine(severity, "enp3s0: is strict", "sysctl -w net/ipv4/conf/enp3s0/rp_filter=2");
    };
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(line(Severity::wrong)));
    view.machine.interfaces->front().reversePathFilter = 2;
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(IsFine()));

    view = workingView();
    view.machine.interfaces->front().reversePathFilter = 1;
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(line(Severity::note)));
}

TEST(NetworkChecksTest, ReversePathFilterThatIsNotToldCouldNotBeLookedAt)
{
    View view = workingView();
    view.machine.interfaces->front().reversePathFilter.reset();
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(IsLine(Severity::failed, "enp3s0: cannot be read", "")));
}

TEST(NetworkChecksTest, FirewallThatDropsIsWrong)
{
    View view = viewWithoutCameras();
    view.machine.firewall.ruleSet = kClosed;
    EXPECT_THAT(checkFirewall(view),
                ElementsAre(IsLine(Severity::wrong, "firewall on enp3s0: drops UDP",
                                   "nft insert rule inet filter input iifname enp3s0 meta l4proto udp accept")));
    view.search.cameras = {workingCamera()};
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::wrong, "drops UDP", "sudo nft")));
    view.search.cameras = {listedAs(workingDevice())};
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::wrong, "drops UDP", "sudo nft")));
    view.search.cameras.push_back(workingCamera());
    view.search.cameras.back().answer->interface = "enp4s0";
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::note, "drops UDP", "sudo nft")));
    view.machine.firewall.manager = "ufw";
    EXPECT_THAT(checkFirewall(view),
                ElementsAre(IsLine(Severity::note, "drops UDP", "sudo ufw allow in on enp3s0 proto udp to any")));
    view.machine.firewall.manager = "firewalld";
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::note, "drops UDP", "firewall-cmd")));
}

// Cameras have cables, and the network of another interface may be open to everybody.
TEST(NetworkChecksTest, NothingIsOpenedOnAWirelessInterface)
{
    View view = viewWithoutCameras();
    view.machine.firewall.ruleSet = kClosed;
    view.machine.interfaces->front().wired = false;
    view.machine.interfaces->front().wireless = true;
    view.machine.interfaces->front().reversePathFilter = 1;
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::note, "drops UDP", "")));
    EXPECT_EQ(checkFirewall(view).front().cure, "");
    EXPECT_THAT(checkReversePathFilter(view), ElementsAre(IsLine(Severity::note, "is strict", "")));
    view.machine.firewall.ruleSet.reset();
    view.machine.firewall.manager = "ufw";
    EXPECT_EQ(checkFirewall(view).front().cure, "");
    view.search.cameras = {workingCamera()};
    view.machine.firewall.ruleSet = kClosed;
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::wrong, "drops UDP", "sudo ufw allow")));
}

TEST(NetworkChecksTest, WhoeverOpensAnInterfaceWithADefaultRouteIsWarned)
{
    View view = viewWithoutCameras();
    view.machine.firewall.ruleSet = kClosed;
    EXPECT_THAT(checkFirewall(view).front().cure, ::testing::Not(::testing::HasSubstr("everybody")));
    view.machine.interfaces->front().leadsOut = true;
    EXPECT_THAT(checkFirewall(view).front().cure, ::testing::HasSubstr("; enp3s0 then accepts UDP from everybody"));
}

TEST(NetworkChecksTest, FirewallThatMayDropIsNoted)
{
    View view = viewWithoutCameras();
    view.machine.firewall.ruleSet = kByAddress;
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::note, "it depends on its rules", "sudo nft")));
}

TEST(NetworkChecksTest, FirewallOfWhichOnlyRootMayKnowIsGuessed)
{
    View view = viewWithoutCameras();
    view.machine.firewall.ruleSet.reset();
    view.machine.interfaces->push_back(workingInterface("enp4s0", 0xc0a80601));
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::note, "only root", "sudo orvocam-check")));
    view.machine.interfaces->pop_back();
    view.machine.firewall.manager = "ufw";
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::wrong, "ufw is on", "sudo ufw allow")));
    view.search.cameras = {workingCamera()};
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::good, "accepts answers of cameras", "")));
    view.search.cameras.clear();
    view.machine.firewall.manager.clear();
    view.machine.root = true;
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::note, "cannot be read without nft", "nftables")));
    view.machine.firewall.hasNft = true;
    EXPECT_THAT(checkFirewall(view), ElementsAre(IsLine(Severity::failed, "nft does not print its rules", "")));
}

TEST(NetworkChecksTest, SmallReceiveBufferIsWrongForGigeCameras)
{
    View view = workingView();
    view.machine.receiveBuffer = 212'992;
    EXPECT_THAT(checkReceiveBuffer(view),
                ElementsAre(IsLine(Severity::wrong, "212992 bytes", "sysctl -w net.core.rmem_max=33554432")));
    view.machine.receiveBufferSetHere = false;
    EXPECT_THAT(checkReceiveBuffer(view),
                ElementsAre(IsLine(Severity::wrong, "212992 bytes", "outside this network namespace: sudo sysctl")));
    view.search.cameras = {listedAs(workingDevice())};
    EXPECT_THAT(checkReceiveBuffer(view), ElementsAre(IsLine(Severity::note, "212992 bytes", "sudo sysctl")));
    view = workingView();
    view.machine.receiveBuffer = 8'000'000;
    EXPECT_THAT(checkReceiveBuffer(view), ElementsAre(IsLine(Severity::note, "8000000 bytes", "sudo sysctl")));
    view.machine.receiveBuffer.reset();
    EXPECT_THAT(checkReceiveBuffer(view), ElementsAre(IsLine(Severity::failed, "neither read nor measured", "")));
}

TEST(NetworkChecksTest, NothingIsSaidOfAnUnknownSpeedOrMtu)
{
    View view = workingView();
    Interface& interface = view.machine.interfaces->front();
    interface.speed.reset();
    EXPECT_EQ(checkInterfaces(view).front().text, "192.168.5.1/24, MTU 9000");
    interface.mtu = 1500;
    EXPECT_THAT(checkMtu(view), IsEmpty()) << "a slow interface needs no larger packets";
    interface.speed = 1000;
    interface.mtu = 8000;
    EXPECT_THAT(checkMtu(view), IsEmpty()) << "these are jumbo frames";
    interface.mtu = 0;
    EXPECT_EQ(checkInterfaces(view).front().text, "192.168.5.1/24, 1000 Mbit/s");
    view.search.cameras.back().packetSize = 8000;
    EXPECT_THAT(checkMtu(view), IsEmpty());
}

TEST(NetworkChecksTest, PacketsAboveTheMtuAreWrongWhereTheyHarm)
{
    View view = workingView();
    view.machine.interfaces->front().mtu = 1500;
    EXPECT_THAT(checkMtu(view), ElementsAre(IsLine(Severity::note, "1500 means", "mtu 9000")));
    view.search.cameras.insert(view.search.cameras.begin(), workingCamera("G2", 0xc0a80515));
    EXPECT_THAT(checkMtu(view), SizeIs(1)) << "once for each interface";
    view.search.cameras.erase(view.search.cameras.begin());
    Camera& camera = view.search.cameras.back();
    camera.packetSize = 1500;
    EXPECT_THAT(checkMtu(view), ElementsAre(IsLine(Severity::note, "1500 means", ""))) << "they just fit";
    camera.packetSize = 8000;
    const auto line = [](Severity severity) {
        return IsLine(severity, "packets of 8000 bytes exceed the MTU of enp3s0, 1500", "GevSCPSPacketSize");
    };
    EXPECT_THAT(checkMtu(view), ElementsAre(line(Severity::note)));
    camera.stream = StreamResult();
    camera.stream->packetSize = 8000;
    EXPECT_THAT(checkMtu(view), ElementsAre(line(Severity::wrong)));
    camera.stream->images = 50;
    EXPECT_THAT(checkMtu(view), ElementsAre(line(Severity::note)));
    camera.stream->incomplete = 1;
    EXPECT_THAT(checkMtu(view), ElementsAre(line(Severity::wrong)));
    camera.stream->packetSize = 1500;
    EXPECT_THAT(checkMtu(view), Not(Contains(line(Severity::wrong))));
}
