#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/transport/Process.h"
#include "cameralibs/transport/Channel.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace cameralibs {

/// A transport process and the channels to it. It is gone when its process has ended, has reported the loss of its
/// camera, has violated the protocol or has exceeded a time limit. From then on every request fails at once.
/// Thread-safe.
class Connection {
public:
    /// Programs start more slowly with a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr bool kSanitized = true;
#else
    static constexpr bool kSanitized = false;
#endif

    /// Time limits of a request.
    struct Limits {
        std::chrono::milliseconds silence; ///< without any answer of the camera
        std::chrono::milliseconds total;   ///< with pending acknowledgements, or for a request that takes many answers
    };

    /// `camera` is the name for log lines.
    explicit Connection(std::string camera);

    /// Starts the transport. To be called once, before the functions below. Fails with
    /// CAM_API_STS_CAMERA_NOT_RESPONDING and the reason.
    [[nodiscard]] Outcome open();

    /// Asks the transport to release the camera, within the remaining time, then kills the process.
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// What a handler says about a reply: it is the last one, more will follow, or it is invalid.
    enum class ReplyKind { last, more, invalid };
    using ReplyHandler = std::function<ReplyKind(const transport::Packet& reply)>;

    /// Sends a request and passes the replies to `handler`. False if the transport is gone.
    template <class Body>
    [[nodiscard]] bool request(transport::Kind kind, const Body& body, const Limits& limits,
                               const ReplyHandler& handler, std::string_view data = {}, int descriptor = -1)
    {
        const std::lock_guard lock(m_requests);
        if (gone())
            return false;
        if (!m_control.send(kind, body, data, descriptor))
            return endNow("The transport accepts no requests");
        return awaitReplies(limits, handler);
    }

    /// A request whose only reply is done. Returns its status, or CAM_API_STS_CAMERA_NOT_RESPONDING if the transport is
    /// gone.
    template <class Body>
    [[nodiscard]] Outcome requestDone(transport::Kind kind, const Body& body, const Limits& limits, int descriptor = -1)
    {
        Outcome outcome;
        const bool answered = request(
            kind, body, limits, [&](const auto& reply) { return readDone(reply, outcome); }, {}, descriptor);
        return answered ? outcome : Outcome{Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, reasonOfLoss()};
    }

    [[nodiscard]] bool gone() const noexcept
    {
        return m_gone.load(std::memory_order_acquire);
    }

    /// Kills the process; `reason` is logged. Always returns false.
    bool endNow(std::string_view reason) noexcept;

    /// The same for a channel that the transport has closed. Usually it has done so by ending, and then how it ended is
    /// the reason.
    bool endAsClosed() noexcept;

    /// Why the transport is gone. To be called after a failed request. Waits briefly until the reason is known; empty
    /// if it remains unknown.
    [[nodiscard]] std::string reasonOfLoss();

    /// Limits every wait for the transport to `time`.
    void endBy(transport::Clock::time_point time);

    /// Like endBy(), but only until relax(). Meanwhile pending acknowledgements do not extend the time limits.
    void hurry(transport::Clock::time_point end);
    void relax();

    /// Kills the process, but only while the camera is being opened, which the first relax() ends. An open camera is to
    /// be released properly.
    void cancel();

    /// The handler runs once, on any thread, when the transport is gone without having been closed; at once if it is
    /// gone already.
    void onGone(std::function<void(const std::string& reason)> handler);

    /// Creates a socket pair with one end for the transport. False on failure.
    [[nodiscard]] static bool makeChannel(transport::Channel& here, transport::Descriptor& there);

private:
    [[nodiscard]] std::string start();
    [[nodiscard]] bool startProcess(const std::string& program, const Process::Ends& ends,
                                    std::promise<std::string>& started);
    [[nodiscard]] std::string exchangeHello();
    [[nodiscard]] bool awaitReplies(const Limits& limits, const ReplyHandler& handler);
    [[nodiscard]] static ReplyKind readDone(const transport::Packet& reply, Outcome& outcome);
    void watch(transport::Packet& packet) noexcept;
    void watchUntilGone(transport::Packet& packet);
    void wakeWatcher() const;
    [[nodiscard]] bool inHurry();
    [[nodiscard]] bool readEvent(transport::Packet& packet);
    [[nodiscard]] bool readErrors();
    void logLine(std::string_view line) const noexcept;
    void reportLoss() noexcept;

    const std::string m_camera; ///< in the diagnostic log
    Process m_process;
    transport::Channel m_events;
    transport::Descriptor m_errors;     ///< the read end of its standard error
    const transport::Descriptor m_wake; ///< an eventfd that wakes the watching thread
    std::thread m_watcher;

    std::mutex m_requests; ///< held from a request to its last reply
    transport::Channel m_control;
    transport::Packet m_reply;

    std::atomic<bool> m_gone{false};
    std::mutex m_mutex; ///< guards the members below
    bool m_closing = false;
    bool m_reported = false; ///< the reason is final; the handler runs next, or never
    std::condition_variable m_reportedChanged;
    transport::Clock::time_point m_end = transport::Clock::time_point::max();
    bool m_opened = false;                                                         ///< relax() has been called
    transport::Clock::time_point m_hurryEnd = transport::Clock::time_point::max(); ///< max if there is no limit
    std::string m_reason;
    std::function<void(const std::string&)> m_goneHandler;

    std::string m_line; ///< the incomplete last line of its standard error; used by the watching thread only
};

/// Replaces a status that the camera API does not have.
[[nodiscard]] Orvo::CAM_API_STATUS knownStatus(std::uint32_t status);

} // namespace cameralibs
