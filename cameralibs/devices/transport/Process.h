#pragma once

#include "cameralibs/transport/Channel.h"

#include <chrono>
#include <string>

namespace cameralibs {

/// A child process. It inherits only the descriptors of Ends, has default signal handling and a session of its own, so
/// that no signal of a terminal reaches it.
///
/// Only this child is waited for, by a descriptor and not by its number, so it does not matter whether the program
/// handles SIGCHLD, ignores it or waits for children itself.
class Process {
public:
    Process() = default;
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// The descriptors that the child inherits.
    struct Ends {
        transport::Descriptor control; ///< becomes transport::kControlDescriptor
        transport::Descriptor events;  ///< becomes transport::kEventDescriptor
        transport::Descriptor errors;  ///< becomes its standard error; if none, that is /dev/null
    };

    /// Empty on success, else the reason of the failure. The child ends with the thread that calls this function. It
    /// gets only the environment variables that it needs.
    [[nodiscard]] std::string start(const std::string& program, const Ends& ends);

    /// Kills the child if it runs. Thread-safe.
    void kill() const noexcept;

    /// How long the end of a child is waited for. A killed process usually ends sooner, but an uninterruptible call may
    /// delay it. Short enough for closing to take less than a second.
    static constexpr std::chrono::milliseconds kDying{200};

    /// Waits for up to kDying for the end of the child, the second time not at all. Returns how it ended, or an empty
    /// text if that is unknown.
    std::string wait();

    /// Whether the child ends within kDying. Thread-safe.
    [[nodiscard]] bool endsSoon() const noexcept;

    /// Becomes readable when the child has ended; -1 if none was started.
    [[nodiscard]] int handle() const noexcept { return m_handle.get(); }

private:
    bool m_waited = false;
    bool m_ended = false;
    transport::Descriptor m_handle; ///< a pidfd: unlike the number, it is never reused
};

/// The path of the orvocam-transport that belongs to this library, in the build tree or installed.
[[nodiscard]] std::string transportProgram();

} // namespace cameralibs
