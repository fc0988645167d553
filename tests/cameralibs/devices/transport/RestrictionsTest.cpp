// What a transport can still do, tried in a process that restricts itself as one does.

#include "cameralibs/transport/Restrictions.h"

#include "cameralibs/transport/ControlTraffic.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <gio/gio.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace cameralibs::transport;

namespace {

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

} // namespace

TEST(Restrictions, FilesOfTheUserStayClosed)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer reads what it likes";
#endif
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
    EXPECT_TRUE(restricted([] {
        char* const arguments[] = {const_cast<char*>("true"), nullptr};
        return refused(::execv("/bin/true", arguments), EPERM);
    }));
    EXPECT_TRUE(restricted([] { return refused(::fork(), EPERM); }));
}

TEST(Restrictions, ThreadsAreStarted)
{
    EXPECT_TRUE(restricted([] {
        bool ran = false;
        std::thread([&] { ran = true; }).join();
        return ran;
    }));
}

TEST(Restrictions, OtherProcessesAreLeftAlone)
{
    EXPECT_TRUE(restricted([] { return refused(::ptrace(PTRACE_ATTACH, ::getppid(), nullptr, nullptr), EPERM); }));
    EXPECT_TRUE(restricted([] { return refused(::kill(::getppid(), 0), EPERM); }));
}

TEST(Restrictions, NetworkYesLocalServicesNo)
{
    EXPECT_TRUE(restricted([] { return ::socket(AF_INET, SOCK_DGRAM, 0) >= 0; }));
    EXPECT_TRUE(restricted([] { return ::socket(AF_NETLINK, SOCK_RAW, 0) >= 0; }));
    EXPECT_TRUE(restricted([] { return refused(::socket(AF_UNIX, SOCK_STREAM, 0), EACCES); }));
}

TEST(Restrictions, MemoryHasALimitThatBuffersRaise)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "no limit with a sanitizer";
#endif
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
    GError* error = nullptr;
    EXPECT_FALSE(g_file_get_contents("/etc/passwd", &contents, &size, &error));
    EXPECT_EQ(contents, nullptr);
    EXPECT_EQ(size, 0U);
    ASSERT_NE(error, nullptr);
    g_error_free(error);
    EXPECT_EQ(refusedFile(), "/etc/passwd");
}
