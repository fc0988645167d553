// The transport takes nothing from the library for granted either. Here it is asked by a test.

#include "cameralibs/transport/Channel.h"

#include "camera/OrvoCamApi.h"
#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/transport/usb/FakeUsb.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace cameralibs::transport;

namespace {

/// Above the numbers that the transport finds its ends under.
constexpr int kAboveAll = 16;

constexpr std::uint64_t kMemorySize = 1U << 20;

Clock::time_point soon()
{
    return Clock::now() + std::chrono::seconds(30);
}

class TransportRequestsTest : public ::testing::Test {
protected:
    TransportRequestsTest()
    {
        usb::unplug();
        usb::plugIn();
        begin();
    }
    ~TransportRequestsTest() override { end(); }
    TransportRequestsTest(const TransportRequestsTest&) = delete;
    TransportRequestsTest& operator=(const TransportRequestsTest&) = delete;

    /// Starts another transport and greets it as the library does.
    void begin()
    {
        start();
        ASSERT_TRUE(m_control.send(Kind::hello, helloOf(ORVO_TRANSPORT_BUILD)));
        ASSERT_NE(reply(Kind::hello), nullptr);
    }

    void start()
    {
        end();
        std::array<int, 2> control = {-1, -1};
        std::array<int, 2> events = {-1, -1};
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, control.data()), 0);
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, events.data()), 0);
        m_process = ::fork();
        if (m_process == 0) {
            const int controlCopy = ::fcntl(control[1], F_DUPFD_CLOEXEC, kAboveAll);
            const int eventsCopy = ::fcntl(events[1], F_DUPFD_CLOEXEC, kAboveAll);
            ::dup2(controlCopy, kControlDescriptor);
            ::dup2(eventsCopy, kEventDescriptor);
            ::execl(TRANSPORT, TRANSPORT, nullptr);
            ::_exit(127);
        }
        ASSERT_GT(m_process, 0);
        m_control = Channel(Descriptor(control[0]));
        m_events = Channel(Descriptor(events[0]));
        ::close(control[1]);
        ::close(events[1]);
    }

    [[nodiscard]] static Hello helloOf(const char* build)
    {
        Hello hello{};
        setText(hello.build, build);
        return hello;
    }

    /// Ends it where it has not ended by itself.
    void end()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
        m_process = -1;
    }

    [[nodiscard]] bool ends()
    {
        const bool ended = becomes([this] { return ::waitpid(m_process, nullptr, WNOHANG) == m_process; });
        if (ended)
            m_process = -1;
        return ended;
    }

    /// Null where there is no such reply.
    [[nodiscard]] const Packet* reply(Kind kind)
    {
        do {
            if (m_control.receive(m_packet, soon()) != Received::packet)
                return nullptr;
        } while (m_packet.kind() == Kind::progress);
        return m_packet.kind() == kind ? &m_packet : nullptr;
    }

    /// The status of what was asked; nothing where there is no answer.
    [[nodiscard]] std::optional<std::uint32_t> status()
    {
        const Packet* const packet = reply(Kind::done);
        const auto done = packet == nullptr ? std::nullopt : packet->body<Done>(Kind::done);
        return done ? std::optional(done->status) : std::nullopt;
    }

    void open()
    {
        ASSERT_TRUE(m_control.send(Kind::enumerate, Enumerate{1, 0}));
        const Packet* const packet = reply(Kind::listed);
        ASSERT_NE(packet, nullptr);
        const auto listed = packet->body<Listed>(Kind::listed);
        ASSERT_TRUE(listed);
        ASSERT_EQ(status(), 0U);
        m_open.link = listed->link;
        setText(m_open.name, textOf(listed->id));
        ASSERT_TRUE(m_control.send(Kind::open, m_open));
        ASSERT_EQ(status(), 0U);
    }

    [[nodiscard]] std::optional<std::uint32_t> openSource(int memory, std::uint64_t told = kMemorySize)
    {
        return m_control.send(Kind::openSource, OpenSource{told}, {}, memory) ? status() : std::nullopt;
    }

    pid_t m_process = -1;
    Channel m_control;
    Channel m_events;
    Packet m_packet;
    Open m_open{};
};

