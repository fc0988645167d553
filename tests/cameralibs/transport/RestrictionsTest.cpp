// What a transport can still do, tried in a process that restricts itself as one does.

#include "cameralibs/transport/Restrictions.h"

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/transport/AravisHooks.h"

#include <gmock/gmock.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <fcntl.h>
#include <gio/gio.h>
#include <linux/landlock.h>
#include <linux/netlink.h>
#include <linux/usbdevice_fs.h>
#include <netinet/in.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace cameralibs::transport;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

#define SKIP_WITH_SANITIZER() \
    if (kSanitized)           \
    GTEST_SKIP() << "a sanitizer reads, takes and calls what it likes"

/// Whether `holds` does in a restricted process.
bool restricted(const std::function<bool()>& holds)
{
    const pid_t child = ::fork();
    if (child == 0) {
        restrictProcess();
        ::_exit(holds() ? 0 : 1);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

bool opens(const char* path, int flags)
{
    const int descriptor = ::open(path, flags | O_CLOEXEC, 0600);
    if (descriptor >= 0)
        ::close(descriptor);
    return descriptor >= 0;
}

bool refused(long result, int error)
{
    return result < 0 && errno == error;
}

/// What a restricted process says to its log, where `holds` does in it.
std::string notesWhere(const std::function<bool()>& prepare, const std::function<bool()>& holds)
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe(ends.data()) != 0)
        return "no pipe";
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDERR_FILENO);
        const bool prepared = prepare();
        restrictProcess();
        ::_exit(prepared && holds() ? 0 : 1);
    }
    ::close(ends[1]);
    std::string notes;
    std::array<char, 4096> bytes{};
    ssize_t size = 0;
    while ((size = ::read(ends[0], bytes.data(), bytes.size())) > 0)
        notes.append(bytes.data(), static_cast<std::size_t>(size));
    ::close(ends[0]);
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0 ? notes : "it does not hold, " + notes;
}

/// A kernel that does not know these calls.
bool withoutCalls(std::initializer_list<const char*> names)
{
    void* const filter = seccomp_init(SCMP_ACT_ALLOW);
    bool done = filter != nullptr;
    for (const char* name : names)
        done = done && seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), seccomp_syscall_resolve_name(name), 0) == 0;
    done = done && seccomp_load(filter) == 0;
    seccomp_release(filter);
    return done;
}

/// The call that libseccomp has no rule for.
int callWithoutRule = __NR_SCMP_ERROR;

// Beyond what the lower half of a register tells, of which alone the kernel takes an int.
constexpr long kUpperHalf = 1L << 32;

/// A call that serves no camera.
struct Forbidden {
    const char* what;
    long (*call)();
};

