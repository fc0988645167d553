// How the library starts and ends its transports, in programs of every kind.

#include "tests/cameralibs/devices/transport/Transports.h"

#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <seccomp.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Orvo;

namespace {

class TransportProcessTest : public ::testing::Test {
protected:
    TransportProcessTest()
    {
        usb::unplug();
        usb::plugIn();
    }
    ~TransportProcessTest() override
    {
        (void)Sys_Terminate();
        EXPECT_THAT(transports(), ::testing::IsEmpty());
    }
    TransportProcessTest(const TransportProcessTest&) = delete;
    TransportProcessTest& operator=(const TransportProcessTest&) = delete;

    [[nodiscard]] static bool open(CAM_HANDLE& camera)
    {
        std::uint32_t count = 0;
        return Sys_Initialize(CAM_LAYER_USB3_VISION) == CAM_API_STS_SUCCESS &&
               Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count == 1 &&
               Cam_Open(0, &camera, 0, 1, nullptr, 1) == CAM_API_STS_SUCCESS;
    }

    /// Whether the expectations of `work` hold in a forked process.
    template <class Work> [[nodiscard]] static bool holdsInForkedProcess(const Work& work)
    {
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(60); // ends it if it waits for ever
            work();
            ::_exit(HasFailure() ? 1 : 0);
        }
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return status == 0;
    }

    static void expectWholeSession()
    {
        CAM_HANDLE camera = 0;
        ASSERT_TRUE(open(camera));
        EXPECT_EQ(intOf(camera, "Width"), 320);
        CAM_STRM_HANDLE stream = 0;
        ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        StreamRecorder recorder;
        recorder.attachTo(stream);
        ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(recorder.waitForImages(3));
        EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }
};

/// What a descriptor of another process leads to.
std::vector<std::string> descriptorsOf(pid_t process)
{
    std::vector<std::string> targets;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd", error))
        targets.push_back(std::filesystem::read_symlink(entry.path(), error));
    return targets;
}

std::string contentsOf(pid_t process, const std::string& file)
{
    std::ifstream stream("/proc/" + std::to_string(process) + "/" + file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What the functions below return instead of what the C library's do, unless it is 0.
int openError = 0;
int closeFromError = 0;

template <class Function> Function* original(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

/// Override the functions of the C library, also for the camera library, and call them.
extern "C" __attribute__((visibility("default"))) int
posix_spawn_file_actions_addopen(posix_spawn_file_actions_t* actions, int descriptor, const char* path, int flags,
                                 mode_t mode)
{
    static const auto next =
        original<int(posix_spawn_file_actions_t*, int, const char*, int, mode_t)>("posix_spawn_file_actions_addopen");
    return openError != 0 ? openError : next(actions, descriptor, path, flags, mode);
}

extern "C" __attribute__((visibility("default"))) int
posix_spawn_file_actions_addclosefrom_np(posix_spawn_file_actions_t* actions, int from)
{
    static const auto next =
        original<int(posix_spawn_file_actions_t*, int)>("posix_spawn_file_actions_addclosefrom_np");
    return closeFromError != 0 ? closeFromError : next(actions, from);
}

TEST_F(TransportProcessTest, OneForEachCameraAndNoneWithout)
{
    CAM_HANDLE camera = 0;
    ASSERT_TRUE(open(camera));
    EXPECT_THAT(transports(), ::testing::SizeIs(1));
    EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
    EXPECT_THAT(transports(), ::testing::IsEmpty());
}

TEST_F(TransportProcessTest, SignalHandlingOfTheProgramIsNotInherited)
{
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    const auto ignored = std::signal(SIGPIPE, SIG_IGN);
    CAM_HANDLE camera = 0;
    ASSERT_TRUE(open(camera));
    ASSERT_THAT(transports(), ::testing::SizeIs(1));
    const pid_t transport = transports().front();
    EXPECT_EQ(::getsid(transport), transport) << "it is in the session of a terminal";
    std::ifstream status("/proc/" + std::to_string(transport) + "/status");
    int lines = 0;
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("SigBlk:", 0) != 0 && line.rfind("SigIgn:", 0) != 0)
            continue;
        // The C library ignores a signal that nobody else uses.
        const std::uint64_t signals = std::stoull(line.substr(line.find('\t') + 1), nullptr, 16);
        for (const int signal : {SIGUSR1, SIGPIPE})
            EXPECT_EQ(signals >> static_cast<unsigned>(signal - 1) & 1U, 0U) << line;
        ++lines;
    }
    EXPECT_EQ(lines, 2);
    (void)std::signal(SIGPIPE, ignored);
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &before, nullptr), 0);
}

