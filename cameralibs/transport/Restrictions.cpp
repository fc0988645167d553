#include "cameralibs/transport/Restrictions.h"

#include "cameralibs/transport/Channel.h"
#include "cameralibs/transport/Reporting.h"

#include <seccomp.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>

#include <fcntl.h>
#include <linux/capability.h>
#include <linux/landlock.h>
#include <linux/netlink.h>
#include <malloc.h>
#include <pthread.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace cameralibs::transport {

namespace {

/// Several times what Aravis, the largest description and a few threads take.
constexpr rlim_t kAddressSpace = 1UL << 30;

/// A stream's user buffers total less than 4 GiB, its spare buffers at most as much again.
constexpr rlim_t kMaxBuffers = 8UL << 30;

// A sanitizer maps terabytes, and opens files for its reports.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

void noteFailure(const std::string& what)
{
    note(Severity::warning, what + ": " + std::strerror(errno)); // NOLINT(concurrency-mt-unsafe): the only thread
}

void limit(__rlimit_resource resource, rlim_t soft, rlim_t hard)
{
    // An administrator's own limit may be lower.
    rlimit now{};
    if (::getrlimit(resource, &now) == 0 && now.rlim_max != RLIM_INFINITY) {
        hard = std::min(hard, now.rlim_max);
        soft = std::min(soft, hard);
    }
    const rlimit wanted{soft, hard};
    if (::setrlimit(resource, &wanted) != 0)
        noteFailure("A limit cannot be set");
}

/// The stacks of threads count as address space. By default they have the size that the program allows for its own
/// stack, which may be anything.
void limitStacks()
{
    constexpr std::size_t kStack = 8UL << 20;
    pthread_attr_t attributes;
    std::size_t size = 0;
    if (::pthread_getattr_default_np(&attributes) != 0)
        return;
    if (::pthread_attr_getstacksize(&attributes, &size) == 0 && size > kStack &&
        ::pthread_attr_setstacksize(&attributes, kStack) == 0) {
        errno = ::pthread_setattr_default_np(&attributes);
        if (errno != 0)
            noteFailure("The stacks of threads cannot be limited");
    }
    ::pthread_attr_destroy(&attributes);
}

void limitResources()
{
    // A limit of 1 also stops core dumps that are piped to a program; 0 does not.
    limit(RLIMIT_CORE, 1, 1);
    if (kSanitized)
        return;
    limit(RLIMIT_FSIZE, 0, 0);
    limitStacks();
    // Each arena reserves 64 MiB, and by default there is one for each thread.
    ::mallopt(M_ARENA_MAX, 2); // NOLINT(concurrency-mt-unsafe): there are no other threads yet
    limit(RLIMIT_AS, kAddressSpace, kAddressSpace + kMaxBuffers);
}

void dropCapabilities()
{
    // Fails without capabilities, and then there are none to drop.
    for (unsigned long capability = 0; ::prctl(PR_CAPBSET_READ, capability, 0, 0, 0) >= 0; ++capability)
        (void)::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0);
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> none{};
    if (::syscall(SYS_capset, &header, none.data()) != 0)
        noteFailure("Capabilities cannot be dropped");
}

// --- Landlock -------------------------------------------------------------------------------------------------------

/// The kernel's landlock_ruleset_attr, which has fewer members in older headers. An older kernel accepts it if the
/// members that it does not know are 0.
struct RulesetAttributes {
    std::uint64_t handledFileAccess;
    std::uint64_t handledNetworkAccess;
    std::uint64_t scoped;
};

// The C library has no wrappers for these calls.
int createRuleset(const RulesetAttributes* attributes, std::size_t size, unsigned flags)
{
    return static_cast<int>(::syscall(SYS_landlock_create_ruleset, attributes, size, flags));
}

constexpr std::uint64_t kReadFile = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;

