#include "cameralibs/devices/transport/Connection.h"

#include "cameralibs/base/Log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace cameralibs {

using namespace Orvo;
using namespace transport;

namespace {

/// A transport has as long to start as a camera has to answer. With a sanitizer, programs start slowly on a busy
/// machine.
constexpr std::chrono::seconds kStartLimit{Connection::kSanitized ? 10 : 3};
constexpr Connection::Limits kStart{kStartLimit, kStartLimit};

/// Several times the period of its signs of life, and enough for a machine that swaps.
constexpr std::chrono::seconds kSilence{4};

/// Leaves time to kill the process within the second that closing may take.
constexpr std::chrono::milliseconds kReleaseLimit{800};

/// A transport that does not receive within this time is killed.
constexpr timeval kSendLimit{3, 0};

constexpr std::size_t kMaxLine = 2 * kMaxText;

/// How much is read of what a transport wrote before its end: the default capacity of a pipe.
constexpr int kMaxLastParts = 16;

/// The marks by which Aravis denotes the severity of its log lines.
struct AravisRow {
    std::string_view mark;
    Severity severity;
};
constexpr AravisRow kAravisRows[] = {
    {"\U0001F186 ", Severity::warning},
    {"\U0001F178 ", Severity::info},
    {"\U0001F173 ", Severity::debug},
};
constexpr std::size_t kAravisPrefix = 24;

/// The value for Hello::log.
std::uint32_t logLevel()
{
    if (!logs(Severity::warning))
        return 0;
    if (!logs(Severity::info))
        return 1;
    return logs(Severity::debug) ? 3 : 2;
}

constexpr std::string_view kLate = "The camera does not answer in time";
constexpr std::string_view kMalformed = "The transport sent a malformed packet";

std::string reasonOf(int error)
{
    return std::system_category().message(error);
}

} // namespace

CAM_API_STATUS knownStatus(std::uint32_t status)
{
    constexpr std::array<CAM_API_STATUS, 12> kKnown = {
        CAM_API_STS_SUCCESS,         CAM_API_STS_INVALID_PARAMETER,     CAM_API_STS_NO_MEMORY,
        CAM_API_STS_NOT_IMPLEMENTED, CAM_API_STS_CAMERA_NOT_RESPONDING, CAM_API_STS_XML_LOAD_ERR,
        CAM_API_STS_GENICAM_ERR,     CAM_API_STS_INVALID_ADDRESS,       CAM_API_STS_WRITE_PROTECT,
        CAM_API_STS_BAD_ALIGNMENT,   CAM_API_STS_ACCESS_DENIED,         CAM_API_STS_BUSY};
    return std::find(kKnown.begin(), kKnown.end(), status) == kKnown.end() ? CAM_API_STS_UNSUCCESSFUL : status;
}

Connection::Connection(std::string camera)
    : m_camera(std::move(camera))
    , m_wake(aboveStandard(Descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))))
{
}

Outcome Connection::open()
{
    std::string reason = start();
    if (reason.empty())
        reason = exchangeHello();
    if (reason.empty())
        return {};
    return {CAM_API_STS_CAMERA_NOT_RESPONDING, std::move(reason)};
}

Connection::~Connection()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closing = true;
    }
    endBy(Clock::now() + kReleaseLimit);
    (void)requestDone(Kind::close, Nothing{}, {kReleaseLimit, kReleaseLimit});
    if (m_watcher.joinable())
        m_watcher.join();
}

std::string Connection::start()
{
    Process::Ends ends;
    std::array<int, 2> errors = {-1, -1};
    if (!m_wake || !makeChannel(m_control, ends.control) || !makeChannel(m_events, ends.events))
        return "There are no more descriptors: " + reasonOf(errno);
    if (logLevel() != 0 && ::pipe2(errors.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
        m_errors = aboveStandard(Descriptor(errors[0]));
        ends.errors = aboveStandard(Descriptor(errors[1]));
    } else if (kSanitized) {
        ends.errors = Descriptor(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)); // where reports are looked for
    }
    const std::string program = transportProgram();
    std::promise<std::string> promise;
    std::future<std::string> started = promise.get_future();
    try {
        // Allocate here all that the thread needs, so that it detects a loss even if memory has run out.
        m_line.reserve(kMaxLine);
        m_watcher = std::thread([&, this, promise = std::move(promise), packet = Packet()]() mutable {
            if (startProcess(program, ends, promise))
                watch(packet);
        });
    } catch (const std::system_error& error) {
        return std::string("There are no more threads: ") + error.what();
    }
    return started.get();
}

