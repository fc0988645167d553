#include "cameralibs/transport/connection/Session.h"

#include "cameralibs/base/Log.h"
#include "cameralibs/transport/AravisHooks.h"
#include "cameralibs/transport/Reporting.h"
#include "cameralibs/transport/discovery/Discovery.h"

#include <algorithm>
#include <array>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

/// How long releasing the camera may take.
constexpr std::chrono::seconds kClosingLimit{1};

constexpr std::chrono::milliseconds kProgressPeriod{100};

/// Indexed by Hello::log.
constexpr std::array<const char*, 4> kLogLevels = {"", "warning", "info", "debug"};

} // namespace

Session::Session(Descriptor control, Descriptor events)
    : m_control(std::move(control))
    , m_events(std::move(events))
{
    onAnswer([this](Answer answer) { reportProgress(answer); });
}

void Session::run()
{
    std::thread([this] { watchLibrary(); }).detach();
    Packet packet;
    while (m_control.receive(packet, Clock::time_point::max(), Channel::Descriptors::accept) == Received::packet) {
        {
            const std::lock_guard lock(m_mutex);
            m_asked = true;
            m_lastProgress.clear();
        }
        if (!answer(packet))
            break;
    }
    // The process ends in time, whatever the camera does.
    std::thread([] {
        std::this_thread::sleep_for(kClosingLimit);
        ::_exit(1);
    }).detach();
    m_camera.close();
    ::_exit(0);
}

/// Sends signs of life, and ends the session when the library closes the event channel.
void Session::watchLibrary()
{
    pollfd watched{m_events.descriptor(), POLLIN, 0};
    do {
        m_events.sendOrDrop(Kind::alive);
    } while (::poll(&watched, 1, static_cast<int>(kAlivePeriod.count())) <= 0);
    m_control.shutDown();
    std::this_thread::sleep_for(kClosingLimit);
    ::_exit(1);
}

/// False to end the session.
bool Session::answer(Packet& packet)
{
    if (const auto hello = packet.body<Hello>(Kind::hello))
        return answerHello(*hello);
    if (!m_greeted)
        return false;
    if (const auto kinds = packet.body<Enumerate>(Kind::enumerate))
        return listCamerasFor(*kinds);
    if (const auto open = packet.body<Open>(Kind::open); open && !m_camera.isOpen())
        return answerOpen(*open);
    if (!m_camera.isOpen())
        return false;
    if (const auto describe = packet.body<Describe>(Kind::describe))
        return answerDescribe(*describe);
    if (const auto read = packet.body<Read>(Kind::read); read && read->size <= kMaxData)
        return answerRead(*read);
    if (const auto write = packet.body<Write>(Kind::write))
        return finish(m_camera.write(write->address, packet.data()));
    if (const auto source = packet.body<OpenSource>(Kind::openSource))
        return finish(m_camera.openSource(packet.takeDescriptor(), source->memorySize));
    if (packet.body<Nothing>(Kind::start))
        return finish(m_camera.start(packet.takeDescriptor()));
    if (packet.body<Nothing>(Kind::stop)) {
        m_camera.stop();
        return finish(Outcome{});
    }
    if (packet.body<Nothing>(Kind::close)) {
        m_camera.close();
        (void)finish(Outcome{});
    }
    return false;
}

bool Session::answerHello(const Hello& hello)
{
    setLogLevel(kLogLevels[std::min<std::size_t>(hello.log, kLogLevels.size() - 1)]);
    Hello own{};
    setText(own.build, ORVO_TRANSPORT_BUILD);
    m_greeted = textOf(hello.build) == ORVO_TRANSPORT_BUILD;
    // A library of another build learns this build too, so that it can report the difference.
    return reply(Kind::hello, own, {}) && m_greeted;
}

bool Session::listCamerasFor(const Enumerate& kinds)
{
    for (const Listed& camera : listCameras(kinds.usb != 0, kinds.gige != 0)) {
        if (!m_control.send(Kind::listed, camera))
            return false;
    }
    return finish(Outcome{});
}

bool Session::answerOpen(const Open& open)
{
    return finish(m_camera.open(static_cast<CAM_LINK>(open.link), textOf(open.name)));
}

bool Session::answerDescribe(const Describe& describe)
{
    const std::string_view text = m_camera.description();
    return reply(Kind::described, Described{text.size()},
                 text.substr(std::min<std::uint64_t>(describe.offset, text.size()), kMaxData));
}

bool Session::answerRead(const Read& read)
{
    std::string bytes(read.size, '\0');
    const auto access = m_camera.read(read.address, static_cast<std::uint32_t>(read.size), bytes.data());
    return finish(access, bytes);
}

bool Session::finish(const Outcome& outcome)
{
    return reply(Kind::done, Done{outcome.status, 0}, std::string_view(outcome.text).substr(0, kMaxText));
}

bool Session::finish(const OpenedCamera::Access& access, std::string_view bytes)
{
    return reply(Kind::done, Done{access.error, 0},
                 access.error == 0 ? bytes : std::string_view(access.text).substr(0, kMaxText));
}

/// Runs on any thread that receives from the camera.
void Session::reportProgress(Answer answer)
{
    const std::lock_guard lock(m_mutex);
    const Clock::time_point now = Clock::now();
    // Each kind on its own: a single pending acknowledgement may follow an answer at once.
    Clock::time_point& last = m_lastProgress[answer];
    if (!m_asked || now < last + kProgressPeriod)
        return;
    last = now;
    (void)m_control.send(Kind::progress, Progress{answer});
}

template <class Body> bool Session::reply(Kind kind, const Body& body, std::string_view data)
{
    const std::lock_guard lock(m_mutex);
    m_asked = false;
    return m_control.send(kind, body, data);
}

} // namespace cameralibs::transport
