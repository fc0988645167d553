// The transport with a library that sends what it likes, on all its channels, with any descriptors, in any order. The
// camera behind it is the emulated USB camera, which is correct.
//
// Each input has a session in a process forked for it, because a session ends its process. What the session executes is
// added to what this process executed, so that the fuzzer sees it.

#include "cameralibs/transport/Channel.h"
#include "cameralibs/transport/connection/Session.h"
#include "tests/attack/fuzz/FuzzInput.h"
#include "tests/cameralibs/transport/usb/FakeUsb.h"
#include "tests/cameralibs/transport/usb/FakeUsbCamera.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace cameralibs::transport;
using namespace Orvo;

namespace {

constexpr int kMaxSteps = 40;
constexpr std::size_t kMemorySize = 1U << 20;
constexpr std::size_t kBuffer = kMemorySize / 8;

constexpr const char* kCamera = "Fake Maker-U01";

/// Above the numbers that the session uses for its channels.
constexpr int kAboveAll = 16;

/// A reply takes milliseconds; this is the time limit on a busy machine.
constexpr std::chrono::seconds kPatience{60};

constexpr Kind kKinds[] = {Kind::hello, Kind::enumerate,  Kind::open,  Kind::describe, Kind::read,
                           Kind::write, Kind::openSource, Kind::start, Kind::stop,     Kind::close,
                           Kind::free,  Kind::alive,      Kind::done,  Kind::image,    Kind::lost};

/// The fuzzer's counters of this program; without a fuzzer there are none.
std::uint8_t* s_countersBegin = nullptr;
std::uint8_t* s_countersEnd = nullptr;

/// Those of a session when it ends, in memory that both processes see.
std::uint8_t* s_counters = nullptr;
bool s_isSession = false;

std::pair<Descriptor, Descriptor> socketPair()
{
    std::array<int, 2> ends = {-1, -1};
    REQUIRE(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0);
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Descriptor makeMemory(bool sealed)
{
    Descriptor memory(::memfd_create("images", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    REQUIRE(memory && ::ftruncate(memory.get(), kMemorySize) == 0);
    REQUIRE(!sealed || ::fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK) == 0);
    return memory;
}

[[noreturn]] void beSession(const Descriptor& control, const Descriptor& events)
{
    s_isSession = true;
    (void)::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0);
    const int controlCopy = ::fcntl(control.get(), F_DUPFD_CLOEXEC, kAboveAll);
    const int eventsCopy = ::fcntl(events.get(), F_DUPFD_CLOEXEC, kAboveAll);
    REQUIRE(::dup2(controlCopy, kControlDescriptor) == kControlDescriptor);
    REQUIRE(::dup2(eventsCopy, kEventDescriptor) == kEventDescriptor);
    ::close_range(kEventDescriptor + 1, ~0U, 0);
    Session session{Descriptor(kControlDescriptor), Descriptor(kEventDescriptor)};
    session.run();
    std::abort(); // run() does not return
}

/// The library's side.
class Library {
public:
    explicit Library(FuzzInput& input)
        : m_input(input)
    {
        auto [control, controlOfSession] = socketPair();
        auto [events, eventsOfSession] = socketPair();
        m_process = ::fork();
        REQUIRE(m_process >= 0);
        if (m_process == 0)
            beSession(controlOfSession, eventsOfSession);
        m_control = Channel(std::move(control));
        m_events = Channel(std::move(events));
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Once its channels are closed, the session must end by itself.
    ~Library()
    {
        m_control = {};
        m_events = {};
        m_images = {};
        int status = 0;
        const auto deadline = Clock::now() + kPatience;
        while (::waitpid(m_process, &status, WNOHANG) == 0) {
            REQUIRE(Clock::now() < deadline);
            ::usleep(200);
        }
        // 1 means that releasing the camera took too long, which happens on a busy machine.
        REQUIRE(WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 1));
        std::transform(s_countersBegin, s_countersEnd, s_counters, s_countersBegin,
                       [](std::uint8_t own, std::uint8_t session) { return std::max(own, session); });
    }

    void play()
    {
        constexpr int kGreeted = 1;
        constexpr int kOpened = 2;
        constexpr int kHasBuffers = 3;
        const int begin = m_input.byte() % 4;
        if (begin >= kGreeted)
            REQUIRE(greet(ORVO_TRANSPORT_BUILD) && reply());
        if (begin >= kOpened)
            REQUIRE(open(CAM_LINK_USB3_VISION, kCamera) && reply() && succeeded());
        if (begin >= kHasBuffers)
            REQUIRE(openSource(makeMemory(true).get(), kMemorySize) && reply() && succeeded());
        for (int step = 0; step < kMaxSteps && !m_input.empty(); ++step) {
            const std::uint8_t what = m_input.byte();
            const bool waits = what < 0xC0;
            const bool sent = what % 4 == 3 ? sendImagePacket() : request(what % 16) && (!waits || reply());
            if (!sent)
                return;
        }
    }

private:
    // These return false if the session has ended.

    bool request(int what)
    {
        switch (what) {
        case 0:
            return greet(m_input.byte() < 0xF0 ? ORVO_TRANSPORT_BUILD : "another");
        case 1:
            return m_control.send(Kind::enumerate, Enumerate{m_input.byte(), 0});
        case 2:
            return open(m_input.byte() < 0x80 ? std::uint32_t{CAM_LINK_USB3_VISION} : m_input.byte(),
                        m_input.byte() < 0x80 ? kCamera : m_input.bytes(m_input.byte()));
        case 4:
            return m_control.send(Kind::describe, Describe{m_input.number<std::uint32_t>()});
        case 5:
            return m_control.send(Kind::read, Read{address(), m_input.number<std::uint32_t>() % (2 * kMaxData)});
        case 6:
            return m_control.send(Kind::write, Write{address()}, m_input.bytes(m_input.byte()));
        case 8:
            return openSource(someDescriptor().get(),
                              m_input.byte() < 0xE0 ? kMemorySize : m_input.number<std::uint64_t>());
        case 9:
            return start();
        case 10:
            return m_control.send(Kind::stop);
        case 12: // what ends the session, now and then
            return m_control.send(m_input.byte() < 0xF0 ? Kind::stop : Kind::close);
        case 13:
            return m_input.byte() < 0xF0 ? m_control.send(Kind::stop) : sendAnything(m_events, -1);
        default:
            return sendAnything(m_control, what == 14 ? someDescriptor().get() : -1);
        }
    }

    bool greet(const char* build)
    {
        Hello hello{};
        setText(hello.build, build);
        return m_control.send(Kind::hello, hello);
    }

    bool open(std::uint32_t link, std::string_view name)
    {
        Open request{};
        // A search for GigE Vision cameras takes a second each time.
        request.link = link == CAM_LINK_GIGE_VISION ? 0 : link;
        name.copy(request.name, sizeof request.name);
        return m_control.send(Kind::open, request);
    }

    bool openSource(int memory, std::uint64_t size)
    {
        return m_control.send(Kind::openSource, OpenSource{size}, {}, memory);
    }

    bool start()
    {
        auto [own, theirs] = socketPair();
        m_images = Channel(std::move(own));
        for (std::size_t count = m_input.below(8); count > 0; --count) {
            if (!lend())
                return false;
        }
        const bool withChannel = m_input.byte() < 0xF0;
        return m_control.send(Kind::start, Nothing{}, {}, withChannel ? theirs.get() : someDescriptor().get());
    }

    bool lend()
    {
        const bool sensible = m_input.byte() < 0xE0;
        const Free buffer = sensible ? Free{m_input.below(8) * kBuffer, kBuffer}
                                     : Free{m_input.number<std::uint64_t>(), m_input.number<std::uint64_t>()};
        return m_images.send(Kind::free, buffer);
    }

    /// The session may close this channel without ending.
    bool sendImagePacket()
    {
        if (m_images.descriptor() >= 0)
            (void)(m_input.byte() < 0xC0 ? lend() : sendAnything(m_images, -1));
        return true;
    }

    bool sendAnything(const Channel& channel, int descriptor)
    {
        const bool anyHeader = m_input.byte() >= 0xE0;
        const std::uint8_t kind = m_input.byte();
        std::string packet(m_input.bytes(m_input.byte()));
        if (!anyHeader) {
            const Header header{kKinds[kind % std::size(kKinds)], m_input.byte()};
            packet.insert(0, reinterpret_cast<const char*>(&header), sizeof header);
        }
        iovec part{packet.data(), packet.size()};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        alignas(cmsghdr) std::array<char, CMSG_SPACE(2 * sizeof descriptor)> rights{};
        if (descriptor >= 0) {
            const std::array<int, 2> sent = {descriptor, descriptor}; // one more than is expected
            const std::size_t size = m_input.byte() < 0x80 ? sizeof descriptor : sizeof sent;
            message.msg_control = rights.data();
            message.msg_controllen = CMSG_SPACE(size);
            cmsghdr* const header = CMSG_FIRSTHDR(&message);
            header->cmsg_level = SOL_SOCKET;
            header->cmsg_type = SCM_RIGHTS;
            header->cmsg_len = CMSG_LEN(size);
            std::memcpy(CMSG_DATA(header), sent.data(), size);
        }
        return ::sendmsg(channel.descriptor(), &message, MSG_NOSIGNAL) >= 0;
    }

    /// Waits for the reply to a request.
    bool reply()
    {
        for (;;) {
            const Received received = m_control.receive(m_packet, Clock::now() + kPatience);
            REQUIRE(received == Received::packet || received == Received::closed);
            if (received == Received::closed)
                return false;
            if (m_packet.kind() != Kind::progress && m_packet.kind() != Kind::listed)
                return true;
        }
    }

    [[nodiscard]] bool succeeded() const
    {
        const auto done = m_packet.body<Done>(Kind::done);
        return done && done->status == CAM_API_STS_SUCCESS;
    }

    /// Mostly one that the camera has.
    std::uint64_t address()
    {
        constexpr std::uint64_t kAddresses[] = {0, 0x1d0, usb::kManifest, usb::kStreamInfo, usb::kWidth};
        const std::uint8_t what = m_input.byte();
        return what < 0xF0 ? kAddresses[what % std::size(kAddresses)] : m_input.number<std::uint64_t>();
    }

    Descriptor someDescriptor()
    {
        switch (m_input.below(6)) {
        case 0:
            return makeMemory(false);
        case 1:
            return Descriptor(::open("/dev/null", O_RDWR | O_CLOEXEC));
        case 2:
            return socketPair().first;
        case 3:
            return {};
        default:
            return makeMemory(true);
        }
    }

    FuzzInput& m_input;
    pid_t m_process = -1;
    Channel m_control;
    Channel m_events;
    Channel m_images;
    Packet m_packet;
};

} // namespace

/// Sessions end with it. That of the C library is found after this one.
extern "C" void _exit(int status) // NOLINT(bugprone-reserved-identifier)
{
    if (s_isSession)
        std::copy(s_countersBegin, s_countersEnd, s_counters);
    for (;;)
        ::syscall(SYS_exit_group, status);
}

// The linker makes all modules call the second function in place of the first; this program is the last of them.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" [[gnu::weak]] void __real___sanitizer_cov_8bit_counters_init(std::uint8_t* begin, std::uint8_t* end);
extern "C" [[gnu::visibility("default")]] void __wrap___sanitizer_cov_8bit_counters_init(std::uint8_t* begin,
                                                                                         std::uint8_t* end)
{
    s_countersBegin = begin;
    s_countersEnd = end;
    __real___sanitizer_cov_8bit_counters_init(begin, end);
}
// NOLINTEND(bugprone-reserved-identifier)

/// The default is a status that sessions end with.
extern "C" const char* __asan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "exitcode=99";
}

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/)
{
    const auto size = static_cast<std::size_t>(s_countersEnd - s_countersBegin);
    void* const memory = ::mmap(nullptr, size + 1, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    REQUIRE(memory != MAP_FAILED);
    s_counters = static_cast<std::uint8_t*>(memory);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    usb::unplug();
    usb::plugIn();
    Library(input).play();
    return 0;
}
