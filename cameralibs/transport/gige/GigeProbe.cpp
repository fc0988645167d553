#include "cameralibs/transport/gige/GigeProbe.h"

#include "cameralibs/transport/Farewell.h"

#include <array>
#include <cerrno>
#include <cstdint>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace cameralibs::transport {

namespace {

constexpr std::chrono::seconds kSilence{1};
constexpr std::chrono::milliseconds kPatience{300};

/// More than 2 s from the first to the end of the last.
constexpr int kTries = 7;

// GigE Vision: a command to read the register at 0, which holds the version, and the answer to it.
constexpr std::uint8_t kCommandKey = 0x42;
constexpr std::uint8_t kAnswerWanted = 0x01;
constexpr std::uint8_t kReadRegister = 0x80;
constexpr std::uint8_t kReadRegisterAnswer = 0x81;

/// Connected, so that it hears nobody but the camera.
Descriptor connectTo(ArvGvDevice* device)
{
    // The addresses stay the device's.
    const auto native = [](GSocketAddress* address, sockaddr_storage& to) {
        return address != nullptr && g_socket_address_to_native(address, &to, sizeof to, nullptr) != FALSE;
    };
    sockaddr_storage camera{};
    sockaddr_storage interface {
    };
    Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!native(arv_gv_device_get_device_address(device), camera) || !socket)
        return {};
    // By the interface that Aravis takes, with a port of the probe's own.
    if (native(arv_gv_device_get_interface_address(device), interface)) {
        reinterpret_cast<sockaddr_in*>(&interface)->sin_port = 0;
        (void)::bind(socket.get(), reinterpret_cast<sockaddr*>(&interface), sizeof(sockaddr_in));
    }
    if (::connect(socket.get(), reinterpret_cast<sockaddr*>(&camera), sizeof(sockaddr_in)) != 0)
        return {};
    return socket;
}

} // namespace

GigeProbe::GigeProbe(ArvGvDevice* device)
    : m_socket(connectTo(device))
    , m_lastNews(Clock::now().time_since_epoch().count())
{
    m_thread = std::thread([this] { run(); });
}

GigeProbe::~GigeProbe()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void GigeProbe::run()
{
    (void)hearsOfCamera();
    if (!m_answersQuestions)
        note(Severity::info, "The camera does not answer questions on the side, so its loss is noticed later");
    while (waitUntil(lastNews() + kSilence)) {
        if (Clock::now() < lastNews() + kSilence)
            continue;
        if (!hearsOfCamera() && m_answersQuestions)
            leaveAsLost("The camera does not answer any more");
        noteNews();
    }
}

/// Asks until the camera answers or sends anything else. False if it stays silent, or cannot be asked.
bool GigeProbe::hearsOfCamera()
{
    if (!m_socket)
        return false;
    const Clock::time_point begin = Clock::now();
    const auto firstId = static_cast<std::uint16_t>(m_lastId + 1);
    for (int i = 0; i < kTries; ++i) {
        ++m_lastId;
        const Clock::time_point end = Clock::now() + kPatience;
        if (ask(m_lastId) && waitForAnswer(firstId, m_lastId)) {
            m_answersQuestions = true;
            return true;
        }
        if (!waitUntil(end) || lastNews() > begin)
            return true;
    }
    return false;
}

bool GigeProbe::ask(std::uint16_t id) const
{
    const std::array<std::uint8_t, 12> command = {kCommandKey,
                                                  kAnswerWanted,
                                                  0,
                                                  kReadRegister,
                                                  0,
                                                  4,
                                                  static_cast<std::uint8_t>(id >> 8U),
                                                  static_cast<std::uint8_t>(id & 0xffU),
                                                  0,
                                                  0,
                                                  0,
                                                  0};
    return ::send(m_socket.get(), command.data(), command.size(), MSG_NOSIGNAL) >= 0;
}

/// An error is an answer, too. A late one is as good as any.
bool GigeProbe::waitForAnswer(std::uint16_t firstId, std::uint16_t lastId) const
{
    const Clock::time_point end = Clock::now() + kPatience;
    std::array<std::uint8_t, 64> answer{};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waiting{m_socket.get(), POLLIN, 0};
        if (left <= 0 || ::poll(&waiting, 1, static_cast<int>(left)) <= 0)
            return false;
        const ssize_t size = ::recv(m_socket.get(), answer.data(), answer.size(), 0);
        if (size < 0 && errno != EAGAIN && errno != EINTR)
            return false; // such as a port that nobody listens at
        if (size < 8 || answer[3] != kReadRegisterAnswer)
            continue;
        const auto distance = static_cast<std::uint16_t>((answer[6] << 8U | answer[7]) - firstId);
        if (distance <= static_cast<std::uint16_t>(lastId - firstId))
            return true;
    }
}

/// False where the probe ends before.
bool GigeProbe::waitUntil(Clock::time_point time)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_until(lock, time, [this] { return m_ended; });
}

Clock::time_point GigeProbe::lastNews() const noexcept
{
    return Clock::time_point(Clock::duration(m_lastNews.load(std::memory_order_relaxed)));
}

} // namespace cameralibs::transport
