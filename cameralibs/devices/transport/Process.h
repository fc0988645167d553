#pragma once

#include "cameralibs/transport/Channel.h"

#include <string>

namespace cameralibs {

/// A child that was started with descriptors of its own and nothing else of this process: a session of its own, so that
/// no signal of a terminal reaches it, every signal as at its default, and no other descriptor.
///
/// Only this one child is ever waited for, whatever has become of its number meanwhile. Whether the program handles
/// SIGCHLD, ignores it or waits for children itself makes no difference.
class Process {
public:
    Process() = default;
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// The child's ends of what it is started with.
    struct Ends {
        transport::Descriptor control; ///< becomes transport::kControlDescriptor
        transport::Descriptor events;  ///< becomes transport::kEventDescriptor
        transport::Descriptor errors;  ///< becomes its standard error; none: it has none
    };

    /// Empty where the program runs, else the reason why it does not. A transport ends with the thread that has started
    /// it. Of the environment it is given what it needs.
    [[nodiscard]] std::string start(const std::string& program, const Ends& ends);

    /// Ends it at once, if it runs. Any thread.
    void kill() const noexcept;

    /// Waits a moment for its end, which does not come at once for one in an uninterruptible call. How it ended, where
    /// that can be told.
    std::string wait();

    /// Can be read once the process has ended; -1: it was not started.
    [[nodiscard]] int handle() const noexcept { return m_handle.get(); }

private:
    bool m_ended = false;
    transport::Descriptor m_handle; ///< names the process for good, unlike its number
};

/// orvocam-transport, as it belongs to this library: in the build tree or where it is installed.
[[nodiscard]] std::string transportProgram();

} // namespace cameralibs
