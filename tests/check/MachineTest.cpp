#include "tests/check/MadeUpRoot.h"

#include "check/machine/Machine.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace check;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr const char* kDevices = "/sys/bus/usb/devices/";

std::vector<UsbDevice> devicesIn(const MadeUpRoot& root)
{
    return readUsbDevices(SystemFiles(root.path())).value_or(std::vector<UsbDevice>());
}

std::vector<std::string> namesOf(const std::vector<Program>& programs)
{
    std::vector<std::string> names;
    for (const Program& program : programs)
        names.push_back(program.name + " " + std::to_string(program.process));
    return names;
}

} // namespace

TEST(MachineTest, MissingFilesTellNothing)
{
    const MadeUpRoot root;
    const Machine machine = readMachine(SystemFiles(root.path()));
    EXPECT_FALSE(machine.usbDevices);
    EXPECT_FALSE(machine.usbMemory);
    EXPECT_GT(machine.receiveBuffer, 0) << "measured with a socket";
    EXPECT_FALSE(machine.receiveBufferSetHere);
    EXPECT_FALSE(machine.withoutUsb) << "/sys is missing as a whole";
    EXPECT_FALSE(machine.udevRule);
    EXPECT_THAT(machine.cameraPrograms, IsEmpty());
    EXPECT_EQ(machine.firewall.manager, "");
    EXPECT_TRUE(machine.interfaces);
}

