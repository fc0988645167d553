#include "benchmarks/Process.h"

#include <filesystem>
#include <fstream>

#include <sys/resource.h>
#include <unistd.h>

namespace process {

namespace {

double usedSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

double processorSeconds()
{
    return usedSeconds(RUSAGE_SELF);
}

double threadSeconds()
{
    return usedSeconds(RUSAGE_THREAD);
}

double residentMiB()
{
    std::ifstream file("/proc/self/statm");
    long total = 0;
    long resident = 0;
    file >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

std::size_t threads()
{
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
        ++count;
    return count;
}

} // namespace process