const Forbidden kForbidden[] = {
    // Local services, which act with the user's rights; families that the kernel has beside the network.
    {"local socket", [] { return ::syscall(SYS_socket, AF_UNIX, SOCK_STREAM, 0); }},
    {"local socket, upper half set", [] { return ::syscall(SYS_socket, kUpperHalf | AF_UNIX, SOCK_STREAM, 0); }},
    {"pair of local sockets",
     [] {
         int ends[2];
         return ::syscall(SYS_socketpair, AF_UNIX, SOCK_DGRAM, 0, ends);
     }},
    {"socket of a virtual machine", [] { return ::syscall(SYS_socket, AF_VSOCK, SOCK_STREAM, 0); }},
    {"packet socket", [] { return ::syscall(SYS_socket, AF_PACKET, SOCK_RAW, 0); }},
    {"raw socket", [] { return ::syscall(SYS_socket, AF_INET, SOCK_RAW, IPPROTO_ICMP); }},
    {"netlink for the firewall", [] { return ::syscall(SYS_socket, AF_NETLINK, SOCK_RAW, NETLINK_NETFILTER); }},
    {"TCP", [] { return ::syscall(SYS_socket, AF_INET, SOCK_STREAM, 0); }},
    {"TCP over IPv6", [] { return ::syscall(SYS_socket, AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0); }},
    {"listen", [] { return ::syscall(SYS_listen, -1, 1); }},

    // Other programs and processes.
    {"execveat", [] { return ::syscall(SYS_execveat, -1, "", nullptr, nullptr, 0); }},
    {"vfork", [] { return ::syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, 0); }},
    {"clone3", [] { return ::syscall(SYS_clone3, nullptr, 0); }},
    {"ptrace", [] { return ::syscall(SYS_ptrace, PTRACE_ATTACH, ::getppid(), nullptr, nullptr); }},
    {"process_vm_readv", [] { return ::syscall(SYS_process_vm_readv, ::getppid(), nullptr, 0, nullptr, 0, 0); }},
    {"kill", [] { return ::syscall(SYS_kill, ::getppid(), 0); }},
    {"tkill", [] { return ::syscall(SYS_tkill, ::getppid(), 0); }},
    {"tgkill", [] { return ::syscall(SYS_tgkill, ::getppid(), ::getppid(), 0); }},
    {"tgkill, thread of this process", [] { return ::syscall(SYS_tgkill, ::getppid(), ::getpid(), 0); }},
    {"pidfd_open", [] { return ::syscall(SYS_pidfd_open, ::getppid(), 0); }},
    {"F_SETOWN", [] { return ::syscall(SYS_fcntl, STDERR_FILENO, F_SETOWN, 0); }},
    {"F_SETOWN, upper half set", [] { return ::syscall(SYS_fcntl, STDERR_FILENO, kUpperHalf | F_SETOWN, 0); }},
    {"F_SETOWN_EX", [] { return ::syscall(SYS_fcntl, STDERR_FILENO, F_SETOWN_EX, nullptr); }},
    {"F_SETSIG", [] { return ::syscall(SYS_fcntl, STDERR_FILENO, F_SETSIG, SIGKILL); }},
    {"FIOSETOWN",
     [] {
         const int nobody = 0;
         return ::syscall(SYS_ioctl, ::socket(AF_INET, SOCK_DGRAM, 0), FIOSETOWN, &nobody);
     }},
    {"SIOCSPGRP",
     [] {
         const int nobody = 0;
         return ::syscall(SYS_ioctl, ::socket(AF_INET, SOCK_DGRAM, 0), SIOCSPGRP, &nobody);
     }},
    {"typing into a terminal", [] { return ::syscall(SYS_ioctl, STDERR_FILENO, TIOCSTI, ""); }},
    {"limits of others", [] { return ::syscall(SYS_prlimit64, ::getppid(), RLIMIT_AS, nullptr, nullptr); }},
    {"sched_setscheduler",
     [] {
         const sched_param lowest{};
         return ::syscall(SYS_sched_setscheduler, ::getppid(), SCHED_OTHER, &lowest);
     }},
    {"sched_setaffinity", [] { return ::syscall(SYS_sched_setaffinity, ::getppid(), 0, nullptr); }},
    {"setpriority", [] { return ::syscall(SYS_setpriority, PRIO_PROCESS, ::getppid(), 0); }},
    {"ioprio_set", [] { return ::syscall(SYS_ioprio_set, 1, ::getppid(), 0); }},
    {"migrate_pages", [] { return ::syscall(SYS_migrate_pages, ::getppid(), 0, nullptr, nullptr); }},
    {"move_pages", [] { return ::syscall(SYS_move_pages, ::getppid(), 0, nullptr, nullptr, nullptr, 0); }},
    {"outliving the library", [] { return ::syscall(SYS_prctl, PR_SET_PDEATHSIG, 0, 0, 0, 0); }},

    // What Landlock has no rights for.
    {"chmod", [] { return ::syscall(SYS_fchmodat, AT_FDCWD, "/etc/passwd", 0644); }},
    {"fchmod", [] { return ::syscall(SYS_fchmod, -1, 0644); }},
    {"chown", [] { return ::syscall(SYS_fchownat, AT_FDCWD, "/etc/passwd", -1, -1, 0); }},
    {"fchown", [] { return ::syscall(SYS_fchown, -1, -1, -1); }},
    {"setxattr", [] { return ::syscall(SYS_setxattr, "/etc/passwd", "user.a", "", 0, 0); }},
    {"lsetxattr", [] { return ::syscall(SYS_lsetxattr, "/etc/passwd", "user.a", "", 0, 0); }},
    {"fsetxattr", [] { return ::syscall(SYS_fsetxattr, -1, "user.a", "", 0, 0); }},
    {"removexattr", [] { return ::syscall(SYS_removexattr, "/etc/passwd", "user.a"); }},
    {"lremovexattr", [] { return ::syscall(SYS_lremovexattr, "/etc/passwd", "user.a"); }},
    {"fremovexattr", [] { return ::syscall(SYS_fremovexattr, -1, "user.a"); }},
    {"utimensat", [] { return ::syscall(SYS_utimensat, AT_FDCWD, "/nowhere", nullptr, 0); }},
    {"truncate", [] { return ::syscall(SYS_truncate, "/nowhere", 0); }},
    {"ftruncate", [] { return ::syscall(SYS_ftruncate, -1, 0); }},
    {"mount", [] { return ::syscall(SYS_mount, nullptr, "/nowhere", nullptr, 0, nullptr); }},
    {"chroot", [] { return ::syscall(SYS_chroot, "/nowhere"); }},
    {"unshare", [] { return ::syscall(SYS_unshare, 0); }},

    // Memory that no limit counts, or that outlives the process.
    {"memfd_create", [] { return ::syscall(SYS_memfd_create, "more", 0); }},
    {"shmget", [] { return ::syscall(SYS_shmget, IPC_PRIVATE, 1, 0); }},
    {"shmat", [] { return ::syscall(SYS_shmat, -1, nullptr, 0); }},
    {"msgget", [] { return ::syscall(SYS_msgget, -1, 0); }},
    {"semget", [] { return ::syscall(SYS_semget, -1, 1, 0); }},
    {"mq_open", [] { return ::syscall(SYS_mq_open, "more", O_RDONLY, 0, nullptr); }},

    // Large parts of the kernel.
    {"bpf", [] { return ::syscall(SYS_bpf, -1, nullptr, 0); }},
    {"perf_event_open", [] { return ::syscall(SYS_perf_event_open, nullptr, 0, -1, -1, 0); }},
    {"io_uring_setup", [] { return ::syscall(SYS_io_uring_setup, 0, nullptr); }},
    {"userfaultfd", [] { return ::syscall(SYS_userfaultfd, -1); }},
    {"keyctl", [] { return ::syscall(SYS_keyctl, -1, 0, 0, 0, 0); }},
    {"a call to come", [] { return ::syscall(4000); }},
};

