// The transport dies or hangs at every step of a session. For the program that is a camera that was unplugged: the
// removal signal, status 19, and it can be opened again.

#include "tests/cameralibs/devices/transport/Transports.h"

#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

using namespace Orvo;

namespace {

constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;

/// No step may take longer, however the transport dies: 3 s without an answer, and what a busy machine adds.
constexpr std::chrono::seconds kLimit{20};

/// Closing may take 1 s. Without that limit, it would wait for 3 s for an answer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds kClosingLimit = kLimit;
#else
constexpr std::chrono::seconds kClosingLimit{3};
#endif

/// Times `step`.
CAM_API_STATUS timed(const std::function<CAM_API_STATUS()>& step, std::chrono::seconds limit = kLimit)
{
    const auto begin = std::chrono::steady_clock::now();
    const CAM_API_STATUS status = step();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, limit);
    return status;
}

class TransportDeathTest : public StreamingUsb, public ::testing::WithParamInterface<int> {
protected:
    ~TransportDeathTest() override
    {
        usb::signalAt(usb::Moment::command, 0, 0);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
        EXPECT_THAT(transports(), ::testing::IsEmpty());
    }

    void dieAtCommand(int n) { usb::signalAt(usb::Moment::command, n, GetParam()); }

    /// How many commands of a step are tried: a transport that is stopped keeps each waiting for seconds.
    [[nodiscard]] static int lastCommand() { return GetParam() == SIGSTOP ? 2 : 1000; }

    /// The camera is gone, which the signal told first; it opens again.
    void expectGone()
    {
        EXPECT_TRUE(usb::signalSent());
        EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_SUCCESS);
        std::int64_t value = 0;
        EXPECT_EQ(Nd_GetIntValue(m_camera, 1, &value), kGone);
        expectClosable();
    }
    void expectClosable()
    {
        EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
        expectOpensAgain();
    }
    void expectOpensAgain()
    {
        usb::signalAt(usb::Moment::command, 0, 0);
        ASSERT_EQ(enumerate(), 1U);
        ASSERT_EQ(open(&m_camera, m_signal), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
        EXPECT_EQ(intOf(m_camera, "Width"), 320);
        ASSERT_EQ(openStream(), CAM_API_STS_SUCCESS);
    }
};

/// Collects what a library at level "warning" writes.
class WarningsOnStandardError {
protected:
    WarningsOnStandardError()
    {
        ::setenv("ORVO_CAMERA_LOG", "warning", 1); // NOLINT(concurrency-mt-unsafe)
        ::testing::internal::CaptureStderr();
    }
    ~WarningsOnStandardError() { ::unsetenv("ORVO_CAMERA_LOG"); } // NOLINT(concurrency-mt-unsafe)
};

class TransportDeathLogTest : private WarningsOnStandardError, public OpenUsb {};

} // namespace

INSTANTIATE_TEST_SUITE_P(By, TransportDeathTest, ::testing::Values(SIGKILL, SIGSEGV, SIGSTOP), [](const auto& signal) {
    return std::string(signal.param == SIGKILL ? "Kill" : signal.param == SIGSEGV ? "Crash" : "Stop");
});

TEST_P(TransportDeathTest, WhileListing)
{
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    usb::signalAt(usb::Moment::listing, 1, GetParam());
    std::uint32_t count = 1;
    EXPECT_EQ(timed([&] { return Sys_GetNumOfCameras(&count); }), CAM_API_STS_SUCCESS);
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(usb::signalSent());
    expectOpensAgain();
}

TEST_P(TransportDeathTest, WhileOpening)
{
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    int n = 0;
    CAM_API_STATUS status = kGone;
    while (status == kGone && n < lastCommand()) {
        dieAtCommand(++n);
        status = timed([&] { return open(&m_camera, m_signal); });
        if (status == kGone) {
            EXPECT_TRUE(usb::signalSent()) << n;
        }
    }
    EXPECT_GT(n, 1);
    if (status == CAM_API_STS_SUCCESS) {
        EXPECT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    }
    expectOpensAgain();
}

TEST_P(TransportDeathTest, WhileReading)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    dieAtCommand(1);
    std::int64_t value = 0;
    EXPECT_EQ(timed([&] { return Nd_GetIntValue(m_camera, width, &value); }), kGone);
    expectGone();
}

TEST_P(TransportDeathTest, WhileWriting)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    dieAtCommand(1);
    EXPECT_EQ(timed([&] { return Nd_SetIntValue(m_camera, width, 100, false); }), kGone);
    expectGone();
}

TEST_P(TransportDeathTest, WhileStarting)
{
    int n = 0;
    CAM_API_STATUS status = kGone;
    while (status == kGone && n < lastCommand()) {
        dieAtCommand(++n);
        status = timed([&] { return Strm_Start(m_stream, 8); });
        if (status == kGone)
            expectGone();
    }
    EXPECT_GT(n, 1);
}

// Nobody accesses the camera meanwhile.
TEST_P(TransportDeathTest, InAnImage)
{
    start();
    ASSERT_TRUE(m_recorder.waitForImages(3));
    usb::signalAt(usb::Moment::packet, 2, GetParam());
    EXPECT_EQ(timed([&] { return Sys_WaitForSignal(m_signal, 60'000); }), CAM_API_STS_SUCCESS);
    expectGone();
}

TEST_P(TransportDeathTest, WhileStopping)
{
    for (int n = 1; n <= 3; ++n) {
        start();
        ASSERT_TRUE(m_recorder.waitForImages(3));
        dieAtCommand(n);
        EXPECT_EQ(timed([&] { return Strm_Stop(m_stream); }), CAM_API_STS_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(expectGone()) << n;
    }
}

TEST_P(TransportDeathTest, WhileClosing)
{
    for (int n = 1; n <= 3; ++n) {
        start();
        ASSERT_TRUE(m_recorder.waitForImages(3));
        dieAtCommand(n);
        EXPECT_EQ(timed([&] { return Cam_Close(m_camera); }, kClosingLimit), CAM_API_STS_SUCCESS);
        EXPECT_TRUE(usb::signalSent());
        ASSERT_NO_FATAL_FAILURE(expectOpensAgain()) << n;
    }
}

// Two find out: the thread of the access, and the one that watches the transport.
TEST_F(TransportDeathLogTest, LossIsReportedOnce)
{
    const CAM_NODE_HANDLE width = nodeOf(m_camera, "Width");
    const std::size_t threads = ownThreads();
    usb::signalAt(usb::Moment::command, 1, SIGKILL);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(m_camera, width, &value), kGone);
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (ownThreads() >= threads && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_LT(ownThreads(), threads) << "nobody watches any more";

    const std::string log = ::testing::internal::GetCapturedStderr();
    const std::size_t first = log.find(": lost: ");
    EXPECT_NE(first, std::string::npos) << log;
    EXPECT_THAT(log, ::testing::HasSubstr("The transport process ended by signal 9"));
    EXPECT_EQ(log.find(": lost: ", first + 1), std::string::npos) << log;
}