Descriptor makeMemory(int seals)
{
    Descriptor memory(::memfd_create("test", MFD_ALLOW_SEALING));
    EXPECT_EQ(::ftruncate(memory.get(), kMemorySize), 0);
    EXPECT_EQ(::fcntl(memory.get(), F_ADD_SEALS, seals), 0);
    return memory;
}

} // namespace

TEST_F(TransportRequestsTest, EndsOnInvalidRequests)
{
    const auto sendRaw = [this](const void* bytes, std::size_t size) {
        ASSERT_GE(::send(m_control.descriptor(), bytes, size, MSG_NOSIGNAL), 0);
    };
    const std::function<void()> requests[] = {
        [&] { sendRaw("abc", 3); },
        [&] {
            const Header header{Kind::hello, 0xffffffff};
            sendRaw(&header, sizeof header);
        },
        [&] { ASSERT_TRUE(m_control.send(static_cast<Kind>(77))); },
        [&] { ASSERT_TRUE(m_control.send(Kind::hello)); }, // of another length
        [&] { ASSERT_TRUE(m_control.send(Kind::alive)); },
    };
    for (const auto& request : requests) {
        begin();
        request();
        EXPECT_TRUE(ends()) << &request - requests;
    }
}

TEST_F(TransportRequestsTest, EndsAfterTellingItsBuildToALibraryOfAnother)
{
    start();
    ASSERT_TRUE(m_control.send(Kind::hello, helloOf("0.0.0")));
    const Packet* const packet = reply(Kind::hello);
    ASSERT_NE(packet, nullptr);
    const auto theirs = packet->body<Hello>(Kind::hello);
    ASSERT_TRUE(theirs);
    EXPECT_EQ(textOf(theirs->build), ORVO_TRANSPORT_BUILD);
    EXPECT_TRUE(ends());
}

TEST_F(TransportRequestsTest, AnyLogLevelIsAccepted)
{
    for (const std::uint32_t level : {3U, 4U, 5U, 0x7fffffffU, 0xffffffffU}) {
        start();
        Hello hello = helloOf(ORVO_TRANSPORT_BUILD);
        hello.log = level;
        ASSERT_TRUE(m_control.send(Kind::hello, hello));
        EXPECT_NE(reply(Kind::hello), nullptr) << level;
        ASSERT_TRUE(m_control.send(Kind::enumerate, Enumerate{0, 0}));
        EXPECT_EQ(status(), 0U) << level;
    }
}

TEST_F(TransportRequestsTest, EndsOnRequestsBeforeAHello)
{
    const std::function<bool()> requests[] = {
        [this] {
            return m_control.send(Kind::enumerate, Enumerate{0, 0});
        },
        [this] { return m_control.send(Kind::open, m_open); },
    };
    for (const auto& request : requests) {
        start();
        ASSERT_TRUE(request());
        EXPECT_EQ(status(), std::nullopt) << &request - requests;
        EXPECT_TRUE(ends()) << &request - requests;
    }
}

TEST_F(TransportRequestsTest, OnlyTheKindsAskedForAreListed)
{
    ASSERT_TRUE(m_control.send(Kind::enumerate, Enumerate{0, 0}));
    EXPECT_EQ(status(), 0U) << "without a camera before it";
    ASSERT_TRUE(m_control.send(Kind::enumerate, Enumerate{1, 0}));
    const Packet* const packet = reply(Kind::listed);
    ASSERT_NE(packet, nullptr);
    const auto listed = packet->body<Listed>(Kind::listed);
    ASSERT_TRUE(listed);
    EXPECT_EQ(listed->link, Orvo::CAM_LINK_USB3_VISION);
    EXPECT_EQ(status(), 0U);
}

TEST_F(TransportRequestsTest, EndsOnRequestsThatNeedAnOpenCamera)
{
    const std::function<bool()> requests[] = {
        [this] { return m_control.send(Kind::describe, Describe{0}); },
        [this] {
            return m_control.send(Kind::read, Read{0, 4});
        },
        [this] { return m_control.send(Kind::write, Write{0}, "abcd"); },
        [this] { return m_control.send(Kind::openSource, OpenSource{kMemorySize}); },
        [this] { return m_control.send(Kind::start); },
        [this] { return m_control.send(Kind::stop); },
    };
    for (const auto& request : requests) {
        begin();
        ASSERT_TRUE(request());
        EXPECT_TRUE(ends()) << &request - requests;
    }
}

