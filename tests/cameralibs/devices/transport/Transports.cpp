#include "tests/cameralibs/devices/transport/Transports.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

std::size_t entriesOf(const char* folder)
{
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// What follows a word in the status of a process.
std::string told(const std::string& process, const std::string& word)
{
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(word + ":\t", 0) == 0)
            return line.substr(word.size() + 2);
    }
    return {};
}

} // namespace

// /proc may have the numbers of an outer namespace; those of a process in its own stand last.
std::vector<pid_t> transports()
{
    std::vector<pid_t> found;
    const std::string self = told("self", "Pid");
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        // Names have at most 15 letters.
        if (told(name, "PPid") != self || told(name, "Name") != "orvocam-transpo")
            continue;
        const std::string numbers = told(name, "NSpid");
        found.push_back(std::stoi(numbers.substr(numbers.rfind('\t') + 1)));
    }
    return found;
}

std::size_t ownDescriptors()
{
    return entriesOf("/proc/self/fd");
}

std::size_t ownThreads()
{
    return entriesOf("/proc/self/task");
}

std::size_t ownMemory()
{
    std::ifstream file("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    file >> total >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}
