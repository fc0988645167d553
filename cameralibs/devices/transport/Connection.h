#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/transport/Process.h"
#include "cameralibs/transport/Channel.h"

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace cameralibs {

/// A transport of one's own, and what is said to it. It is gone when its process has ended, has said that it lost its
/// camera, has said what it must not say, or has kept anybody waiting for longer than it may. From then on nothing that
/// is asked of it waits. Any thread.
class Connection {
public:
    /// Programs take longer to start with a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr bool kSanitized = true;
#else
    static constexpr bool kSanitized = false;
#endif

    /// How long an answer may take.
    struct Limits {
        std::chrono::milliseconds silence; ///< without any sign that the camera answers
        std::chrono::milliseconds total; ///< for a camera that asks for patience, or for a step that takes many answers
    };

    /// The name of the camera is what its log lines bear.
    explicit Connection(std::string camera);

    /// Starts the transport. Comes first, once; fails with CAM_API_STS_CAMERA_NOT_RESPONDING and the reason.
    [[nodiscard]] Outcome open();

    /// Closes politely within the time there is, then ends the process.
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// What a reply is to whoever waits for it: the last one, one before others, or one that must not come.
    enum class Heard { last, more, wrong };
    using ReplyHandler = std::function<Heard(const transport::Packet& reply)>;

    /// False where the transport is gone, at the latest since the request.
    template <class Body>
    [[nodiscard]] bool request(transport::Kind kind, const Body& body, const Limits& limits,
                               const ReplyHandler& handler, std::string_view data = {}, int descriptor = -1)
    {
        const std::lock_guard lock(m_requests);
        if (gone())
            return false;
        if (!m_control.send(kind, body, data, descriptor))
            return endNow("It takes no requests");
        return awaitReplies(limits, handler);
    }

    /// One whose only answer is done: its status, which is CAM_API_STS_CAMERA_NOT_RESPONDING where the transport is
    /// gone.
    template <class Body>
    [[nodiscard]] Outcome requestDone(transport::Kind kind, const Body& body, const Limits& limits, int descriptor = -1)
    {
        Outcome outcome{Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, {}};
        (void)request(
            kind, body, limits, [&](const auto& reply) { return readDone(reply, outcome); }, {}, descriptor);
        return outcome;
    }

    [[nodiscard]] bool gone() const noexcept
    {
        return m_gone.load(std::memory_order_acquire);
    }

    /// Ends the process; `reason` is for the log. Always false.
    bool endNow(std::string_view reason) noexcept;

    /// Whatever waits for the transport does so until `time` at most.
    void endBy(transport::Clock::time_point time);

    /// The same until relax(). Meanwhile a camera that asks for patience gets none.
    void hurry(transport::Clock::time_point end);
    void relax();

    /// Ends the process at once, unless relax() has told that opening is over: then it is to be closed politely.
    void cancel();

    /// Runs once, on any thread, as soon as the transport is gone unasked; at once where it is.
    void onGone(std::function<void(const std::string& reason)> handler);

    /// A socket pair: one end for here, one for the transport. False where there is none.
    [[nodiscard]] static bool makeChannel(transport::Channel& here, transport::Descriptor& there);

private:
    [[nodiscard]] std::string start();
    [[nodiscard]] bool startProcess(const std::string& program, const Process::Ends& ends,
                                    std::promise<std::string>& started);
    [[nodiscard]] std::string exchangeHello();
    [[nodiscard]] bool awaitReplies(const Limits& limits, const ReplyHandler& handler);
    [[nodiscard]] static Heard readDone(const transport::Packet& reply, Outcome& outcome);
    void watch(transport::Packet& packet) noexcept;
    void watchWhileItLives(transport::Packet& packet);
    void wakeWatcher() const;
    [[nodiscard]] bool inHurry();
    [[nodiscard]] bool readEvent(transport::Packet& packet);
    [[nodiscard]] bool readErrors();
    void logLine(std::string_view line) const noexcept;
    void tellGone() noexcept;

    const std::string m_camera; ///< in the diagnostic log
    Process m_process;
    transport::Channel m_events;
    transport::Descriptor m_errors;     ///< the read end of its standard error
    const transport::Descriptor m_wake; ///< wakes the watching thread
    std::thread m_watcher;

    std::mutex m_requests; ///< held from request to reply
    transport::Channel m_control;
    transport::Packet m_reply;

    std::atomic<bool> m_gone{false};
    std::mutex m_mutex; ///< guards what follows
    bool m_closing = false;
    bool m_told = false; ///< the handler has run, or there is nothing to tell any more
    transport::Clock::time_point m_end = transport::Clock::time_point::max();
    bool m_opened = false;                                                         ///< relaxed once
    transport::Clock::time_point m_hurryEnd = transport::Clock::time_point::max(); ///< not max: in a hurry
    std::string m_reason;
    std::function<void(const std::string&)> m_goneHandler;

    std::string m_line; ///< of its standard error, begun; the watching thread's
};

/// A status that a transport tells, as far as the camera API knows it.
[[nodiscard]] Orvo::CAM_API_STATUS knownStatus(std::uint32_t status);

} // namespace cameralibs
