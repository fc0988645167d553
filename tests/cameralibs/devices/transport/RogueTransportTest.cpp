// How the library handles a compromised transport. Whatever it sends, each operation ends in time with a valid status,
// nothing is written or read beyond a buffer, and the next camera opens.

#include "tests/cameralibs/devices/transport/Transports.h"

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/StreamRecorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Orvo;

namespace {

constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

/// Delays this process at every packet that it receives, so that transports that never pause have always sent another
/// one.
class SlowReceiver {
public:
    SlowReceiver() { s_slow = true; }
    ~SlowReceiver() { s_slow = false; }
    SlowReceiver(const SlowReceiver&) = delete;
    SlowReceiver& operator=(const SlowReceiver&) = delete;

    static void waitIfSlow()
    {
        if (s_slow)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

private:
    static inline std::atomic<bool> s_slow{false};
};

/// Of another process.
std::size_t threadsOf(pid_t process)
{
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task");
    return static_cast<std::size_t>(std::distance(begin(threads), end(threads)));
}

/// Traces a thread of the process and returns its number. Like a process in an uninterruptible call, this one remains
/// when it is killed, until its tracer acknowledges that the thread has ended.
pid_t keepFromEnding(pid_t process)
{
    pid_t thread = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task"))
        thread = std::max(thread, std::stoi(entry.path().filename()));
    EXPECT_NE(thread, process);
    EXPECT_EQ(::ptrace(PTRACE_SEIZE, thread, nullptr, nullptr), 0);
    return thread;
}

class RogueTransportTest : public ::testing::Test {
protected:
    RogueTransportTest()
    {
        ::setenv("ORVO_CAMERA_TRANSPORT", ROGUE_TRANSPORT, 1); // NOLINT(concurrency-mt-unsafe)
        EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_CreateSignal(&m_signal), CAM_API_STS_SUCCESS);
        m_descriptors = ownDescriptors();
    }
    ~RogueTransportTest() override
    {
        tell("");
        (void)Cam_Close(m_camera);
        EXPECT_EQ(ownDescriptors(), m_descriptors);
        EXPECT_EQ(list(), 1U);
        EXPECT_EQ(open(), CAM_API_STS_SUCCESS) << "an honest one afterwards";
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        EXPECT_THAT(transports(), ::testing::IsEmpty());
        ::unsetenv("ORVO_CAMERA_TRANSPORT"); // NOLINT(concurrency-mt-unsafe)
    }
    RogueTransportTest(const RogueTransportTest&) = delete;
    RogueTransportTest& operator=(const RogueTransportTest&) = delete;

    static void tell(const char* lie) { ::setenv("ORVO_ROGUE_LIE", lie, 1); } // NOLINT(concurrency-mt-unsafe)

    [[nodiscard]] static std::uint32_t list()
    {
        std::uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        return count;
    }
    [[nodiscard]] CAM_API_STATUS open() { return Cam_Open(0, &m_camera, m_signal, 1, nullptr, 1); }

    /// The margin for a busy machine is smaller than the delay if a limit does not hold.
    static void expectWithin(std::chrono::seconds limit, const std::function<void()>& step)
    {
        const auto begin = std::chrono::steady_clock::now();
        step();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, limit + std::chrono::seconds(kSanitized ? 10 : 2));
    }

