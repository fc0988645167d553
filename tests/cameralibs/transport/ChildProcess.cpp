#include "tests/cameralibs/transport/ChildProcess.h"

#include <gtest/gtest.h>

#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

ChildProcess::ChildProcess(const std::vector<std::string>& command)
{
    int input[2] = {-1, -1};
    int output[2] = {-1, -1};
    EXPECT_EQ(::pipe2(input, O_CLOEXEC), 0);
    EXPECT_EQ(::pipe2(output, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    EXPECT_EQ(::posix_spawnp(&m_pid, arguments[0], &actions, nullptr, arguments.data(), environ), 0) << command[0];
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);
    m_input = input[1];
    m_output = output[0];
}

ChildProcess::~ChildProcess()
{
    kill();
    ::close(m_input);
    ::close(m_output);
}

std::string ChildProcess::readLine()
{
    std::string line;
    char c = 0;
    while (::read(m_output, &c, 1) == 1 && c != '\n')
        line += c;
    return line;
}

void ChildProcess::stop() const
{
    ::kill(m_pid, SIGSTOP);
    // It may run on for a moment after the signal has been sent.
    siginfo_t state{};
    EXPECT_EQ(::waitid(P_PID, static_cast<id_t>(m_pid), &state, WSTOPPED), 0);
    EXPECT_EQ(state.si_code, CLD_STOPPED);
}

void ChildProcess::resume() const
{
    ::kill(m_pid, SIGCONT);
}

void ChildProcess::kill()
{
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}
