#include "cameralibs/transport/AravisHooks.h"

#include <gio/gio.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <utility>

#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace cameralibs::transport {

namespace {

// A GigE Vision command consists of a key, flags, the command, a length and an id; an answer has a status in place of
// the key and the flags. All are big-endian.
constexpr std::size_t kHeaderSize = 8;
constexpr std::uint8_t kCommandKey = 0x42;
constexpr std::uint16_t kSearch = 0x0002;
constexpr std::uint16_t kSearchAnswer = 0x0003;
constexpr std::uint16_t kPendingAnswer = 0x0089;

/// Of a pending acknowledgement: the time that the camera asks for, in milliseconds.
constexpr std::size_t kPendingTimeOffset = 10;

/// The library waits no longer, whatever a camera asks for.
constexpr std::chrono::milliseconds kLongestPending{10'000};

/// The standard's own limit is lower.
constexpr gsize kLargestAnswer = 1024;

struct Traffic {
    std::function<void(Answer)> handler;
    std::function<void(std::string_view)> searchHandler;
    std::atomic<Clock::time_point> searchEnd{Clock::time_point::max()};
    std::atomic<Clock::time_point> lastAnswer{Clock::time_point::min()};
    std::atomic<bool> polled{false};      ///< in this search
    std::atomic<bool> answered{false};    ///< any command
    std::atomic<std::int32_t> lastId{-1}; ///< of the last command
    std::atomic<bool> lastAnswered{true}; ///< the last command was answered
    std::atomic<bool> allAnswered{true};  ///< so were those before

    std::mutex mutex;
    std::string refused;
};

Traffic& traffic()
{
    static Traffic theTraffic;
    return theTraffic;
}

std::uint16_t number(const char* packet, std::size_t offset)
{
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(packet[at]); };
    return static_cast<std::uint16_t>(byte(offset) << 8U | byte(offset + 1));
}

void noteSent(const char* packet, std::size_t size)
{
    if (size < kHeaderSize || static_cast<std::uint8_t>(packet[0]) != kCommandKey || number(packet, 2) == kSearch)
        return;
    const std::uint16_t id = number(packet, 6);
    if (id == traffic().lastId)
        return; // a repetition
    if (!traffic().lastAnswered)
        traffic().allAnswered = false;
    traffic().lastAnswered = false;
    traffic().lastId = id;
}

void noteReceived(const char* packet, std::size_t size)
{
    if (size >= kHeaderSize && number(packet, 2) == kSearchAnswer && traffic().searchHandler)
        traffic().searchHandler({packet + kHeaderSize, size - kHeaderSize});
    if (size < kHeaderSize || number(packet, 6) != traffic().lastId)
        return;
    const bool pending = number(packet, 2) == kPendingAnswer;
    if (!pending)
        traffic().lastAnswered = true;
    std::chrono::milliseconds announced{0};
    if (pending && size >= kPendingTimeOffset + sizeof(std::uint16_t))
        announced = std::chrono::milliseconds(number(packet, kPendingTimeOffset));
    traffic().lastAnswer = Clock::now() + std::min(announced, kLongestPending);
    reportAnswer(pending ? Answer::pending : Answer::useful);
}

/// Aravis reads a full-sized answer even if a shorter one arrived. Zeros replace what another camera's answer left in
/// the rest.
void completeSearchAnswer(char* packet, std::size_t size, std::size_t room)
{
    const std::size_t whole = std::min(room, kLargestAnswer);
    if (size >= kHeaderSize && size < whole && number(packet, 2) == kSearchAnswer)
        std::fill(packet + size, packet + whole, '\0');
}

bool receivesAt(int descriptor, std::uint16_t port)
{
    sockaddr_in own{};
    socklen_t size = sizeof own;
    int type = 0;
    socklen_t typeSize = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &typeSize) == 0 && type == SOCK_DGRAM &&
           ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &size) == 0 && own.sin_family == AF_INET &&
           ntohs(own.sin_port) == port;
}

template <class Function> Function* original(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

// Looked up before there are threads.
const auto s_send = original<decltype(g_socket_send_to)>("g_socket_send_to");
const auto s_receive = original<decltype(g_socket_receive)>("g_socket_receive");
const auto s_poll = original<decltype(g_poll)>("g_poll");

} // namespace

void onAnswer(std::function<void(Answer)> handler)
{
    traffic().handler = std::move(handler);
}

void reportAnswer(Answer answer)
{
    traffic().answered = true;
    if (traffic().handler)
        traffic().handler(answer);
}

Clock::time_point lastAnswer()
{
    return traffic().lastAnswer;
}

bool seesAnswers()
{
    return traffic().answered;
}

bool answersEverything()
{
    return traffic().lastId >= 0 && traffic().lastAnswered && traffic().allAnswered;
}

void beginSearch(Clock::time_point end, std::function<void(std::string_view)> handler)
{
    traffic().searchHandler = std::move(handler);
    traffic().searchEnd = end;
    traffic().polled = false;
}

bool endSearch()
{
    traffic().searchHandler = {};
    traffic().searchEnd = Clock::time_point::max();
    return traffic().polled;
}

std::string refusedFile()
{
    const std::lock_guard lock(traffic().mutex);
    return traffic().refused;
}

int socketAt(std::uint16_t port)
{
    constexpr int kMany = 1024; // the process has a few dozen
    for (int descriptor = 0; descriptor < kMany; ++descriptor) {
        if (receivesAt(descriptor, port))
            return descriptor;
    }
    return -1;
}

} // namespace cameralibs::transport

using namespace cameralibs::transport;

extern "C" {

__attribute__((visibility("default"))) gssize g_socket_send_to(GSocket* socket, GSocketAddress* address,
                                                               const gchar* buffer, gsize size,
                                                               GCancellable* cancellable, GError** error)
{
    noteSent(buffer, size);
    return s_send(socket, address, buffer, size, cancellable, error);
}

__attribute__((visibility("default"))) gssize g_socket_receive(GSocket* socket, gchar* buffer, gsize size,
                                                               GCancellable* cancellable, GError** error)
{
    const gssize received = s_receive(socket, buffer, size, cancellable, error);
    if (received > 0)
        noteReceived(buffer, static_cast<std::size_t>(received));
    if (received > 0)
        completeSearchAnswer(buffer, static_cast<std::size_t>(received), size);
    return received;
}

__attribute__((visibility("default"))) gint g_poll(GPollFD* descriptors, guint count, gint timeout)
{
    traffic().polled = true;
    return Clock::now() < traffic().searchEnd.load() ? s_poll(descriptors, count, timeout) : 0;
}

// A camera may name any file as its description.
__attribute__((visibility("default"))) gboolean g_file_get_contents(const gchar* name, gchar** contents, gsize* size,
                                                                    GError** error)
{
    const std::lock_guard lock(traffic().mutex);
    // If the second URL is empty, Aravis passes no name; the first file stays the reason.
    if (name != nullptr)
        traffic().refused = name;
    *contents = nullptr;
    if (size != nullptr)
        *size = 0;
    g_set_error_literal(error, G_FILE_ERROR, G_FILE_ERROR_ACCES, "Local files are not opened");
    return FALSE;
}

} // extern "C"
