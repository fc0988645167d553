#include "cameralibs/transport/Restrictions.h"

#include "cameralibs/transport/Channel.h"
#include "cameralibs/transport/Farewell.h"

#include <seccomp.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

#include <fcntl.h>
#include <linux/landlock.h>
#include <malloc.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace cameralibs::transport {

namespace {

/// What Aravis, a description of the largest size and a few threads take, several times over.
constexpr rlim_t kAddressSpace = 1UL << 30;

/// No stream has more buffers than this: less than 4 GiB that its user holds, and at least one spare, which may be as
/// large as those together.
constexpr rlim_t kMaxBuffers = 8UL << 30;

// A sanitizer maps terabytes, and looks into files when it reports.
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

void limitResources()
{
    limit(RLIMIT_CORE, 0, 0);
    if (kSanitized)
        return;
    // Each arena reserves 64 MiB, and there is one for each thread otherwise.
    ::mallopt(M_ARENA_MAX, 2);
    limit(RLIMIT_AS, kAddressSpace, kAddressSpace + kMaxBuffers);
}

// --- Landlock -------------------------------------------------------------------------------------------------------

// The C library has no functions for it.
int createRuleset(const landlock_ruleset_attr* attributes, std::size_t size, unsigned flags)
{
    return static_cast<int>(::syscall(SYS_landlock_create_ruleset, attributes, size, flags));
}

constexpr std::uint64_t kReadFile = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;

/// Every right that version 1 knows: each is refused where no rule grants it.
constexpr std::uint64_t kRightsOfVersion1 = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1U) - 1;
constexpr std::uint64_t kRefer = 1U << 13U;         // version 2
constexpr std::uint64_t kTruncate = 1U << 14U;      // version 3
constexpr std::uint64_t kDeviceControl = 1U << 15U; // version 5

std::uint64_t rightsOfVersion(int version)
{
    return kRightsOfVersion1 | (version >= 2 ? kRefer : 0) | (version >= 3 ? kTruncate : 0) |
           (version >= 5 ? kDeviceControl : 0);
}

struct Grant {
    const char* path;
    std::uint64_t rights;
};

constexpr Grant kGrants[] = {
    {"/usr/lib", kReadFile}, // modules that GLib loads when it needs them
    {"/lib", kReadFile},
    {"/sys", kReadFile}, // where USB devices are told
    {"/run/udev", kReadFile},
    {"/dev/bus/usb", kReadFile | LANDLOCK_ACCESS_FS_WRITE_FILE | kDeviceControl},
    {"/dev/null", LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE},
    {"/dev/urandom", LANDLOCK_ACCESS_FS_READ_FILE},
};

void grant(int ruleset, const Grant& grant, std::uint64_t known)
{
    const Descriptor path(::open(grant.path, O_PATH | O_CLOEXEC));
    if (!path)
        return; // there is nothing to reach
    landlock_path_beneath_attr rule{};
    rule.allowed_access = grant.rights & known;
    rule.parent_fd = path.get();
    if (::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) != 0)
        noteFailure(std::string("Landlock refuses the rule for ") + grant.path);
}

void closeFileSystem()
{
    const int version = createRuleset(nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return noteFailure("The file system stays open, this kernel has no Landlock");
    const std::uint64_t known = rightsOfVersion(version);
    landlock_ruleset_attr attributes{};
    attributes.handled_access_fs = known;
    const Descriptor ruleset(createRuleset(&attributes, sizeof attributes.handled_access_fs, 0));
    if (!ruleset)
        return noteFailure("The file system stays open, Landlock refuses the rules");
    for (const Grant& row : kGrants)
        grant(ruleset.get(), row, known);
    if (kSanitized)
        grant(ruleset.get(), {"/", kReadFile}, known);
    if (::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) != 0)
        noteFailure("The file system stays open, Landlock cannot be switched on");
}

// --- System calls ---------------------------------------------------------------------------------------------------

// Other programs and processes, the machine's set-up, and what large parts of the kernel stand open through.
constexpr const char* kRefusedCalls[] = {
    "execve",
    "execveat",
    "fork",
    "vfork",
    "ptrace",
    "process_vm_readv",
    "process_vm_writev",
    "process_madvise",
    "kill",
    "tkill",
    "pidfd_send_signal",
    "pidfd_getfd",
    "rt_sigqueueinfo",
    "rt_tgsigqueueinfo",
    "kcmp",
    "mount",
    "umount2",
    "move_mount",
    "open_tree",
    "fsopen",
    "fsconfig",
    "fsmount",
    "fspick",
    "mount_setattr",
    "pivot_root",
    "chroot",
    "setns",
    "unshare",
    "init_module",
    "finit_module",
    "delete_module",
    "kexec_load",
    "kexec_file_load",
    "reboot",
    "swapon",
    "swapoff",
    "acct",
    "quotactl",
    "quotactl_fd",
    "syslog",
    "sethostname",
    "setdomainname",
    "settimeofday",
    "clock_settime",
    "clock_adjtime",
    "adjtimex",
    "iopl",
    "ioperm",
    "bpf",
    "perf_event_open",
    "userfaultfd",
    "keyctl",
    "add_key",
    "request_key",
    "io_uring_setup",
    "io_uring_enter",
    "io_uring_register",
    "name_to_handle_at",
    "open_by_handle_at",
    "fanotify_init",
    "lookup_dcookie",
    "nfsservctl",
    "setuid",
    "setgid",
    "setreuid",
    "setregid",
    "setresuid",
    "setresgid",
    "setgroups",
    "setfsuid",
    "setfsgid",
};

struct ReleaseFilter {
    void operator()(void* filter) const noexcept { seccomp_release(filter); }
};

void refuseCalls()
{
    const std::unique_ptr<void, ReleaseFilter> filter(seccomp_init(SCMP_ACT_ALLOW));
    int failed = filter == nullptr ? -ENOMEM : 0;
    const auto refuse = [&](const char* name, int error, const scmp_arg_cmp* arguments, unsigned count) {
        const int call = seccomp_syscall_resolve_name(name);
        if (failed != 0 || call == __NR_SCMP_ERROR)
            return; // one that this version of libseccomp has not heard of
        failed =
            seccomp_rule_add_array(filter.get(), SCMP_ACT_ERRNO(static_cast<unsigned>(error)), call, count, arguments);
    };
    for (const char* name : kRefusedCalls)
        refuse(name, EPERM, nullptr, 0);
    // Threads yes, processes no. What clone3 is asked for lies in memory, where no filter sees it; without it the C
    // library takes clone.
    const scmp_arg_cmp process = {0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0};
    refuse("clone", EPERM, &process, 1);
    refuse("clone3", ENOSYS, nullptr, 0);
    // Nor any service of this machine: it would act with the user's rights.
    const scmp_arg_cmp local = {0, SCMP_CMP_EQ, AF_UNIX, 0};
    refuse("socket", EACCES, &local, 1);
    if (failed == 0)
        failed = seccomp_load(filter.get());
    errno = -failed;
    if (failed != 0)
        noteFailure("No system call is refused");
}

} // namespace

void restrictProcess()
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        noteFailure("New privileges cannot be given up");
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
        noteFailure("There is no room for the image buffers");
}

} // namespace cameralibs::transport
