// Linked into programs that may not write files, or that are killed: the transport, and the test of its restrictions.
// gcov writes its counters when a program exits. Here they are in memory that is shared with a process of its own,
// which writes them once the program has ended, however that happened. Forked children count in the same memory.

#include <cstdlib>
#include <cstring>
#include <memory>

#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
extern char coverage_counters_begin[]; // from counters.ld
extern char coverage_counters_end[];
void __gcov_dump(); // NOLINT(bugprone-reserved-identifier): of libgcov
}

namespace {

void shareCounters()
{
    char* const counters = coverage_counters_begin;
    const auto size = static_cast<std::size_t>(coverage_counters_end - counters);
    const auto counted = std::make_unique<char[]>(size);
    std::memcpy(counted.get(), counters, size);
    if (::mmap(counters, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == MAP_FAILED)
        std::abort();
    std::memcpy(counters, counted.get(), size);
}

/// Replaces gcov's writing at exit, which would count everything twice.
void exitWithoutWriting(int status, void* /*unused*/)
{
    ::_exit(status);
}

[[gnu::constructor]] void keepCounts()
{
    shareCounters();
    const pid_t counted = ::getpid();
    if (::fork() != 0) {
        ::on_exit(&exitWithoutWriting, nullptr);
        return;
    }
    ::close_range(0, ~0U, 0); // so that channels and pipes end with the program
    pollfd end{static_cast<int>(::syscall(SYS_pidfd_open, counted, 0)), POLLIN, 0};
    if (end.fd >= 0) // else it has ended already
        (void)::poll(&end, 1, -1);
    __gcov_dump();
    ::_exit(0);
}

} // namespace
