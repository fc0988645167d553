#include "benchmarks/Process.h"

#include <array>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <numeric>

#include <sys/resource.h>
#include <unistd.h>

namespace process {

namespace {

// From the clocks, because the times of getrusage may have the resolution of ticks.
double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

} // namespace

double processorSeconds()
{
    return secondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

double threadSeconds()
{
    return secondsOf(CLOCK_THREAD_CPUTIME_ID);
}

double secondsOfThreads(const std::string& name)
{
    double seconds = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string found;
        std::ifstream(task.path() / "comm") >> found;
        double nanoseconds = 0;
        std::ifstream(task.path() / "schedstat") >> nanoseconds;
        if (found == name)
            seconds += nanoseconds / 1e9;
    }
    return seconds;
}

double machineSeconds()
{
    // user, nice, system, idle, waiting for disks, interrupts, soft interrupts, taken by the host
    std::array<double, 8> ticks{};
    std::ifstream file("/proc/stat");
    std::string cpu;
    file >> cpu;
    for (double& count : ticks)
        file >> count;
    ticks[3] = ticks[4] = 0;
    return std::accumulate(ticks.begin(), ticks.end(), 0.0) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double OtherPrograms::processors() const
{
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - m_begin;
    return ((machineSeconds() - m_machine) - (processorSeconds() - m_process)) / wall.count();
}

std::int64_t pageFaults()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{usage.ru_minflt} + usage.ru_majflt;
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