/// Runs on the watching thread, which lives as long as the transport, because a transport ends with the thread that
/// started it. The caller's references are invalid once `started` is set.
bool Connection::startProcess(const std::string& program, const Process::Ends& ends, std::promise<std::string>& started)
{
    try {
        std::string reason = m_process.start(program, ends);
        const bool runs = reason.empty();
        started.set_value(std::move(reason));
        return runs;
    } catch (const std::bad_alloc&) {
        started.set_exception(std::current_exception());
        return false;
    }
}

std::string Connection::exchangeHello()
{
    Hello hello{};
    setText(hello.build, ORVO_TRANSPORT_BUILD);
    hello.log = logLevel();
    std::string build;
    const bool answered = request(Kind::hello, hello, kStart, [&](const Packet& reply) {
        const auto theirs = reply.body<Hello>(Kind::hello);
        build = theirs ? textOf(theirs->build) : "";
        return theirs ? ReplyKind::last : ReplyKind::invalid;
    });
    if (!answered)
        return transportProgram() + " does not run: " + reasonOfLoss();
    if (build != ORVO_TRANSPORT_BUILD) {
        endNow("It is of another build");
        return transportProgram() + " is of another build than the camera library";
    }
    return {};
}

bool Connection::endNow(std::string_view reason) noexcept
{
    try {
        const std::lock_guard lock(m_mutex);
        if (m_reason.empty())
            m_reason = reason;
    } catch (const std::bad_alloc&) {
        // The reason is not essential.
    }
    m_gone.store(true, std::memory_order_release);
    m_process.kill();
    return false;
}

bool Connection::endAsClosed() noexcept
{
    const auto closing = [this] {
        const std::lock_guard lock(m_mutex);
        return m_closing;
    };
    return endNow(closing() || m_process.endsSoon() ? "" : "The transport has closed a channel");
}

std::string Connection::reasonOfLoss()
{
    std::unique_lock lock(m_mutex);
    // The watching thread waits for the end of the process first.
    (void)m_reportedChanged.wait_for(lock, 2 * Process::kDying, [this] { return m_reported; });
    return m_reason;
}

void Connection::endBy(Clock::time_point time)
{
    {
        const std::lock_guard lock(m_mutex);
        m_end = std::min(m_end, time);
    }
    wakeWatcher();
}

void Connection::hurry(Clock::time_point end)
{
    {
        const std::lock_guard lock(m_mutex);
        m_hurryEnd = std::min(m_hurryEnd, end);
    }
    wakeWatcher();
}

void Connection::relax()
{
    const std::lock_guard lock(m_mutex);
    m_hurryEnd = Clock::time_point::max();
    m_opened = true;
}

void Connection::cancel()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_opened)
            return;
        m_end = std::min(m_end, Clock::now());
    }
    wakeWatcher();
}

bool Connection::inHurry()
{
    const std::lock_guard lock(m_mutex);
    return m_hurryEnd != Clock::time_point::max();
}

void Connection::wakeWatcher() const
{
    const std::uint64_t one = 1;
    if (m_wake)
        (void)!::write(m_wake.get(), &one, sizeof one);
}

void Connection::onGone(std::function<void(const std::string& reason)> handler)
{
    std::string reason;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_reported) {
            m_goneHandler = std::move(handler);
            return;
        }
        reason = m_reason;
    }
    handler(reason);
}

bool Connection::makeChannel(Channel& here, Descriptor& there)
{
    std::array<int, 2> ends = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    (void)::setsockopt(ends[0], SOL_SOCKET, SO_SNDTIMEO, &kSendLimit, sizeof kSendLimit);
    here = Channel(aboveStandard(Descriptor(ends[0])));
    there = aboveStandard(Descriptor(ends[1]));
    return here && there;
}

bool Connection::awaitReplies(const Limits& limits, const ReplyHandler& handler)
{
    const Clock::time_point end = Clock::now() + limits.total;
    Clock::time_point silentUntil = Clock::now() + limits.silence;
    for (;;) {
        switch (m_control.receive(m_reply, std::min(silentUntil, end))) {
        case Received::packet:
            break;
        case Received::timeout:
            return endNow(kLate);
        case Received::closed:
            return endAsClosed();
        case Received::malformed:
            return endNow(kMalformed);
        }
        if (const auto progress = m_reply.body<Progress>(Kind::progress)) {
            if (progress->answer == Answer::useful)
                silentUntil = Clock::now() + limits.silence;
            if (progress->answer == Answer::pending && !inHurry())
                silentUntil = end;
        } else {
            switch (handler(m_reply)) {
            case ReplyKind::last:
                return true;
            case ReplyKind::more:
                break;
            case ReplyKind::invalid:
                return endNow("The transport sent a reply that does not match the request");
            }
        }
        // If packets arrive without a pause, receive() never reports a timeout.
        if (Clock::now() >= std::min(silentUntil, end))
            return endNow(kLate);
    }
}