TEST_F(TransportProcessTest, ProgramMayIgnoreItsChildren)
{
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    ASSERT_NO_FATAL_FAILURE(expectWholeSession());
    EXPECT_THAT(transports(), ::testing::IsEmpty());
    (void)std::signal(SIGCHLD, before);
}

TEST_F(TransportProcessTest, OtherChildrenOfTheProgramAreNotWaitedFor)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(7);
    ASSERT_GT(child, 0);
    ASSERT_NO_FATAL_FAILURE(expectWholeSession());
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST_F(TransportProcessTest, ProgramMayHaveManyDescriptorsAndKeepsThem)
{
    constexpr rlim_t kMany = 1000;
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit enough{std::max(limit.rlim_cur, 2 * kMany), limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &enough), 0);
    std::vector<int> descriptors;
    for (rlim_t i = 0; i < kMany; ++i)
        descriptors.push_back(::open("/dev/zero", O_RDONLY)); // inherited by whatever is started without care
    CAM_HANDLE camera = 0;
    ASSERT_TRUE(open(camera));
    EXPECT_EQ(intOf(camera, "Width"), 320);
    ASSERT_THAT(transports(), ::testing::SizeIs(1));
    EXPECT_THAT(descriptorsOf(transports().front()), ::testing::Not(::testing::Contains("/dev/zero")));
    for (const int descriptor : descriptors)
        EXPECT_EQ(::close(descriptor), 0);
}

TEST_F(TransportProcessTest, ProgramMayHaveClosedItsStandardDescriptors)
{
    const pid_t child = ::fork();
    if (child == 0) {
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::close(standard);
        CAM_HANDLE camera = 0;
        const bool opened = open(camera);
        // What it writes there goes nowhere, to a transport least of all.
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            (void)!::write(standard, "a line\n", 7);
        const bool alive = opened && intOf(camera, "Width") == 320;
        (void)Sys_Terminate();
        ::_exit(alive ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(TransportProcessTest, ProgramMayHaveNoDescriptorLeft)
{
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    ::setenv("ORVO_CAMERA_LOG", "warning", 1); // NOLINT(concurrency-mt-unsafe)
    ::testing::internal::CaptureStderr();
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    std::uint32_t count = 1;
    // From none at all to enough for the channels, but not for giving them to a transport.
    for (rlim_t few = ownDescriptors() - 1; few <= 16; ++few) {
        const rlimit fewer{few, limit.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &fewer), 0);
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        EXPECT_EQ(count, 0U) << few;
    }
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    EXPECT_EQ(count, 1U);
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(log, ::testing::HasSubstr("There are no more descriptors: Too many open files"));
    EXPECT_THAT(log, ::testing::HasSubstr("cannot be started: "));
    EXPECT_THAT(log, ::testing::Not(::testing::HasSubstr("does not run")));
    ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(TransportProcessTest, ProgramMayAllowLargeStacks)
{
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_STACK, &before), 0);
    const rlimit large{std::min<rlim_t>(before.rlim_max, 1UL << 30), before.rlim_max};
    if (large.rlim_cur < 1UL << 30)
        GTEST_SKIP() << "the system does not allow them";
    ASSERT_EQ(::setrlimit(RLIMIT_STACK, &large), 0);
    EXPECT_NO_FATAL_FAILURE(expectWholeSession());
    ASSERT_EQ(::setrlimit(RLIMIT_STACK, &before), 0);
}

// Without this step the transport would inherit all of them.
TEST_F(TransportProcessTest, NothingIsStartedIfItsDescriptorsCannotBePrepared)
{
    std::uint32_t count = 1;
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    for (int* const error : {&openError, &closeFromError}) {
        *error = ENOMEM;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        *error = 0;
        EXPECT_EQ(count, 0U);
    }
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    EXPECT_EQ(count, 1U);
}

// The program may have waited for the child already, so its number may belong to another process.
TEST_F(TransportProcessTest, TransportThatCannotBeWatchedIsNotEndedByItsNumber)
{
    EXPECT_TRUE(holdsInForkedProcess([] {
        scmp_filter_ctx filter = ::seccomp_init(SCMP_ACT_ALLOW);
        const scmp_arg_cmp other{0, SCMP_CMP_NE, static_cast<scmp_datum_t>(::getpid()), 0};
        const scmp_arg_cmp named{0, SCMP_CMP_LE, std::numeric_limits<pid_t>::max(), 0};
        ASSERT_EQ(::seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(ESRCH), SCMP_SYS(pidfd_open), 1, &other), 0);
        ASSERT_EQ(::seccomp_rule_add_array(filter, SCMP_ACT_KILL_PROCESS, SCMP_SYS(kill), 1, &named), 0);
        ASSERT_EQ(::seccomp_rule_add_array(filter, SCMP_ACT_KILL_PROCESS, SCMP_SYS(wait4), 1, &named), 0);
        ASSERT_EQ(::seccomp_load(filter), 0);
        ::seccomp_release(filter);
        std::uint32_t count = 1;
        EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        EXPECT_EQ(count, 0U);
        EXPECT_GT(::waitpid(-1, nullptr, 0), 0) << "it has ended by itself";
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }));
}