    void close() const { EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS); }

    /// Closes the camera while a thread waits for an answer that stays pending.
    void expectToCloseInTimeDuringAnAccess() const
    {
        ASSERT_THAT(transports(), ::testing::SizeIs(1));
        const std::size_t threads = threadsOf(transports().front());
        const CAM_NODE_HANDLE node = nodeOf(m_camera, "Width");
        std::thread access([this, node] {
            std::int64_t value = 0;
            EXPECT_NE(Nd_GetIntValue(m_camera, node, &value), CAM_API_STS_SUCCESS);
        });
        EXPECT_TRUE(becomes([&] { return threadsOf(transports().front()) > threads; })) << "the flood has not begun";
        {
            const SlowReceiver slow;
            expectWithin(std::chrono::seconds(1), [this] { close(); });
        }
        access.join();
    }

    [[nodiscard]] bool lost() const { return Sys_WaitForSignal(m_signal, 60'000) == CAM_API_STS_SUCCESS; }

    CAM_SIGNAL_HANDLE m_signal = 0;
    CAM_HANDLE m_camera = 0;
    std::size_t m_descriptors = 0;
};

/// Its reader is slower than a transport that writes.
class SlowStandardError {
public:
    SlowStandardError()
    {
        std::array<int, 2> ends = {-1, -1};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        ::dup2(ends[1], STDERR_FILENO);
        ::close(ends[1]);
        m_reader = std::thread([from = ends[0]] {
            std::array<char, 4096> bytes{};
            while (::read(from, bytes.data(), bytes.size()) > 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            ::close(from);
        });
    }
    ~SlowStandardError()
    {
        ::dup2(m_before, STDERR_FILENO);
        ::close(m_before);
        m_reader.join();
    }
    SlowStandardError(const SlowStandardError&) = delete;
    SlowStandardError& operator=(const SlowStandardError&) = delete;

private:
    const int m_before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    std::thread m_reader;
};

class StandardErrorIn {
public:
    explicit StandardErrorIn(const std::filesystem::path& file)
    {
        const int to = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        ::dup2(to, STDERR_FILENO);
        ::close(to);
    }
    ~StandardErrorIn()
    {
        ::dup2(m_before, STDERR_FILENO);
        ::close(m_before);
    }
    StandardErrorIn(const StandardErrorIn&) = delete;
    StandardErrorIn& operator=(const StandardErrorIn&) = delete;

private:
    const int m_before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
};

} // namespace

/// Overrides the function of the C library, also for the camera library, and calls it.
extern "C" __attribute__((visibility("default"))) ssize_t recvmsg(int socket, msghdr* message, int flags)
{
    static const auto next = reinterpret_cast<decltype(&::recvmsg)>(::dlsym(RTLD_NEXT, "recvmsg"));
    SlowReceiver::waitIfSlow();
    return next(socket, message, flags);
}

TEST_F(RogueTransportTest, InvalidRepliesToHello)
{
    for (const char* lie : {"other build", "ends at once", "short packet", "data without end", "descriptor"}) {
        tell(lie);
        EXPECT_EQ(list(), 0U) << lie;
    }
}

TEST_F(RogueTransportTest, LogTellsWhyATransportIsGone)
{
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_CAMERA_LOG", "warning", 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    m_signal = 0;
    struct Row {
        const char* lie;
        const char* reason;
    };
    for (const Row& row : {Row{"ends at once", "does not run: The transport process ended with status 3"},
                           Row{"crashes at once", "does not run: The transport process ended by signal 11"},
                           Row{"descriptor", "does not run: The transport sent a malformed packet"}}) {
        tell(row.lie);
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(list(), 0U) << row.lie;
        EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::HasSubstr(row.reason)) << row.lie;
    }
    tell("");
    EXPECT_EQ(list(), 1U);
    for (const Row& row :
         {Row{"reports a loss", "It says so"}, Row{"exits", "The transport process ended with status 3"},
          Row{"closes the control channel", "The transport has closed a channel"},
          Row{"short read", "The transport sent a reply that does not match the request"}}) {
        tell(row.lie);
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(open(), CAM_API_STS_SUCCESS) << row.lie;
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), kGone) << row.lie;
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
        EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::HasSubstr(row.reason)) << row.lie;
    }
    ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(RogueTransportTest, Listing)
{
    for (const char* lie : {"unknown kind", "endless list"}) {
        tell(lie);
        EXPECT_LE(list(), 1000U) << lie;
    }
    tell("texts without end");
    ASSERT_EQ(list(), 1U);
    CAM_INFO info = {};
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), CAM_API_STS_SUCCESS);
    EXPECT_EQ(std::string(info.modelName), std::string(63, 'x'));
}

TEST_F(RogueTransportTest, Opening)
{
    ASSERT_EQ(list(), 1U);
    struct Row {
        const char* lie;
        CAM_API_STATUS status;
    };
    for (const Row& row :
         {Row{"strange status", CAM_API_STS_UNSUCCESSFUL}, Row{"huge description", kGone}, Row{"empty parts", kGone},
          Row{"more than said", kGone}, Row{"no description", CAM_API_STS_XML_LOAD_ERR}, Row{"other build", kGone}}) {
        tell(row.lie);
        EXPECT_EQ(open(), row.status) << row.lie;
    }
}

TEST_F(RogueTransportTest, Reading)
{
    ASSERT_EQ(list(), 1U);
    for (const char* lie : {"short read", "long read", "other answer", "endless progress"}) {
        tell(lie);
        ASSERT_EQ(open(), CAM_API_STS_SUCCESS) << lie;
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), kGone) << lie;
        EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    }
    tell("strange error");
    ASSERT_EQ(open(), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), CAM_API_STS_UNSUCCESSFUL);
}

TEST_F(RogueTransportTest, CameraIsLostAfterThreeSecondsWithoutAnAnswer)
{
    ASSERT_EQ(list(), 1U);
    const auto begin = std::chrono::steady_clock::now();
    tell("says nothing");
    EXPECT_EQ(open(), kGone);
    tell("no answer");
    ASSERT_EQ(open(), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), kGone);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(kSanitized ? 60 : 9));
    EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
}

