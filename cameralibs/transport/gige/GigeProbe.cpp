#include "cameralibs/transport/gige/GigeProbe.h"

#include "cameralibs/transport/AravisHooks.h"
#include "cameralibs/transport/Reporting.h"

#include <algorithm>
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

/// More than 2 s in total.
constexpr int kTries = 7;

// A GigE Vision command that reads the register at 0, which is the version, and its answer.
constexpr std::uint8_t kCommandKey = 0x42;
constexpr std::uint8_t kAnswerWanted = 0x01;
constexpr std::uint8_t kReadRegister = 0x80;
constexpr std::uint8_t kReadRegisterAnswer = 0x81;

/// A socket that is connected, so it receives packets from the camera only.
Descriptor connectTo(ArvGvDevice* device)
{
    // The device owns the addresses.
    const auto native = [](GSocketAddress* address, sockaddr_storage& to) {
        return address != nullptr && g_socket_address_to_native(address, &to, sizeof to, nullptr) != FALSE;
    };
    sockaddr_storage camera{};
    sockaddr_storage interface {
    };
    Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!native(arv_gv_device_get_device_address(device), camera) || !socket)
        return {};
    // On the interface that Aravis uses, with a port of its own.
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
    , m_lastSign(Clock::now().time_since_epoch().count())
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
    (void)hearsFromCamera();
    if (!m_answersQueries)
        note(Severity::info, "The camera does not answer queries from a second socket, so its loss is noticed later");
    while (waitUntil(lastSign() + kSilence)) {
        if (Clock::now() < lastSign() + kSilence)
            continue;
        if (!hearsFromCamera() && m_answersQueries)
            leaveAsLost("The camera no longer answers");
        noteSign();
    }
}

/// Queries the camera until it answers or sends anything else. False if it stays silent or cannot be queried.
bool GigeProbe::hearsFromCamera()
{
    if (!m_socket)
        return false;
    const Clock::time_point begin = Clock::now();
    const auto firstId = static_cast<std::uint16_t>(m_lastId + 1);
    for (int i = 0; i < kTries; ++i) {
        ++m_lastId;
        const Clock::time_point end = Clock::now() + kPatience;
        if (query(m_lastId) && waitForAnswer(firstId, m_lastId)) {
            m_answersQueries = true;
            return true;
        }
        if (!waitUntil(end) || lastSign() > begin)
            return true;
    }
    return false;
}

bool GigeProbe::query(std::uint16_t id) const
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

/// Errors and late answers count, too.
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
            return false; // for example, a closed port
        if (size < 8 || answer[3] != kReadRegisterAnswer)
            continue;
        const auto distance = static_cast<std::uint16_t>((answer[6] << 8U | answer[7]) - firstId);
        if (distance <= static_cast<std::uint16_t>(lastId - firstId))
            return true;
    }
}

/// False if the probe is destroyed before.
bool GigeProbe::waitUntil(Clock::time_point time)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_until(lock, time, [this] { return m_ended; });
}

Clock::time_point GigeProbe::lastSign() const noexcept
{
    return std::max(Clock::time_point(Clock::duration(m_lastSign.load(std::memory_order_relaxed))), lastAnswer());
}

} // namespace cameralibs::transport
