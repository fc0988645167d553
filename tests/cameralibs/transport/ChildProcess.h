#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

/// Another program, for as long as this lives.
class ChildProcess {
public:
    explicit ChildProcess(const std::vector<std::string>& command);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// A line that the program prints; empty once it has ended.
    [[nodiscard]] std::string readLine();

    /// Ends it at once, as a pulled cable ends a camera.
    void kill();

    /// Lets it hang, as firmware does, and go on. It no longer runs when stop() returns.
    void stop() const;
    void resume() const;

private:
    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
};