TEST_F(TransportRequestsTest, OpensOnlyOneCamera)
{
    open();
    ASSERT_TRUE(m_control.send(Kind::open, m_open));
    EXPECT_TRUE(ends());
}

TEST_F(TransportRequestsTest, EndsOnReadsLargerThanAPacket)
{
    open();
    ASSERT_TRUE(m_control.send(Kind::read, Read{0, kMaxData + 1}));
    EXPECT_TRUE(ends());
}

TEST_F(TransportRequestsTest, DescriptionIsSentInParts)
{
    open();
    ASSERT_TRUE(m_control.send(Kind::describe, Describe{~0ULL}));
    const Packet* const packet = reply(Kind::described);
    ASSERT_NE(packet, nullptr);
    EXPECT_GT(packet->body<Described>(Kind::described)->total, 1000U);
    EXPECT_EQ(packet->data().size(), 0U) << "nothing beyond its end";
}

TEST_F(TransportRequestsTest, RefusesMemoryThatIsUnsealedOrTooSmall)
{
    open();
    const Descriptor whole = makeMemory(F_SEAL_SHRINK);
    EXPECT_EQ(openSource(-1), Orvo::CAM_API_STS_NO_MEMORY);
    EXPECT_EQ(openSource(STDIN_FILENO), Orvo::CAM_API_STS_NO_MEMORY);
    EXPECT_EQ(openSource(makeMemory(0).get()), Orvo::CAM_API_STS_NO_MEMORY) << "that may shrink";
    EXPECT_EQ(openSource(whole.get(), kMemorySize + 1), Orvo::CAM_API_STS_NO_MEMORY);
    EXPECT_EQ(openSource(whole.get(), 0), Orvo::CAM_API_STS_NO_MEMORY);
    EXPECT_EQ(openSource(whole.get()), 0U);
}

TEST_F(TransportRequestsTest, EndsOnBuffersOutsideTheMemory)
{
    open();
    ASSERT_EQ(openSource(makeMemory(F_SEAL_SHRINK).get()), 0U);
    const Free frees[] = {{0, kMemorySize + 1}, {kMemorySize, 1}, {~0ULL, 2}, {4096, ~0ULL}, {0, 0}, {0, kMemorySize}};
    for (const Free& free : frees) {
        std::array<int, 2> ends = {-1, -1};
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        const Channel images{Descriptor(ends[0])};
        ASSERT_TRUE(images.send(Kind::free, free));
        ASSERT_TRUE(m_control.send(Kind::start, Nothing{}, {}, ends[1]));
        ::close(ends[1]);
        const bool within = free.capacity == kMemorySize;
        EXPECT_EQ(status(), within ? 0U : std::uint32_t{Orvo::CAM_API_STS_INVALID_PARAMETER}) << &free - frees;
        ASSERT_TRUE(m_control.send(Kind::stop));
        ASSERT_EQ(status(), 0U);
    }
}

TEST_F(TransportRequestsTest, RefusesToStartWithoutAnImageChannel)
{
    open();
    ASSERT_EQ(openSource(makeMemory(F_SEAL_SHRINK).get()), 0U);
    const Descriptor noSocket = makeMemory(0);
    for (const int channel : {-1, noSocket.get()}) {
        ASSERT_TRUE(m_control.send(Kind::start, Nothing{}, {}, channel));
        EXPECT_EQ(status(), std::uint32_t{Orvo::CAM_API_STS_INVALID_PARAMETER}) << channel;
    }
    ASSERT_TRUE(m_control.send(Kind::close));
    EXPECT_EQ(status(), 0U);
    EXPECT_TRUE(ends());
}

TEST_F(TransportRequestsTest, SendsSignsOfLife)
{
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(m_events.receive(m_packet, soon()), Received::packet);
        EXPECT_TRUE(m_packet.body<Nothing>(Kind::alive));
    }
}

TEST_F(TransportRequestsTest, EndsWithItsChannels)
{
    open();
    m_control.shutDown();
    EXPECT_TRUE(ends());
    begin();
    open();
    m_events = {};
    EXPECT_TRUE(ends());
}