Connection::ReplyKind Connection::readDone(const Packet& reply, Outcome& outcome)
{
    const auto done = reply.body<Done>(Kind::done);
    if (!done)
        return ReplyKind::invalid;
    outcome = {knownStatus(done->status), std::string(reply.data().substr(0, kMaxText))};
    return ReplyKind::last;
}

void Connection::watch(Packet& packet) noexcept
{
    try {
        watchUntilGone(packet);
    } catch (const std::bad_alloc&) {
        // A transport that cannot be watched is killed.
    }
    m_gone.store(true, std::memory_order_release);
    m_process.kill();
    m_control.shutDown();
    reportLoss();
}

void Connection::watchUntilGone(Packet& packet)
{
    Clock::time_point silentUntil = Clock::now() + std::max(kSilence, kStartLimit);
    const auto givenTime = [this] {
        const std::lock_guard lock(m_mutex);
        return std::min(m_end, m_hurryEnd);
    };
    for (;;) {
        // Checked each time, because a transport may send without a pause.
        const Clock::time_point given = givenTime();
        if (Clock::now() >= given) {
            endNow(kLate);
            break;
        }
        std::array<pollfd, 4> watched = {pollfd{m_events.descriptor(), POLLIN, 0}, pollfd{m_wake.get(), POLLIN, 0},
                                         pollfd{m_errors.get(), POLLIN, 0}, pollfd{m_process.handle(), POLLIN, 0}};
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(std::min(given, silentUntil) - Clock::now()).count();
        const int ready = ::poll(watched.data(), watched.size(), static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (ready < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        if (watched[1].revents != 0) {
            std::uint64_t count = 0;
            (void)!::read(m_wake.get(), &count, sizeof count);
        }
        if (watched[2].revents != 0)
            (void)readErrors();
        if (watched[0].revents != 0) {
            if (!readEvent(packet))
                break;
            silentUntil = Clock::now() + kSilence;
        } else if (watched[3].revents != 0) {
            break; // a forked process may keep the channels open
        } else if (Clock::now() >= silentUntil) {
            endNow("The transport shows no sign of life");
            break;
        }
    }
}

/// False if it was the last event.
bool Connection::readEvent(Packet& packet)
{
    const Received received = m_events.receive(packet, Clock::time_point::min());
    if (received == Received::closed)
        return endAsClosed();
    if (received == Received::packet && packet.body<Nothing>(Kind::alive))
        return true;
    const bool lost = received == Received::packet && packet.body<Nothing>(Kind::lost);
    return endNow(lost ? packet.data().substr(0, kMaxText) : kMalformed);
}

/// Reads a limited part of the transport's standard error, so that a flood of lines delays nothing else. False if
/// nothing is left.
bool Connection::readErrors()
{
    std::array<char, 4096> bytes{};
    const ssize_t size = m_errors ? ::read(m_errors.get(), bytes.data(), bytes.size()) : -1;
    if (size == 0)
        m_errors.reset();
    if (size <= 0)
        return false;
    for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(size))) {
        if (byte != '\n' && m_line.size() < kMaxLine) {
            m_line += byte;
            continue;
        }
        logLine(m_line);
        m_line.clear();
    }
    return true;
}

/// Lines of the transport begin with a priority, lines of Aravis with "[time] mark ". Others are from GLib or the C
/// library.
void Connection::logLine(std::string_view line) const noexcept
{
    Severity severity = logs(Severity::info) ? Severity::info : Severity::warning;
    if (line.size() > 3 && line[0] == '<' && line[2] == '>') {
        const int priority = line[1] - '0';
        severity = priority <= 4 ? Severity::warning : priority <= 6 ? Severity::info : Severity::debug;
        line.remove_prefix(3);
    }
    for (const AravisRow& row : kAravisRows) {
        const std::size_t mark = line.substr(0, kAravisPrefix).find(row.mark);
        if (mark == std::string_view::npos || line[0] != '[')
            continue;
        severity = row.severity;
        line.remove_prefix(mark + row.mark.size());
        break;
    }
    log(severity, m_camera, line);
}

void Connection::reportLoss() noexcept
{
    std::string reason;
    try {
        // The wait is short, so that the loss is reported soon even if the process takes long to end.
        const std::string end = m_process.wait();
        for (int part = 0; part < kMaxLastParts && readErrors(); ++part) {
        }
        const std::lock_guard lock(m_mutex);
        if (m_reason.empty())
            m_reason = "The transport process " + (end.empty() ? "is gone" : end);
        reason = m_reason;
    } catch (const std::bad_alloc&) {
        // The loss is reported without a reason.
    }
    std::function<void(const std::string&)> handler;
    {
        const std::lock_guard lock(m_mutex);
        m_reported = true;
        m_reportedChanged.notify_all();
        if (m_closing)
            return;
        handler = std::move(m_goneHandler);
    }
    if (handler)
        handler(reason);
}

} // namespace cameralibs
