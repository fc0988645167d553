#include "check/cameras/GigeSearch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace check {

namespace {

using Clock = std::chrono::steady_clock;

// The control protocol of GigE Vision (GVCP). Numbers on the wire are big-endian.
constexpr std::uint16_t kPort = 3956;
constexpr std::uint8_t kCommandKey = 0x42;
constexpr std::uint8_t kAnswerWanted = 0x01;
constexpr std::uint8_t kAnswerToAllAllowed = 0x10;
constexpr std::uint8_t kDiscovery = 0x02;
constexpr std::uint8_t kDiscoveryAnswer = 0x03;

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kBodySize = 0xf8;

/// The place of a field in the body of an answer.
struct Field {
    std::size_t offset;
    std::size_t size;
};
constexpr Field kMac = {0x0a, 6};
constexpr Field kAddress = {0x24, 4};
constexpr Field kMask = {0x34, 4};
constexpr Field kVendor = {0x48, 32};
constexpr Field kModel = {0x68, 32};
constexpr Field kSerial = {0xd8, 16};
constexpr Field kUserName = {0xe8, 16};

/// How long cameras have to answer, and when they are asked again because a packet may have been lost.
constexpr std::chrono::milliseconds kListening{1000};
constexpr std::chrono::milliseconds kAgain{300};

/// More than any network has.
constexpr std::size_t kMaxAnswers = 1000;

constexpr std::uint16_t kQuestion = 0x6f63; // any number but 0

std::uint64_t numberAt(const std::uint8_t* body, const Field& field)
{
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < field.size; ++i)
        number = number << 8 | body[field.offset + i];
    return number;
}

std::string textAt(const std::uint8_t* body, const Field& field)
{
    const auto* const begin = reinterpret_cast<const char*>(body + field.offset);
    return {begin, ::strnlen(begin, field.size)};
}

/// Asks on one interface, and receives answers to this machine and broadcast ones.
class Listener {
public:
    explicit Listener(const Interface& interface)
        : m_interface(interface)
        , m_descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        const int yes = 1;
        const sockaddr_in any = {AF_INET, 0, {INADDR_ANY}, {}};
        const bool works = m_descriptor >= 0 &&
                           ::setsockopt(m_descriptor, SOL_SOCKET, SO_BINDTODEVICE, interface.name.data(),
                                        static_cast<socklen_t>(interface.name.size())) == 0 &&
                           ::setsockopt(m_descriptor, SOL_SOCKET, SO_BROADCAST, &yes, sizeof yes) == 0 &&
                           ::bind(m_descriptor, reinterpret_cast<const sockaddr*>(&any), sizeof any) == 0;
        m_error = works ? 0 : errno;
    }
    ~Listener()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Listener(Listener&& other) noexcept
        : m_interface(other.m_interface)
        , m_descriptor(std::exchange(other.m_descriptor, -1))
        , m_error(other.m_error)
    {
    }
    Listener& operator=(const Listener&) = delete;
    Listener& operator=(Listener&&) = delete;

    /// 0, or the errno that keeps questions from being sent.
    [[nodiscard]] int error() const { return m_error; }
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    [[nodiscard]] const Interface& interface() const { return m_interface; }

    /// Asks from each address of the interface; from no address if it has none.
    void ask()
    {
        if (m_error != 0)
            return;
        for (const Address& address : m_interface.addresses)
            askFrom(address.address);
        if (m_interface.addresses.empty())
            askFrom(0);
    }

    [[nodiscard]] std::optional<GigeAnswer> receive() const
    {
        std::array<std::uint8_t, 1024> bytes{};
        const ssize_t size = ::recv(m_descriptor, bytes.data(), bytes.size(), 0);
        if (size < 0)
            return {};
        auto answer = answerIn(bytes.data(), static_cast<std::size_t>(size), kQuestion);
        if (answer)
            answer->interface = m_interface.name;
        return answer;
    }