/// Every right of version 1. Each is denied unless a rule grants it.
constexpr std::uint64_t kRightsOfVersion1 = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1U) - 1;
constexpr std::uint64_t kRefer = 1U << 13U;         // version 2
constexpr std::uint64_t kTruncate = 1U << 14U;      // version 3
constexpr std::uint64_t kDeviceControl = 1U << 15U; // version 5

std::uint64_t rightsOfVersion(int version)
{
    return kRightsOfVersion1 | (version >= 2 ? kRefer : 0) | (version >= 3 ? kTruncate : 0) |
           (version >= 5 ? kDeviceControl : 0);
}

/// From version 6 on: abstract local sockets and signals do not reach other processes.
constexpr std::uint64_t kScopes = 3;

struct Grant {
    const char* path;
    std::uint64_t rights;
};

constexpr Grant kGrants[] = {
    {"/usr/lib", kReadFile}, // modules that GLib loads when it needs them
    {"/lib", kReadFile},
    {"/sys", kReadFile}, // the properties of USB devices
    {"/run/udev", kReadFile},
    {"/dev/bus/usb", kReadFile | LANDLOCK_ACCESS_FS_WRITE_FILE | kDeviceControl},
    {"/dev/null", LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE},
    {"/dev/urandom", LANDLOCK_ACCESS_FS_READ_FILE},
};

void grant(int ruleset, const Grant& grant, std::uint64_t known)
{
    const Descriptor path(::open(grant.path, O_PATH | O_CLOEXEC));
    if (!path)
        return; // the path does not exist
    landlock_path_beneath_attr rule{};
    rule.allowed_access = grant.rights & known;
    rule.parent_fd = path.get();
    if (::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) != 0)
        noteFailure(std::string("Landlock rejects the rule for ") + grant.path);
}

void closeFileSystem()
{
    const int version = createRuleset(nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return noteFailure("The file system is not restricted: this kernel has no Landlock");
    const std::uint64_t known = rightsOfVersion(version);
    const RulesetAttributes attributes{known, 0, version >= 6 ? kScopes : 0};
    const Descriptor ruleset(createRuleset(&attributes, sizeof attributes, 0));
    if (!ruleset)
        return noteFailure("The file system is not restricted: Landlock rejects the rules");
    for (const Grant& row : kGrants)
        grant(ruleset.get(), row, known);
    if (kSanitized)
        grant(ruleset.get(), {"/", kReadFile}, known);
    if (::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) != 0)
        noteFailure("The file system is not restricted: Landlock cannot be enabled");
}

// --- System calls ---------------------------------------------------------------------------------------------------