class RestrictedCall : public ::testing::TestWithParam<Forbidden> {};

} // namespace

/// In place of that of libseccomp, for a version of it that has no rule for a call.
int seccomp_rule_add_array(scmp_filter_ctx filter, std::uint32_t action, int call, unsigned count,
                           const scmp_arg_cmp* arguments)
{
    if (call == callWithoutRule)
        return -EFAULT;
    static const auto real =
        reinterpret_cast<decltype(&seccomp_rule_add_array)>(::dlsym(RTLD_NEXT, "seccomp_rule_add_array"));
    return real(filter, action, call, count, arguments);
}

TEST(Restrictions, FilesOfTheUserStayClosed)
{
    SKIP_WITH_SANITIZER();
    for (const char* path : {"/etc/passwd", "/proc/self/environ", "/", "/home"})
        EXPECT_TRUE(restricted([&] { return !opens(path, O_RDONLY); })) << path;
    EXPECT_TRUE(opens("/etc/passwd", O_RDONLY)) << "elsewhere";
}

TEST(Restrictions, NothingIsWritten)
{
    for (const char* path : {"/tmp/transport-was-here", "/dev/shm/transport-was-here"})
        EXPECT_TRUE(restricted([&] { return !opens(path, O_WRONLY | O_CREAT); })) << path;
}