TEST_F(RogueTransportTest, InvalidEventsMakeTheCameraLost)
{
    ASSERT_EQ(list(), 1U);
    for (const char* lie : {"garbage event", "unknown event", "no sign of life"}) {
        tell(lie);
        if (open() != CAM_API_STS_SUCCESS)
            continue; // the violation was detected during opening
        EXPECT_TRUE(lost()) << lie;
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    }
}

TEST_F(RogueTransportTest, InvalidUseOfTheImageChannelMakesTheCameraLost)
{
    ASSERT_EQ(list(), 1U);
    for (const char* lie : {"foreign buffer", "odd offset", "too large", "twice", "unknown packet",
                            "short image packet", "descriptor with an image", "closes the image channel"}) {
        tell(lie);
        ASSERT_EQ(open(), CAM_API_STS_SUCCESS) << lie;
        CAM_STRM_HANDLE stream = 0;
        ASSERT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        (void)Strm_Start(stream, 8);
        EXPECT_TRUE(lost()) << lie;
        EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    }
}

TEST_F(RogueTransportTest, FrameNumbersRiseAndImageStatusesAreValid)
{
    ASSERT_EQ(list(), 1U);
    for (const char* lie : {"", "far ids", "failed with success"}) {
        tell(lie);
        ASSERT_EQ(open(), CAM_API_STS_SUCCESS) << lie;
        CAM_STRM_HANDLE stream = 0;
        ASSERT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
        StreamRecorder recorder;
        recorder.attachTo(stream);
        ASSERT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(recorder.waitForImages(50));
        EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
        const auto images = recorder.images();
        for (std::size_t i = 1; i < images.size(); ++i)
            EXPECT_GT(images[i].info.frameNumber, images[i - 1].info.frameNumber) << lie;
        EXPECT_THAT(recorder.errors(), ::testing::Each(CAM_API_STS_DATA_DISCARDED));
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    }
}

TEST_F(RogueTransportTest, TransportThatReceivesNothingMakesTheCameraLost)
{
    ASSERT_EQ(list(), 1U);
    tell("answers without receiving");
    ASSERT_EQ(open(), CAM_API_STS_SUCCESS);
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    CAM_API_STATUS status = CAM_API_STS_SUCCESS;
    expectWithin(std::chrono::seconds(3), [&] {
        // More requests than the channel holds.
        std::int64_t value = 0;
        for (int i = 0; i < 100'000 && status == CAM_API_STS_SUCCESS; ++i)
            status = Nd_GetIntValue(m_camera, width, &value);
    });
    EXPECT_EQ(status, kGone);
}

TEST_F(RogueTransportTest, ProgressWithoutPauseDoesNotProlongAnAccess)
{
    ASSERT_EQ(list(), 1U);
    tell("flood progress");
    ASSERT_EQ(open(), CAM_API_STS_SUCCESS);
    const SlowReceiver slow;
    std::int64_t value = 0;
    expectWithin(std::chrono::seconds(10),
                 [&] { EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), kGone); });
}

TEST_F(RogueTransportTest, FloodsDoNotProlongClosing)
{
    for (const char* lie : {"flood progress", "flood events"}) {
        ASSERT_EQ(list(), 1U);
        tell(lie);
        ASSERT_EQ(open(), CAM_API_STS_SUCCESS) << lie;
        const SlowReceiver slow;
        expectWithin(std::chrono::seconds(1), [this] { close(); });
    }
}

TEST_F(RogueTransportTest, FloodsDoNotProlongClosingDuringAnAccess)
{
    for (const char* lie : {"flood progress", "flood events"}) {
        ASSERT_EQ(list(), 1U);
        tell(lie);
        ASSERT_EQ(open(), CAM_API_STS_SUCCESS) << lie;
        ASSERT_NO_FATAL_FAILURE(expectToCloseInTimeDuringAnAccess()) << lie;
    }
}