TEST_F(TransportProcessTest, ForkedProcessCanUseCameras)
{
    EXPECT_TRUE(holdsInForkedProcess([] { expectWholeSession(); }));
}

TEST_F(TransportProcessTest, ProcessForkedAfterASearchCanUseCameras)
{
    std::uint32_t count = 0;
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(holdsInForkedProcess([] {
        std::uint32_t found = 0;
        CAM_HANDLE camera = 0;
        EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_ALREADY_INITIALIZED);
        EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_INVALID_CAMERA_INDEX) << "nothing is listed";
        EXPECT_EQ(Sys_GetNumOfCameras(&found), CAM_API_STS_SUCCESS);
        EXPECT_EQ(found, 1U);
        EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
        EXPECT_EQ(intOf(camera, "Width"), 320);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        expectWholeSession();
    }));
    CAM_HANDLE camera = 0;
    EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS) << "the list of the parent remains";
}

// Whatever the forked process does, the camera goes on sending images to its parent.
TEST_F(TransportProcessTest, ForkedProcessCannotTouchTheCamerasOfItsParent)
{
    CAM_HANDLE camera = 0;
    CAM_STRM_HANDLE stream = 0;
    ASSERT_TRUE(open(camera));
    ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    StreamRecorder recorder;
    recorder.attachTo(stream);
    ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    const CAM_NODE_HANDLE width = nodeOf(camera, "Width");
    EXPECT_TRUE(holdsInForkedProcess([=] {
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(camera, width, &value), CAM_API_STS_INVALID_CAMERA_HANDLE);
        EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_INVALID_STREAM_HANDLE);
        EXPECT_EQ(Cam_Close(camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_NOT_INITIALIZED);
    }));
    recorder.clear();
    EXPECT_TRUE(recorder.waitForImages(3));
    EXPECT_EQ(intOf(camera, "Width"), 320);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
}

TEST_F(TransportProcessTest, ProcessForkedFromAForkedProcessCanUseCameras)
{
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(holdsInForkedProcess([] {
        EXPECT_TRUE(holdsInForkedProcess([] {
            EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
            expectWholeSession();
        })) << "the library was not used in between";
        std::uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(holdsInForkedProcess([] {
            EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
            expectWholeSession();
        }));
    }));
}