TEST(Restrictions, SystemLibrariesAndDevicesAreRead)
{
    EXPECT_TRUE(restricted([] { return opens("/usr/lib", O_RDONLY | O_DIRECTORY); }));
    EXPECT_TRUE(restricted([] { return opens("/sys", O_RDONLY | O_DIRECTORY); }));
    EXPECT_TRUE(restricted([] { return opens("/dev/null", O_RDWR); }));
}

TEST(Restrictions, NoProgramAndNoProcessIsStarted)
{
    SKIP_WITH_SANITIZER();
    EXPECT_TRUE(restricted([] {
        char* const arguments[] = {const_cast<char*>("true"), nullptr};
        return refused(::execv("/bin/true", arguments), ENOSYS);
    }));
    EXPECT_TRUE(restricted([] { return refused(::fork(), ENOSYS); }));
}

TEST_P(RestrictedCall, IsRefused)
{
    SKIP_WITH_SANITIZER();
    EXPECT_TRUE(restricted([] { return refused(GetParam().call(), ENOSYS); }));
}

INSTANTIATE_TEST_SUITE_P(Restrictions, RestrictedCall, ::testing::ValuesIn(kForbidden), [](const auto& row) {
    std::string name;
    for (const char* letter = row.param.what; *letter != '\0'; ++letter)
        name += std::isalnum(static_cast<unsigned char>(*letter)) != 0 ? *letter : '_';
    return name;
});

TEST(Restrictions, ThreadsAreStarted)
{
    EXPECT_TRUE(restricted([] {
        bool ran = false;
        std::thread([&] { ran = true; }).join();
        return ran;
    }));
}

TEST(Restrictions, NetworkIsReached)
{
    for (const int family : {AF_INET, AF_INET6}) {
        for (const int flags : {0, SOCK_CLOEXEC | SOCK_NONBLOCK}) {
            EXPECT_TRUE(restricted([&] {
                return ::socket(family, SOCK_DGRAM | flags, 0) >= 0 || errno == EAFNOSUPPORT;
            })) << family;
        }
    }
    for (const int protocol : {NETLINK_ROUTE, NETLINK_KOBJECT_UEVENT})
        EXPECT_TRUE(restricted([&] { return ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, protocol) >= 0; }));
}

// The requests reach the kernel, which has nothing behind this descriptor.
TEST(Restrictions, UsbDevicesInterfacesAndDescriptorsAreControlled)
{
    constexpr unsigned long kRequests[] = {
        USBDEVFS_SUBMITURB, USBDEVFS_REAPURB, FIONREAD,     FIONBIO,     FIOCLEX,        FIONCLEX,       TCGETS,
        SIOCGIFNAME,        SIOCGIFCONF,      SIOCGIFFLAGS, SIOCGIFADDR, SIOCGIFBRDADDR, SIOCGIFNETMASK, SIOCGIFMTU,
        SIOCGIFHWADDR,      SIOCGIFINDEX};
    for (const unsigned long request : kRequests)
        EXPECT_TRUE(restricted([&] { return refused(::ioctl(-1, request, nullptr), EBADF); })) << request;
    for (const int command : {F_DUPFD, F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL, F_SETFL, F_GET_SEALS})
        EXPECT_TRUE(restricted([&] { return refused(::fcntl(-1, command, 77), EBADF); })) << command;
}

TEST(Restrictions, ThreadsAreNamedAndLimitsAreRead)
{
    EXPECT_TRUE(restricted([] {
        std::array<char, 16> name{};
        return ::prctl(PR_SET_NAME, "probe") == 0 && ::prctl(PR_GET_NAME, name.data()) == 0 &&
               name.data() == std::string("probe");
    }));
    EXPECT_TRUE(restricted([] {
        rlimit limit{};
        return ::getrlimit(RLIMIT_NOFILE, &limit) == 0;
    }));
}

TEST(Restrictions, EveryThreadMaySignalItself)
{
    EXPECT_TRUE(restricted([] {
        long result = -1;
        std::thread([&] { result = ::syscall(SYS_tgkill, ::getpid(), ::gettid(), 0); }).join();
        return result == 0;
    }));
}

