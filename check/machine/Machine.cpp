#include "check/machine/Machine.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>

#include <grp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace check {

namespace {

constexpr const char* kRuleFolders[] = {"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/local/lib/udev/rules.d",
                                        "/usr/lib/udev/rules.d", "/lib/udev/rules.d"};
constexpr const char* kRule = "/70-orvocam-u3v.rules";

bool isInPlugdev()
{
    // There is only one thread so far.
    const group* const plugdev = ::getgrnam("plugdev"); // NOLINT(concurrency-mt-unsafe)
    const int count = ::getgroups(0, nullptr);
    if (plugdev == nullptr || count < 0)
        return false;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    groups.resize(static_cast<std::size_t>(std::max(0, ::getgroups(count, groups.data()))));
    return ::getegid() == plugdev->gr_gid || std::find(groups.begin(), groups.end(), plugdev->gr_gid) != groups.end();
}

/// Measures the limit: the kernel gives a socket that asks for more just the limit. It applies in all network
/// namespaces, but only the first one has a file with it.
std::optional<std::int64_t> largestReceiveBuffer()
{
    const int descriptor = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return {};
    int size = std::numeric_limits<int>::max() / 2; // the kernel doubles it
    socklen_t length = sizeof size;
    const bool known = ::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof size) == 0 &&
                       ::getsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, &length) == 0;
    ::close(descriptor);
    return known ? std::optional<std::int64_t>(size / 2) : std::nullopt;
}

} // namespace

Machine readMachine(const SystemFiles& files)
{
    Machine machine;
    machine.interfaces = readInterfaces(files);
    machine.usbDevices = readUsbDevices(files);
    machine.withoutUsb = files.exists("/sys/bus") && !files.exists("/sys/bus/usb");
    machine.usbMemory = files.number("/sys/module/usbcore/parameters/usbfs_memory_mb");
    machine.receiveBuffer = files.number("/proc/sys/net/core/rmem_max");
    machine.receiveBufferSetHere = machine.receiveBuffer.has_value();
    if (!machine.receiveBuffer)
        machine.receiveBuffer = largestReceiveBuffer();
    machine.cameraPrograms = readCameraPrograms(files);
    machine.firewall = readFirewall(files);
    machine.udevRule = std::any_of(std::begin(kRuleFolders), std::end(kRuleFolders),
                                   [&](const std::string& folder) { return files.exists(folder + kRule); });
    machine.inPlugdev = isInPlugdev();
    machine.root = ::geteuid() == 0;
    return machine;
}

std::optional<std::uint64_t> receiveBufferErrors(const SystemFiles& files)
{
    // Two lines for each protocol: the names of its counters, and their values in the same order.
    std::istringstream text(files.text("/proc/net/snmp").value_or(""));
    std::string names;
    std::string values;
    while (std::getline(text, names) && std::getline(text, values)) {
        if (names.rfind("Udp:", 0) != 0)
            continue;
        std::istringstream nameWords(names);
        std::istringstream valueWords(values);
        std::string name;
        std::string value;
        while (nameWords >> name && valueWords >> value) {
            if (name != "RcvbufErrors")
                continue;
            std::uint64_t errors = 0;
            std::from_chars(value.data(), value.data() + value.size(), errors);
            return errors;
        }
    }
    return {};
}

} // namespace check