// What the C and C++ libraries, GLib, Aravis, libusb and libudev call. All other calls fail with ENOSYS, as if the
// kernel did not have them, so a library falls back from a newer call to an older one. libseccomp skips calls that this
// architecture does not have.
constexpr const char* kAllowedCalls[] = {
    // Files and descriptors. Landlock determines which files.
    "open",
    "openat",
    "openat2",
    "close",
    "close_range",
    "read",
    "readv",
    "pread64",
    "preadv",
    "preadv2",
    "write",
    "writev",
    "pwrite64",
    "lseek",
    "_llseek",
    "stat",
    "stat64",
    "lstat",
    "lstat64",
    "fstat",
    "fstat64",
    "fstatat64",
    "newfstatat",
    "statx",
    "statfs",
    "statfs64",
    "fstatfs",
    "fstatfs64",
    "access",
    "faccessat",
    "faccessat2",
    "readlink",
    "readlinkat",
    "getdents",
    "getdents64",
    "getcwd",
    "dup",
    "dup2",
    "dup3",
    "pipe",
    "pipe2",
    "eventfd",
    "eventfd2",
    // Waiting and time.
    "poll",
    "ppoll",
    "ppoll_time64",
    "select",
    "_newselect",
    "pselect6",
    "pselect6_time64",
    "epoll_create",
    "epoll_create1",
    "epoll_ctl",
    "epoll_wait",
    "epoll_pwait",
    "epoll_pwait2",
    "timerfd_create",
    "timerfd_gettime",
    "timerfd_gettime64",
    "timerfd_settime",
    "timerfd_settime64",
    "nanosleep",
    "clock_nanosleep",
    "clock_nanosleep_time64",
    "clock_gettime",
    "clock_gettime64",
    "clock_getres",
    "clock_getres_time64",
    "gettimeofday",
    "time",
    "times",
    "restart_syscall",
    // Memory.
    "brk",
    "mmap",
    "mmap2",
    "munmap",
    "mremap",
    "mprotect",
    "madvise",
    "membarrier",
    // Threads, signals and properties of this process.
    "futex",
    "futex_time64",
    "futex_waitv",
    "futex_wait",
    "futex_wake",
    "futex_requeue",
    "set_robust_list",
    "get_robust_list",
    "set_tid_address",
    "rseq",
    "sched_yield",
    "sched_getaffinity",
    "sched_getparam",
    "sched_getscheduler",
    "sched_get_priority_max",
    "sched_get_priority_min",
    "getcpu",
    "rt_sigaction",
    "rt_sigprocmask",
    "rt_sigpending",
    "rt_sigreturn",
    "rt_sigsuspend",
    "rt_sigtimedwait",
    "rt_sigtimedwait_time64",
    "sigaltstack",
    "exit",
    "exit_group",
    "getpid",
    "getppid",
    "gettid",
    "getpgrp",
    "getpgid",
    "getsid",
    "getuid",
    "getuid32",
    "geteuid",
    "geteuid32",
    "getgid",
    "getgid32",
    "getegid",
    "getegid32",
    "getresuid",
    "getresuid32",
    "getresgid",
    "getresgid32",
    "getgroups",
    "getgroups32",
    "getrlimit",
    "ugetrlimit",
    "setrlimit",
    "getrusage",
    "getrandom",
    "sysinfo",
    "uname",
    // The network. The kinds of sockets are restricted below.
    "bind",
    "connect",
    "shutdown",
    "getsockname",
    "getpeername",
    "getsockopt",
    "setsockopt",
    "send",
    "sendto",
    "sendmsg",
    "sendmmsg",
    "recv",
    "recvfrom",
    "recvmsg",
    "recvmmsg",
    "recvmmsg_time64",
};

/// Most arguments are ints: the kernel ignores the upper half of the register.
constexpr std::uint64_t kInt = 0xffffffff;

struct Argument {
    unsigned index;
    std::uint64_t value;
    std::uint64_t mask = kInt;
};

/// The type of a socket without its flags.
constexpr std::uint64_t kSocketType = 0xf;

/// The part of an ioctl command that identifies its driver.
constexpr std::uint64_t kIoctlType = 0xff00;

struct ConditionalCall {
    const char* name = nullptr;
    Argument first;
    Argument second = {0, 0, 0}; ///< ignored if the mask is empty
};