#if !defined(__SANITIZE_THREAD__) // which supports no threads in a process that was forked from one with threads
TEST_F(TransportProcessTest, ProcessForkedInACallbackCanUseAndCloseCameras)
{
    CAM_HANDLE camera = 0;
    CAM_STRM_HANDLE stream = 0;
    ASSERT_TRUE(open(camera));
    ASSERT_EQ(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    StreamRecorder recorder;
    recorder.attachTo(stream);
    std::atomic<int> held{-1};
    recorder.onImage = [&](const StreamRecorder::Image&) {
        if (held < 0) {
            held = holdsInForkedProcess([] {
                std::uint32_t count = 0;
                CAM_HANDLE own = 0;
                EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
                EXPECT_EQ(Cam_Open(0, &own, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
                EXPECT_EQ(Cam_Close(own), CAM_API_STS_SUCCESS);
                EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
            });
        }
    };
    ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(recorder.waitForImages(2));
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(held, 1);
    EXPECT_EQ(Cam_Close(camera), CAM_API_STS_SUCCESS);
}
#endif

// A stopped transport stands for one that was taken over: neither looks at its channels.
TEST_F(TransportProcessTest, EndsWithTheProgramEvenIfThatIsKilled)
{
    for (const bool stopped : {false, true}) {
        int ends[2] = {-1, -1};
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            CAM_HANDLE camera = 0;
            const bool opened = open(camera);
            const std::vector<pid_t> started = transports();
            const pid_t transport = opened && started.size() == 1 ? started.front() : -1;
            (void)!::write(ends[1], &transport, sizeof transport);
            for (;;)
                ::pause();
        }
        pid_t transport = -1;
        ASSERT_EQ(::read(ends[0], &transport, sizeof transport), static_cast<ssize_t>(sizeof transport));
        ASSERT_GT(transport, 0);
        EXPECT_EQ(::kill(transport, stopped ? SIGSTOP : 0), 0);
        ::kill(child, SIGKILL);
        EXPECT_EQ(::waitpid(child, nullptr, 0), child);
        // Its new parent may take its time to wait for it.
        EXPECT_TRUE(becomes([&] { return descriptorsOf(transport).empty(); })) << (stopped ? "stopped" : "");
        ::kill(transport, SIGKILL);
        ::close(ends[0]);
        ::close(ends[1]);
    }
}

TEST_F(TransportProcessTest, OutlivesTheThreadThatOpensTheCamera)
{
    CAM_HANDLE camera = 0;
    std::thread([&] { EXPECT_TRUE(open(camera)); }).join();
    EXPECT_EQ(intOf(camera, "Width"), 320);
}

// What each restriction means is tried in the tests of the restrictions; here, that a transport has them.
TEST_F(TransportProcessTest, IsRestricted)
{
    CAM_HANDLE camera = 0;
    ASSERT_TRUE(open(camera));
    ASSERT_THAT(transports(), ::testing::SizeIs(1));
    const pid_t transport = transports().front();
    std::vector<std::string> rules = {"NoNewPrivs:\t1\n", "CapPrm:\t0000000000000000\n", "CapEff:\t0000000000000000\n"};
    rlimit core{}; // may not be raised where the system's is lower
    ASSERT_EQ(::getrlimit(RLIMIT_CORE, &core), 0);
    const std::string least = core.rlim_max == 0 ? "0" : "1";
    std::vector<std::string> limits = {"Max core file size +" + least + " +" + least + " "};
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    rules.emplace_back("Seccomp:\t2\n");
    limits.emplace_back("Max file size +0 +0 ");
    limits.emplace_back("Max address space +1073741824 ");
#endif
    if (::geteuid() == 0)
        rules.emplace_back("CapBnd:\t0000000000000000\n");
    const std::string status = contentsOf(transport, "status");
    for (const std::string& rule : rules)
        EXPECT_THAT(status, ::testing::HasSubstr(rule));
    for (const std::string& limit : limits)
        EXPECT_THAT(contentsOf(transport, "limits"), ::testing::ContainsRegex(limit));
}

TEST_F(TransportProcessTest, OtherEnvironmentVariablesAreNotInherited)
{
    ::setenv("SESSION_TOKEN", "secret", 1); // NOLINT(concurrency-mt-unsafe)
    CAM_HANDLE camera = 0;
    ASSERT_TRUE(open(camera));
    ::unsetenv("SESSION_TOKEN"); // NOLINT(concurrency-mt-unsafe)
    ASSERT_THAT(transports(), ::testing::SizeIs(1));
    const std::string environment = contentsOf(transports().front(), "environ");
    EXPECT_THAT(environment, ::testing::HasSubstr("LD_PRELOAD=")); // without which it had no camera
    EXPECT_THAT(environment, ::testing::Not(::testing::HasSubstr("SESSION_TOKEN")));
}

TEST_F(TransportProcessTest, WithoutItOnlySimulatedCamerasAreListedAndTheLogSaysWhy)
{
    ::setenv("ORVO_CAMERA_TRANSPORT", "/nowhere/orvocam-transport", 1); // NOLINT(concurrency-mt-unsafe)
    ::setenv("ORVO_CAMERA_LOG", "warning", 1);                          // NOLINT(concurrency-mt-unsafe)
    ::setenv("ORVO_SIMULATED_CAMERAS", "2", 1);                         // NOLINT(concurrency-mt-unsafe)
    ::testing::internal::CaptureStderr();
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION | CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    EXPECT_EQ(count, 2U);
    CAM_HANDLE camera = 0;
    EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                ::testing::HasSubstr("No real cameras are listed: /nowhere/orvocam-transport cannot be started"));
    for (const char* variable : {"ORVO_CAMERA_TRANSPORT", "ORVO_CAMERA_LOG", "ORVO_SIMULATED_CAMERAS"})
        ::unsetenv(variable); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(TransportProcessTest, NothingGrowsOverManySessions)
{
    // The first ones bring what stays: types, caches, the memory of threads.
    for (int i = 0; i < 10; ++i)
        ASSERT_NO_FATAL_FAILURE(expectWholeSession());
    const std::size_t descriptors = ownDescriptors();
    const std::size_t threads = ownThreads();
    const std::size_t memory = ownMemory();
    for (int i = 0; i < 100; ++i)
        ASSERT_NO_FATAL_FAILURE(expectWholeSession());
    EXPECT_EQ(ownDescriptors(), descriptors);
    EXPECT_TRUE(becomes([&] { return ownThreads() == threads; }));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which keep what is freed
    EXPECT_LE(ownMemory(), memory + (1U << 20));
#else
    (void)memory;
#endif
    EXPECT_THAT(transports(), ::testing::IsEmpty());
}
