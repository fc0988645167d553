#include "cameralibs/devices/transport/Process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace cameralibs {

using transport::aboveStandard;
using transport::Descriptor;

namespace {

/// Above every descriptor number of the child, so that no copy overwrites a descriptor that is still to be copied.
constexpr int kAboveAll = 16;

std::string reasonOf(int error)
{
    return std::system_category().message(error);
}

// sys/pidfd.h lacks C linkage in some versions of the C library.
int openProcess(pid_t pid)
{
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

class FileActions {
public:
    FileActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void give(int descriptor, int as)
    {
        Descriptor& copy = m_copies.at(m_count++);
        copy = Descriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, kAboveAll));
        note(copy ? ::posix_spawn_file_actions_adddup2(&m_actions, copy.get(), as) : errno);
    }
    void openNull(int as, int mode) { note(::posix_spawn_file_actions_addopen(&m_actions, as, "/dev/null", mode, 0)); }
    void closeFrom(int descriptor) { note(::posix_spawn_file_actions_addclosefrom_np(&m_actions, descriptor)); }
    /// The first failure; 0 if none.
    [[nodiscard]] int error() const { return m_error; }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    void note(int error)
    {
        if (m_error == 0)
            m_error = error;
    }

    posix_spawn_file_actions_t m_actions{};
    std::array<Descriptor, 3> m_copies;
    std::size_t m_count = 0;
    int m_error = 0;
};

class Attributes {
public:
    Attributes()
    {
        sigset_t all;
        sigset_t none;
        ::sigfillset(&all);
        ::sigemptyset(&none);
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
    }
    ~Attributes() { ::posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    [[nodiscard]] const posix_spawnattr_t* get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

/// A transport gets the environment variables with these prefixes: those of the loader, the locale, this library and
/// the libraries that it uses. Others may hold secrets, which a compromised transport must not see.
constexpr std::string_view kPassedOn[] = {
    "LD_",     "LANG",         "LC_",          "ORVO_",        "ARV_",          "G_",
    "LIBUSB_", "ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS",
};

std::vector<char*> environmentPassedOn()
{
    std::vector<char*> passedOn;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const auto begins = [&](std::string_view name) {
            return std::strncmp(*variable, name.data(), name.size()) == 0;
        };
        if (std::any_of(std::begin(kPassedOn), std::end(kPassedOn), begins))
            passedOn.push_back(*variable);
    }
    passedOn.push_back(nullptr);
    return passedOn;
}

/// Waits for the end of the process (-1: without limit).
bool ends(const Descriptor& process, int milliseconds)
{
    pollfd end{process.get(), POLLIN, 0};
    int ready = -1;
    do {
        ready = ::poll(&end, 1, milliseconds);
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

/// The same, and reaps it. Empty if it still runs. The result has only zeros if SIGCHLD is ignored or the program has
/// already waited for all its children.
std::optional<siginfo_t> waitFor(const Descriptor& process, int milliseconds)
{
    if (!ends(process, milliseconds))
        return {};
    siginfo_t how{};
    (void)::waitid(P_PIDFD, static_cast<id_t>(process.get()), &how, WEXITED | WNOHANG);
    return how;
}

/// Where this library lies. Noted when it is loaded: later a path relative to the current folder, such as one that
/// comes from a relative LD_LIBRARY_PATH, may lead elsewhere.
std::array<char, PATH_MAX> s_library{};

__attribute__((constructor)) void noteLibrary()
{
    Dl_info info{};
    if (::dladdr(s_library.data(), &info) == 0 || info.dli_fname == nullptr ||
        ::realpath(info.dli_fname, s_library.data()) == nullptr)
        s_library.front() = '\0';
}

} // namespace

Process::~Process()
{
    kill();
    (void)wait();
    if (!m_handle || m_ended)
        return;
    try {
        std::thread([handle = std::move(m_handle)] { (void)waitFor(handle, -1); }).detach();
    } catch (const std::exception&) {
        // There are no threads or no memory. The process remains a zombie until the program ends.
    }
}

std::string Process::start(const std::string& program, const Ends& ends)
{
    FileActions actions;
    actions.openNull(STDIN_FILENO, O_RDONLY);
    actions.openNull(STDOUT_FILENO, O_WRONLY);
    if (ends.errors) {
        actions.give(ends.errors.get(), STDERR_FILENO);
    } else {
        actions.openNull(STDERR_FILENO, O_WRONLY);
    }
    actions.give(ends.control.get(), transport::kControlDescriptor);
    actions.give(ends.events.get(), transport::kEventDescriptor);
    actions.closeFrom(transport::kEventDescriptor + 1);
    if (actions.error() != 0)
        return program + " cannot be started: " + reasonOf(actions.error());
    const Attributes attributes;
    std::string name = program;
    std::array<char*, 2> arguments = {name.data(), nullptr};
    const std::vector<char*> environment = environmentPassedOn();
    // Tried first, so that no process is started which cannot be watched.
    if (!aboveStandard(Descriptor(openProcess(::getpid()))))
        return program + " cannot be watched: " + reasonOf(errno);
    pid_t number = -1;
    const int error =
        ::posix_spawn(&number, name.c_str(), actions.get(), attributes.get(), arguments.data(), environment.data());
    if (error != 0)
        return program + " cannot be started: " + reasonOf(error);
    m_handle = aboveStandard(Descriptor(openProcess(number)));
    // The child is not killed or waited for by its number: where the program ignores SIGCHLD or waits for all its
    // children, that may belong to another process by now. The child ends because its channels are closed.
    if (!m_handle)
        return program + " cannot be watched: " + reasonOf(errno);
    return {};
}

void Process::kill() const noexcept
{
    if (m_handle)
        (void)::syscall(SYS_pidfd_send_signal, m_handle.get(), SIGKILL, nullptr, 0);
}

bool Process::endsSoon() const noexcept
{
    return ends(m_handle, static_cast<int>(kDying.count()));
}

std::string Process::wait()
{
    if (!m_handle || m_ended)
        return {};
    const auto how = waitFor(m_handle, std::exchange(m_waited, true) ? 0 : static_cast<int>(kDying.count()));
    m_ended = how.has_value();
    if (how && (how->si_code == CLD_KILLED || how->si_code == CLD_DUMPED))
        return "ended by signal " + std::to_string(how->si_status);
    if (how && how->si_code == CLD_EXITED && how->si_status != 0)
        return "ended with status " + std::to_string(how->si_status);
    return {};
}

std::string transportProgram()
{
    if (const char* const forTests = ::secure_getenv("ORVO_CAMERA_TRANSPORT"); forTests != nullptr)
        return forTests;
    const std::string library = s_library.data();
    const std::string folder = library.substr(0, library.rfind('/'));
    // From <prefix>/lib in the build tree, or from where libraries are installed.
    for (const char* const libexec : {ORVO_LIBEXEC_FROM_LIBRARY, "../libexec"}) {
        std::string candidate = folder + "/" + libexec + "/orvocam-transport";
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return "/usr/libexec/orvocam-transport";
}

} // namespace cameralibs