constexpr ConditionalCall kConditionalCalls[] = {
    // No local sockets, because services on this machine act with the user's rights, and no other families.
    {"socket", {0, AF_INET}, {1, SOCK_DGRAM, kSocketType}},
    {"socket", {0, AF_INET6}, {1, SOCK_DGRAM, kSocketType}},
    {"socket", {0, AF_NETLINK}, {2, NETLINK_ROUTE}},          // network interfaces
    {"socket", {0, AF_NETLINK}, {2, NETLINK_KOBJECT_UEVENT}}, // USB devices that come and go
    // Threads, but no processes. A filter cannot see the arguments of clone3, which are in memory; without it the C
    // library uses clone.
    {"clone", {0, CLONE_THREAD, CLONE_THREAD}},
    {"prctl", {0, PR_SET_NAME}},
    {"prctl", {0, PR_GET_NAME}},
    {"prlimit64", {0, 0}}, // of this process
    {"fcntl", {1, F_DUPFD}},
    {"fcntl", {1, F_DUPFD_CLOEXEC}},
    {"fcntl", {1, F_GETFD}},
    {"fcntl", {1, F_SETFD}},
    {"fcntl", {1, F_GETFL}},
    {"fcntl", {1, F_SETFL}},
    {"fcntl", {1, F_GET_SEALS}},
    {"fcntl64", {1, F_DUPFD}},
    {"fcntl64", {1, F_DUPFD_CLOEXEC}},
    {"fcntl64", {1, F_GETFD}},
    {"fcntl64", {1, F_SETFD}},
    {"fcntl64", {1, F_GETFL}},
    {"fcntl64", {1, F_SETFL}},
    {"fcntl64", {1, F_GET_SEALS}},
    {"ioctl", {1, FIONREAD}},
    {"ioctl", {1, FIONBIO}},
    {"ioctl", {1, FIOCLEX}},
    {"ioctl", {1, FIONCLEX}},
    {"ioctl", {1, TCGETS}},
    {"ioctl", {1, SIOCGIFNAME}},
    {"ioctl", {1, SIOCGIFCONF}},
    {"ioctl", {1, SIOCGIFFLAGS}},
    {"ioctl", {1, SIOCGIFADDR}},
    {"ioctl", {1, SIOCGIFBRDADDR}},
    {"ioctl", {1, SIOCGIFNETMASK}},
    {"ioctl", {1, SIOCGIFMTU}},
    {"ioctl", {1, SIOCGIFHWADDR}},
    {"ioctl", {1, SIOCGIFINDEX}},
    {"ioctl", {1, 'U' << 8U, kIoctlType}}, // USB devices
};

struct ReleaseFilter {
    void operator()(void* filter) const noexcept { seccomp_release(filter); }
};

class Filter {
public:
    /// Allows a call with these arguments. If the rule fails, the call stays forbidden.
    void allow(const char* name, std::initializer_list<Argument> arguments)
    {
        const int call = seccomp_syscall_resolve_name(name);
        if (!m_filter || call == __NR_SCMP_ERROR)
            return; // unknown to this version of libseccomp
        std::array<scmp_arg_cmp, 2> compared{};
        unsigned count = 0;
        for (const Argument& argument : arguments) {
            if (argument.mask != 0)
                compared.at(count++) = {argument.index, SCMP_CMP_MASKED_EQ, argument.mask, argument.value};
        }
        const int failed = seccomp_rule_add_array(m_filter.get(), SCMP_ACT_ALLOW, call, count, compared.data());
        errno = -failed;
        if (failed != 0)
            noteFailure(std::string("A system call stays forbidden: ") + name);
    }

    void load() const
    {
        const int failed = m_filter ? seccomp_load(m_filter.get()) : -ENOMEM;
        errno = -failed;
        if (failed != 0)
            noteFailure("System calls are not restricted");
    }

private:
    std::unique_ptr<void, ReleaseFilter> m_filter{seccomp_init(SCMP_ACT_ERRNO(ENOSYS))};
};

void refuseCalls()
{
    // Sanitizers make many other calls.
    if (kSanitized)
        return;
    Filter filter;
    for (const char* name : kAllowedCalls)
        filter.allow(name, {});
    for (const ConditionalCall& row : kConditionalCalls)
        filter.allow(row.name, {row.first, row.second});
    // For abort() and pthread_kill().
    filter.allow("tgkill", {{0, static_cast<std::uint64_t>(::getpid())}});
    filter.load();
}

} // namespace

void restrictProcess()
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        noteFailure("no_new_privs cannot be set");
    dropCapabilities();
    limitResources();
    closeFileSystem();
    refuseCalls();
}

void allowBuffers(std::uint64_t bytes)
{
    if (kSanitized)
        return;
    rlimit now{};
    if (::getrlimit(RLIMIT_AS, &now) != 0)
        return;
    now.rlim_cur = std::min(now.rlim_max, kAddressSpace + std::min<rlim_t>(bytes, kMaxBuffers));
    if (::setrlimit(RLIMIT_AS, &now) != 0)
        noteFailure("The memory limit cannot be raised for the image buffers");
}

} // namespace cameralibs::transport
