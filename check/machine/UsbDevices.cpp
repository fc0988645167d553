#include "check/machine/UsbDevices.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <set>

namespace check {

namespace {

const std::string kDevices = "/sys/bus/usb/devices/";

/// The kernel truncates "orvocam-transport" to 15 letters.
constexpr const char* kTransport = "orvocam-transpo";

bool isVisionControl(const SystemFiles& files, const std::string& interface)
{
    const std::string folder = kDevices + interface + "/";
    return files.line(folder + "bInterfaceClass") == "ef" && files.line(folder + "bInterfaceSubClass") == "05" &&
           files.line(folder + "bInterfaceProtocol") == "00";
}

std::optional<int> processOf(const std::string& entry)
{
    int process = 0;
    const auto [end, error] = std::from_chars(entry.data(), entry.data() + entry.size(), process);
    if (error != std::errc() || end != entry.data() + entry.size())
        return {};
    return process;
}

std::string folderOf(int process)
{
    return "/proc/" + std::to_string(process) + "/";
}

std::string nameOf(const SystemFiles& files, int process)
{
    return files.line(folderOf(process) + "comm");
}

/// 0 if it is unknown.
int parentOf(const SystemFiles& files, int process)
{
    const std::string status = files.text(folderOf(process) + "status").value_or("");
    constexpr std::string_view kKey = "\nPPid:\t";
    const std::size_t at = status.find(kKey);
    if (at == std::string::npos)
        return 0;
    int parent = 0;
    std::from_chars(status.data() + at + kKey.size(), status.data() + status.size(), parent);
    return parent;
}

/// The process; for a transport the program that uses it, because users know that one.
Program programOf(const SystemFiles& files, int process)
{
    const int parent = nameOf(files, process) == kTransport ? parentOf(files, process) : 0;
    const int known = parent > 0 ? parent : process;
    return {known, nameOf(files, known)};
}

/// The programs that have a USB device open, by its node.
std::map<std::string, std::vector<Program>> readHolders(const SystemFiles& files)
{
    std::map<std::string, std::vector<Program>> holders;
    for (const std::string& entry : files.entries("/proc")) {
        const auto process = processOf(entry);
        if (!process)
            continue;
        const std::string folder = folderOf(*process) + "fd/";
        std::set<std::string> nodes;
        for (const std::string& descriptor : files.entries(folder)) {
            const std::string target = files.linkTarget(folder + descriptor);
            if (target.rfind("/dev/bus/usb/", 0) == 0)
                nodes.insert(target);
        }
        for (const std::string& node : nodes)
            holders[node].push_back(programOf(files, *process));
    }
    return holders;
}

} // namespace

std::optional<std::vector<UsbDevice>> readUsbDevices(const SystemFiles& files)
{
    if (!files.exists(kDevices))
        return {};
    const auto holders = readHolders(files);
    std::vector<UsbDevice> devices;
    for (const std::string& interface : files.entries(kDevices)) {
        // "2-1:1.0" is an interface of the device "2-1".
        const std::size_t colon = interface.find(':');
        if (colon == std::string::npos || !isVisionControl(files, interface))
            continue;
        const std::string folder = kDevices + interface.substr(0, colon) + "/";
        UsbDevice device;
        device.maker = files.line(folder + "manufacturer");
        device.model = files.line(folder + "product");
        device.serial = files.line(folder + "serial");
        device.speed = files.number(folder + "speed");
        char node[64];
        std::snprintf(node, sizeof node, "/dev/bus/usb/%03d/%03d",
                      static_cast<int>(files.number(folder + "busnum").value_or(0)),
                      static_cast<int>(files.number(folder + "devnum").value_or(0)));
        device.node = node;
        device.hasNode = files.exists(device.node);
        device.allowed = files.writable(device.node);
        const std::string driver = files.linkTarget(kDevices + interface + "/driver");
        device.controlInterface = interface;
        device.driver = driver.substr(driver.rfind('/') + 1);
        if (const auto found = holders.find(device.node); found != holders.end())
            device.holders = found->second;
        devices.push_back(device);
    }
    return devices;
}

std::vector<Program> readCameraPrograms(const SystemFiles& files)
{
    std::map<int, Program> programs;
    for (const std::string& entry : files.entries("/proc")) {
        const auto process = processOf(entry);
        if (!process || nameOf(files, *process) != kTransport)
            continue;
        const Program program = programOf(files, *process);
        programs[program.process] = program;
    }
    std::vector<Program> found;
    found.reserve(programs.size());
    for (const auto& [process, program] : programs)
        found.push_back(program);
    return found;
}

} // namespace check