TEST_F(RogueTransportTest, FloodsOfTheLogDoNotProlongClosing)
{
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_CAMERA_LOG", "warning", 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    m_signal = 0;
    EXPECT_EQ(list(), 1U);
    {
        const SlowStandardError slow;
        tell("flood log");
        EXPECT_EQ(open(), CAM_API_STS_SUCCESS);
        expectToCloseInTimeDuringAnAccess();
        tell("leaves its log");
        EXPECT_EQ(open(), CAM_API_STS_SUCCESS);
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), kGone);
        expectWithin(std::chrono::seconds(1), [this] { close(); });
    }
    ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(RogueTransportTest, LinesThatArriveInSingleBytesAreLoggedWhole)
{
    EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_CAMERA_LOG", "warning", 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    m_signal = 0;
    EXPECT_EQ(list(), 1U);
    tell("log in single bytes");
    std::string log;
    const std::filesystem::path file = ::testing::TempDir() + "rogue-" + std::to_string(::getpid());
    {
        const StandardErrorIn redirected(file);
        EXPECT_EQ(open(), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(becomes([&] {
            std::ifstream from(file);
            log.assign(std::istreambuf_iterator<char>(from), {});
            return !log.empty() && log.back() == '\n';
        }));
        close();
    }
    EXPECT_THAT(log, ::testing::EndsWith("warning: Rogue : A line in single bytes\n"));
    std::filesystem::remove(file);
    ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(RogueTransportTest, LossIsDetectedAlthoughAnotherProcessHoldsTheChannels)
{
    ASSERT_EQ(list(), 1U);
    tell("leaves its ends");
    ASSERT_EQ(open(), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    expectWithin(std::chrono::seconds(3),
                 [&] { EXPECT_EQ(Nd_GetIntValue(m_camera, nodeOf(m_camera, "Width"), &value), kGone); });
    expectWithin(std::chrono::seconds(3), [this] { EXPECT_TRUE(lost()); });
}

TEST_F(RogueTransportTest, ProcessThatCannotEndDelaysNothing)
{
    ASSERT_EQ(list(), 1U);
    for (const bool killed : {false, true}) {
        ASSERT_EQ(open(), CAM_API_STS_SUCCESS);
        ASSERT_THAT(transports(), ::testing::SizeIs(1));
        const pid_t transport = transports().front();
        const pid_t thread = keepFromEnding(transport);
        if (killed) {
            ::kill(transport, SIGKILL);
            expectWithin(std::chrono::seconds(3), [this] { EXPECT_TRUE(lost()); });
        }
        expectWithin(std::chrono::seconds(3), [this] { close(); });
        if (!killed)
            ::kill(transport, SIGKILL);
        EXPECT_EQ(::waitpid(thread, nullptr, __WALL), thread);
        EXPECT_TRUE(becomes([this] { return transports().empty() && ownDescriptors() == m_descriptors; }));
    }
}

TEST_F(RogueTransportTest, ManyProcessesThatCannotEndDelayNothing)
{
    tell("many cameras");
    const std::uint32_t count = list();
    ASSERT_EQ(count, 20U);
    tell("");
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_HANDLE camera = 0;
        ASSERT_EQ(Cam_Open(i, &camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    }
    ASSERT_THAT(transports(), ::testing::SizeIs(count));
    std::vector<pid_t> threads;
    for (const pid_t transport : transports())
        threads.push_back(keepFromEnding(transport));
    expectWithin(std::chrono::seconds(1), [] { EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS); });
    for (const pid_t thread : threads)
        EXPECT_EQ(::waitpid(thread, nullptr, __WALL), thread);
    EXPECT_TRUE(becomes([] { return transports().empty(); }));
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    m_signal = 0;
    m_descriptors = ownDescriptors();
}

// Without this rule the time limit would end the search, but only after seconds.
TEST_F(RogueTransportTest, RepeatedCamerasCountTowardsTheLimitOfASearch)
{
    tell("same camera for ever");
    expectWithin(std::chrono::seconds(1), [] { EXPECT_LE(list(), 1U); });
}

TEST_F(RogueTransportTest, SearchEndsInTime)
{
    for (const char* lie : {"says nothing", "slow search"}) {
        tell(lie);
        expectWithin(std::chrono::seconds(4), [] { EXPECT_LE(list(), 1U); });
    }
}

#if !defined(__SANITIZE_THREAD__) // which supports no threads in a process that was forked from one with threads
// The thread that searches holds locks, and does not exist in the forked process.
TEST_F(RogueTransportTest, ProcessForkedDuringASearchCanSearch)
{
    tell("slow search");
    std::thread search([] { (void)list(); });
    EXPECT_TRUE(becomes([] { return !transports().empty(); }));
    tell("");
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(30); // ends it if it waits for ever
        const bool found = list() == 1;
        ::_exit(found && Sys_Terminate() == CAM_API_STS_SUCCESS ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    search.join();
}
#endif

TEST_F(RogueTransportTest, OpeningEndsInTime)
{
    ASSERT_EQ(list(), 1U);
    tell("says nothing");
    expectWithin(std::chrono::seconds(4), [this] { EXPECT_EQ(open(), kGone); });
    tell("slow parts");
    expectWithin(std::chrono::seconds(20), [this] { EXPECT_EQ(open(), kGone); });
}
