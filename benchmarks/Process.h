#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

/// What the operating system says of this process and of the machine.
namespace process {

/// Seconds of processor time, user and system, of all threads.
[[nodiscard]] double processorSeconds();

/// Seconds of processor time of the calling thread.
[[nodiscard]] double threadSeconds();

/// Seconds of processor time so far of the threads of this process that have this name, as the kernel keeps it: at most
/// 15 bytes. Threads that have ended do not count.
[[nodiscard]] double secondsOfThreads(const std::string& name);

/// Seconds that the processors of the machine were busy since it started.
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

/// Pages that this process was given or had to wait for.
[[nodiscard]] std::int64_t pageFaults();

/// Resident memory in MiB.
[[nodiscard]] double residentMiB();

[[nodiscard]] std::size_t threads();

} // namespace process