private:
    void askFrom(std::uint32_t address)
    {
        std::array<std::uint8_t, kHeaderSize> question = {
            kCommandKey, kAnswerWanted | kAnswerToAllAllowed, 0, kDiscovery, 0, 0, kQuestion >> 8, kQuestion & 0xff};
        sockaddr_in to = {AF_INET, htons(kPort), {INADDR_BROADCAST}, {}};
        iovec data = {question.data(), question.size()};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> control{};
        msghdr message{};
        message.msg_name = &to;
        message.msg_namelen = sizeof to;
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = IPPROTO_IP;
        header->cmsg_type = IP_PKTINFO;
        header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
        in_pktinfo source{};
        source.ipi_spec_dst.s_addr = htonl(address);
        std::memcpy(CMSG_DATA(header), &source, sizeof source);
        // A firewall refuses to send. Other errors mean that nobody can be reached, such as on a tunnel without a peer.
        if (::sendmsg(m_descriptor, &message, 0) < 0 && errno == EPERM)
            m_error = EPERM;
    }

    const Interface& m_interface;
    int m_descriptor;
    int m_error = 0;
};

/// Adds each camera once, however often it answers. If it answers on several interfaces, the one in its network counts.
void add(std::vector<GigeAnswer>& answers, GigeAnswer answer, const Interface& interface)
{
    const auto known = std::find_if(answers.begin(), answers.end(), [&](const GigeAnswer& other) {
        return other.mac == answer.mac && other.address == answer.address;
    });
    if (known == answers.end()) {
        if (answers.size() < kMaxAnswers)
            answers.push_back(std::move(answer));
    } else if (interface.reaches(answer.address)) {
        known->interface = interface.name;
    }
}

} // namespace

std::optional<GigeAnswer> answerIn(const std::uint8_t* bytes, std::size_t size, std::uint16_t id)
{
    if (size < kHeaderSize + kBodySize)
        return {};
    // The first half of the number is the status, 0: no error.
    if (numberAt(bytes, {0, 4}) != kDiscoveryAnswer || numberAt(bytes, {4, 2}) != kBodySize ||
        numberAt(bytes, {6, 2}) != id)
        return {};
    const std::uint8_t* const body = bytes + kHeaderSize;
    GigeAnswer answer;
    answer.mac = numberAt(body, kMac);
    answer.address = static_cast<std::uint32_t>(numberAt(body, kAddress));
    answer.mask = static_cast<std::uint32_t>(numberAt(body, kMask));
    answer.vendor = textAt(body, kVendor);
    answer.model = textAt(body, kModel);
    answer.serial = textAt(body, kSerial);
    answer.userName = textAt(body, kUserName);
    return answer;
}

GigeSearch searchGige(const std::vector<Interface>& interfaces)
{
    GigeSearch search;
    std::vector<Listener> listeners;
    for (const Interface& interface : interfaces) {
        if (interface.up)
            listeners.emplace_back(interface);
    }
    std::vector<pollfd> waited;
    for (Listener& listener : listeners) {
        listener.ask();
        waited.push_back({listener.error() == 0 ? listener.descriptor() : -1, POLLIN, 0});
    }
    const Clock::time_point begin = Clock::now();
    bool again = false;
    for (;;) {
        const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
        if (passed >= kListening)
            break;
        if (!again && passed >= kAgain) {
            again = true;
            for (Listener& listener : listeners)
                listener.ask();
        }
        const auto until = (again ? kListening : kAgain) - passed;
        if (::poll(waited.data(), waited.size(), static_cast<int>(until.count()) + 1) <= 0)
            continue;
        for (std::size_t i = 0; i < listeners.size(); ++i) {
            if (waited[i].revents == 0)
                continue;
            if (auto answer = listeners[i].receive())
                add(search.answers, std::move(*answer), listeners[i].interface());
        }
    }
    for (const Listener& listener : listeners) {
        if (listener.error() != 0) {
            // There is one thread.
            const char* const reason = std::strerror(listener.error()); // NOLINT(concurrency-mt-unsafe)
            search.silent.push_back({listener.interface().name, reason});
        }
    }
    return search;
}

} // namespace check