TEST(Restrictions, AbortIsAllowed)
{
    const pid_t child = ::fork();
    if (child == 0) {
        restrictProcess();
        std::abort();
    }
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
    EXPECT_FALSE(WCOREDUMP(status));
}

// Larger buffers than the system allows are what root may have, in any network.
TEST(Restrictions, RootKeepsNoCapabilities)
{
    const auto forces = [] {
        const int size = 4096;
        return ::setsockopt(::socket(AF_INET, SOCK_DGRAM, 0), SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size);
    };
    EXPECT_TRUE(restricted([&] { return refused(forces(), EPERM); }));
}

// --- What the kernel lacks is left out, noted, and takes nothing else along ---

TEST(Restrictions, WithoutLandlockCallsAreStillRefused)
{
    SKIP_WITH_SANITIZER();
    EXPECT_THAT(notesWhere([] { return withoutCalls({"landlock_create_ruleset"}); },
                           [] { return opens("/etc/passwd", O_RDONLY) && refused(::fork(), ENOSYS); }),
                ::testing::StartsWith("<4>The file system is not restricted"));
}

TEST(Restrictions, WithoutSeccompTheFileSystemIsStillClosed)
{
    SKIP_WITH_SANITIZER();
    const auto prepare = [] {
        return withoutCalls({"seccomp", "prctl"}) && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0;
    };
    EXPECT_THAT(notesWhere(prepare, [] { return !opens("/etc/passwd", O_RDONLY) && ::getppid() > 0; }),
                ::testing::HasSubstr("<4>System calls are not restricted"));
    if (::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 6)
        return;
    EXPECT_THAT(notesWhere(prepare, [] { return refused(::kill(::getppid(), 0), EPERM); }),
                ::testing::StartsWith("<4>"));
}

TEST(Restrictions, ARuleThatCannotBeAddedIsLoggedAndTheOthersApply)
{
    SKIP_WITH_SANITIZER();
    const auto prepare = [] {
        callWithoutRule = seccomp_syscall_resolve_name("uname");
        return true;
    };
    utsname name{};
    EXPECT_THAT(
        notesWhere(prepare,
                   [&] { return refused(::uname(&name), ENOSYS) && ::getppid() > 0 && refused(::fork(), ENOSYS); }),
        ::testing::StartsWith("<4>A system call stays forbidden: uname: "));
}

TEST(Restrictions, NothingIsLoggedIfTheKernelSupportsEverything)
{
    EXPECT_EQ(notesWhere([] { return true; }, [] { return true; }), "");
}

TEST(Restrictions, MemoryHasALimitThatBuffersRaise)
{
    SKIP_WITH_SANITIZER();
    // Addresses, which any machine has, however little its memory.
    const auto has = [](std::size_t bytes) {
        void* const begin = ::mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        return begin != MAP_FAILED && ::munmap(begin, bytes) == 0;
    };
    constexpr std::size_t kTwo = 2UL << 30;
    EXPECT_TRUE(restricted([&] { return has(256UL << 20) && !has(kTwo); }));
    EXPECT_TRUE(restricted([&] {
        allowBuffers(kTwo);
        return has(kTwo);
    }));
    // One image of nearly 4 GiB and the spare for the next.
    constexpr std::size_t kMost = (8UL << 30) - 2;
    EXPECT_TRUE(restricted([&] {
        allowBuffers(kMost);
        return has(kMost);
    }));
    // Whatever size is asked for.
    EXPECT_TRUE(restricted([&] {
        allowBuffers(~0UL);
        return !has(10UL << 30);
    }));
}

// Aravis calls this where a camera names a file as its description.
TEST(Restrictions, DescriptionsAreNotReadFromFiles)
{
    char* contents = nullptr;
    gsize size = 1;
    cameralibs::GErrorPointer error;
    EXPECT_FALSE(g_file_get_contents("/etc/passwd", &contents, &size, error.out()));
    EXPECT_EQ(contents, nullptr);
    EXPECT_EQ(size, 0U);
    EXPECT_TRUE(error);
    EXPECT_EQ(refusedFile(), "/etc/passwd");
}