TEST(MachineTest, LimitsAreRead)
{
    const MadeUpRoot root;
    root.write("/sys/module/usbcore/parameters/usbfs_memory_mb", "16\n");
    root.write("/proc/sys/net/core/rmem_max", "212992\n");
    root.write("/usr/lib/udev/rules.d/70-orvocam-u3v.rules", "");
    const Machine machine = readMachine(SystemFiles(root.path()));
    EXPECT_EQ(machine.usbMemory, 16);
    EXPECT_EQ(machine.receiveBuffer, 212'992);
    EXPECT_TRUE(machine.receiveBufferSetHere);
    EXPECT_TRUE(machine.udevRule);
}

TEST(MachineTest, UserIsInPlugdevByAnyGroup)
{
    const group* const plugdev = ::getgrnam("plugdev");
    if (plugdev == nullptr || ::geteuid() != 0)
        GTEST_SKIP() << "needs root and the group";
    const gid_t wanted = plugdev->gr_gid;
    const gid_t other = wanted + 1;
    // The findings of a process with these groups: 0 or 1; another value if it may not change them.
    const auto inPlugdev = [](gid_t own, const std::vector<gid_t>& more) {
        const MadeUpRoot root;
        const pid_t child = ::fork();
        if (child == 0) {
            if (::setgroups(more.size(), more.data()) != 0 || ::setegid(own) != 0)
                ::_exit(2);
            ::_exit(readMachine(SystemFiles(root.path())).inPlugdev ? 1 : 0);
        }
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    if (inPlugdev(other, {}) == 2)
        GTEST_SKIP() << "this root cannot change its groups";
    EXPECT_EQ(inPlugdev(other, {}), 0);
    EXPECT_EQ(inPlugdev(other, {other}), 0);
    EXPECT_EQ(inPlugdev(wanted, {}), 1);
    EXPECT_EQ(inPlugdev(other, {other, wanted}), 1);
}

TEST(MachineTest, MachineHasNoUsbIfSysHasNoSuchBus)
{
    const MadeUpRoot root;
    root.write("/sys/bus/pci/devices/x", "");
    EXPECT_TRUE(readMachine(SystemFiles(root.path())).withoutUsb);
    root.write("/sys/bus/usb/drivers/x", "");
    EXPECT_FALSE(readMachine(SystemFiles(root.path())).withoutUsb);
    EXPECT_FALSE(readUsbDevices(SystemFiles(root.path()))) << "the devices themselves are not listed";
}

TEST(MachineTest, InterfaceOfADefaultRouteLeadsOut)
{
    const MadeUpRoot root;
    const auto loopbackLeadsOut = [&](const char* routes) {
        root.write("/proc/net/route", std::string("Iface\tDestination\tGateway\n") + routes);
        const auto interfaces = readInterfaces(SystemFiles(root.path())).value_or(std::vector<Interface>());
        return std::any_of(interfaces.begin(), interfaces.end(),
                           [](const Interface& it) { return it.name == "lo" && it.leadsOut; });
    };
    EXPECT_TRUE(loopbackLeadsOut("lo\t00000000\t0105A8C0\n"));
    EXPECT_FALSE(loopbackLeadsOut("lo\t0005A8C0\t00000000\neth0\t00000000\t0105A8C0\n"));
}

TEST(MachineTest, KindOfAnInterfaceIsTold)
{
    const MadeUpRoot root;
    const auto loopback = [&] {
        for (const Interface& interface : readInterfaces(SystemFiles(root.path())).value_or(std::vector<Interface>())) {
            if (interface.name == "lo")
                return interface;
        }
        return Interface();
    };
    EXPECT_FALSE(loopback().wired || loopback().wireless) << "a virtual one";
    root.write("/sys/class/net/lo/device", "");
    EXPECT_TRUE(loopback().wired);
    root.write("/sys/class/net/lo/phy80211", "");
    EXPECT_TRUE(loopback().wireless);
    EXPECT_FALSE(loopback().wired);
}

TEST(MachineTest, NumbersAreWholeLines)
{
    const MadeUpRoot root;
    const SystemFiles files(root.path());
    for (const char* const text : {"", "\n", "12x\n", "99999999999999999999\n", " 5\n"}) {
        root.write("/number", text);
        EXPECT_FALSE(files.number("/number")) << text;
    }
    root.write("/number", "-1\n");
    EXPECT_EQ(files.number("/number"), -1);
}

TEST(MachineTest, UsbDevicesOfTheVisionClassAreFound)
{
    const MadeUpRoot root;
    root.plugInUsbCamera();
    const auto devices = devicesIn(root);
    ASSERT_THAT(devices, SizeIs(1)) << "its second interface is not its control interface";
    EXPECT_EQ(devices[0].maker, "Fake Maker");
    EXPECT_EQ(devices[0].model, "U3V-Fake");
    EXPECT_EQ(devices[0].serial, "U01");
    EXPECT_EQ(devices[0].node, "/dev/bus/usb/002/003");
    EXPECT_EQ(devices[0].speed, 5000);
    EXPECT_TRUE(devices[0].hasNode);
    EXPECT_TRUE(devices[0].allowed);
    EXPECT_EQ(devices[0].driver, "");
    for (const char* const file : {"bInterfaceClass", "bInterfaceSubClass", "bInterfaceProtocol"}) {
        root.plugInUsbCamera();
        root.write(std::string(kDevices) + "2-1:1.0/" + file, "08\n");
        EXPECT_THAT(devicesIn(root), IsEmpty()) << file;
    }
}

TEST(MachineTest, UsbDeviceWithoutTextsOrNodeIsFound)
{
    const MadeUpRoot root;
    root.plugInUsbCamera();
    root.remove(std::string(kDevices) + "2-1");
    root.remove("/dev");
    const auto devices = devicesIn(root);
    ASSERT_THAT(devices, SizeIs(1));
    EXPECT_FALSE(devices[0].hasNode);
    EXPECT_FALSE(devices[0].allowed);
    EXPECT_FALSE(devices[0].speed);
}

TEST(MachineTest, HoldersAreFoundByTheNodeThatTheyHaveOpen)
{
    const MadeUpRoot root;
    root.plugInUsbCamera();
    root.link(std::string(kDevices) + "2-1:1.0/driver", "../../../bus/usb/drivers/usbfs");
    root.startProgram(40, "grabber", 1, "/dev/bus/usb/002/003");
    root.startProgram(41, "bystander", 1, "/dev/bus/usb/002/004");
    root.startProgram(42, "viewer", 1);
    root.startProgram(43, "orvocam-transpo", 42, "/dev/bus/usb/002/003");
    const auto devices = devicesIn(root);
    ASSERT_THAT(devices, SizeIs(1));
    EXPECT_EQ(devices[0].driver, "usbfs");
    EXPECT_THAT(namesOf(devices[0].holders), ElementsAre("grabber 40", "viewer 42"))
        << "of a transport the program that uses it";
}

TEST(MachineTest, ProgramsWithTransportsUseCameras)
{
    const MadeUpRoot root;
    root.startProgram(42, "viewer", 1);
    root.startProgram(43, "orvocam-transpo", 42);
    root.startProgram(44, "orvocam-transpo", 42);
    root.startProgram(45, "other", 42);
    EXPECT_THAT(namesOf(readCameraPrograms(SystemFiles(root.path()))), ElementsAre("viewer 42"));
}

TEST(MachineTest, FirewallManagersAreRecognised)
{
    const MadeUpRoot root;
    const auto manager = [&] { return readFirewall(SystemFiles(root.path())).manager; };
    root.write("/etc/nftables.conf", "chain input { type filter hook input priority 0; policy drop; }\n");
    EXPECT_EQ(manager(), "") << "not enabled";
    root.link("/etc/systemd/system/sysinit.target.wants/nftables.service", "/lib/systemd/system/nftables.service");
    EXPECT_EQ(manager(), "nftables");
    root.startProgram(40, "firewalld", 1);
    EXPECT_EQ(manager(), "firewalld");
    root.write("/etc/ufw/ufw.conf", "# ufw\nENABLED=no\n");
    EXPECT_EQ(manager(), "firewalld");
    root.write("/etc/ufw/ufw.conf", "# ufw\nENABLED=yes\n");
    EXPECT_EQ(manager(), "ufw");
}

TEST(MachineTest, ReceiveBufferErrorsAreThoseOfUdp)
{
    const MadeUpRoot root;
    const SystemFiles files(root.path());
    EXPECT_FALSE(receiveBufferErrors(files));
    root.write("/proc/net/snmp", "Tcp: InErrs RcvbufErrors\nTcp: 1 2\n"
                                 "Udp: InDatagrams NoPorts RcvbufErrors SndbufErrors\nUdp: 5 6 7 8\n"
                                 "UdpLite: RcvbufErrors\nUdpLite: 9\n");
    EXPECT_EQ(receiveBufferErrors(files), 7U);
}

TEST(MachineTest, MasksBecomePrefixes)
{
    EXPECT_EQ(prefixOf(0), 0U);
    EXPECT_EQ(prefixOf(0xff000000), 8U);
    EXPECT_EQ(prefixOf(0xfffffffe), 31U);
    EXPECT_EQ(prefixOf(0xffffffff), 32U);
    EXPECT_FALSE(prefixOf(0xff00ff00));
    EXPECT_FALSE(prefixOf(1));
}

TEST(MachineTest, NetworksAreCompared)
{
    const Address address = {0xc0a80501, 24};
    EXPECT_TRUE(address.sameNetwork(0xc0a805ff));
    EXPECT_FALSE(address.sameNetwork(0xc0a80601));
    EXPECT_TRUE((Address{1, 0}.sameNetwork(0xffffffff)));
    EXPECT_FALSE((Address{1, 32}.sameNetwork(2)));
    EXPECT_EQ(textOf(address), "192.168.5.1/24");
}
