#include "check/machine/Command.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace check {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostOutput = 16U << 20;

/// Starts the program with the end of a pipe as its standard output; -1 on failure.
pid_t start(std::vector<std::string>& command, int output)
{
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    std::array<char*, 1> environment = {};
    pid_t process = -1;
    const int error = ::posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environment.data());
    ::posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
}

/// Up to the end of the output. False if that does not come in time.
bool readAll(int from, std::string& text, Clock::time_point end)
{
    while (text.size() <= kMostOutput) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waited = {from, POLLIN, 0};
        const int ready = left < 0 ? 0 : ::poll(&waited, 1, static_cast<int>(left));
        if (ready == 0)
            return false;
        std::array<char, 4096> part{};
        const ssize_t size = ready < 0 ? -1 : ::read(from, part.data(), part.size());
        if (size == 0)
            return true;
        if (size > 0) {
            text.append(part.data(), static_cast<std::size_t>(size));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return false;
}

/// Whether the program has succeeded. It is killed unless it may and does end in time.
bool succeeds(pid_t process, bool mayEnd, Clock::time_point end)
{
    for (;;) {
        if (!mayEnd || Clock::now() >= end)
            ::kill(process, SIGKILL);
        int status = 0;
        const pid_t ended = ::waitpid(process, &status, WNOHANG);
        if (ended == process)
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (ended < 0 && errno != EINTR)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace

std::optional<std::string> outputOf(std::vector<std::string> command, std::chrono::milliseconds limit)
{
    const Clock::time_point end = Clock::now() + limit;
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return {};
    const pid_t process = start(command, ends[1]);
    ::close(ends[1]);
    std::string text;
    const bool whole = process > 0 && readAll(ends[0], text, end);
    ::close(ends[0]);
    if (process <= 0 || !succeeds(process, whole, end) || !whole)
        return {};
    return text;
}

} // namespace check
