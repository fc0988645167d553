#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

/// Statistics of the operating system about this process and the machine.
namespace process {

/// Seconds of processor time, user and system, of all threads.
[[nodiscard]] double processorSeconds();

/// Seconds of processor time of the calling thread.
[[nodiscard]] double threadSeconds();

/// Seconds of processor time so far of the threads of this process with this name, which the kernel truncates to 15
/// bytes. Does not include threads that have ended.
[[nodiscard]] double secondsOfThreads(const std::string& name);

/// Seconds for which the processors of the machine have been busy since it was booted.
[[nodiscard]] double machineSeconds();

/// How many processors other programs have used since this was made: 0.5 is half of one.
class OtherPrograms {
public:
    [[nodiscard]] double processors() const;

private:
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    double m_machine = machineSeconds();
    double m_process = processorSeconds();
};

/// With more than this, what misses a goal is measured again or called "busy".
constexpr double kBusy = 0.25;

/// Page faults of this process, minor and major.
[[nodiscard]] std::int64_t pageFaults();

/// Resident memory in MiB.
[[nodiscard]] double residentMiB();

[[nodiscard]] std::size_t threads();

} // namespace process
