// The connection to a transport, as the library's devices use it.

#include "cameralibs/devices/transport/Connection.h"

#include "tests/cameralibs/devices/transport/Transports.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>
#include <string>

#include <sys/syscall.h>
#include <unistd.h>

using namespace cameralibs;

namespace {

/// The reason that the next handler hears.
std::future<std::string> nextReason(Connection& connection)
{
    auto promise = std::make_shared<std::promise<std::string>>();
    connection.onGone([promise](const std::string& reason) { promise->set_value(reason); });
    return promise->get_future();
}

class ConnectionTest : public ::testing::Test {
protected:
    ConnectionTest()
    {
        EXPECT_EQ(::setenv("ORVO_CAMERA_TRANSPORT", TRANSPORT, 1), 0); // NOLINT(concurrency-mt-unsafe)
        const Outcome opened = m_connection.open();
        EXPECT_TRUE(opened.ok()) << opened.text;
    }
    ~ConnectionTest() override { ::unsetenv("ORVO_CAMERA_TRANSPORT"); } // NOLINT(concurrency-mt-unsafe)

    Connection m_connection{"camera"};
};

} // namespace

TEST_F(ConnectionTest, HandlersHearTheReasonBeforeAndAfterTheLoss)
{
    std::future<std::string> early = nextReason(m_connection);
    EXPECT_FALSE(m_connection.gone());
    EXPECT_FALSE(m_connection.endNow("The first reason"));
    EXPECT_FALSE(m_connection.endNow("Another reason"));
    EXPECT_TRUE(m_connection.gone());
    EXPECT_EQ(early.get(), "The first reason");
    std::future<std::string> late = nextReason(m_connection);
    ASSERT_EQ(late.wait_for(std::chrono::seconds(0)), std::future_status::ready) << "at once";
    EXPECT_EQ(late.get(), "The first reason");
}

TEST_F(ConnectionTest, IsGoneWhenTheTransportIsKilled)
{
    std::future<std::string> reason = nextReason(m_connection);
    const auto children = transports();
    ASSERT_EQ(children.size(), 1U);
    EXPECT_EQ(::kill(children[0], SIGKILL), 0);
    EXPECT_NE(reason.get(), "");
    EXPECT_TRUE(m_connection.gone()) << "before anything is asked";
}

TEST_F(ConnectionTest, SignalsDoNotHideASilentTransport)
{
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {}; // without SA_RESTART
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
    std::future<std::string> reason = nextReason(m_connection);
    const auto children = transports();
    ASSERT_EQ(children.size(), 1U);
    EXPECT_EQ(::kill(children[0], SIGSTOP), 0);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    bool noticed = false;
    while (!noticed && std::chrono::steady_clock::now() < end) {
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
            (void)::syscall(SYS_tgkill, ::getpid(), std::stoi(task.path().filename()), SIGUSR1);
        noticed = reason.wait_for(std::chrono::milliseconds(100)) == std::future_status::ready;
    }
    ASSERT_TRUE(noticed);
    EXPECT_EQ(reason.get(), "The transport shows no sign of life");
    EXPECT_EQ(::sigaction(SIGUSR1, &before, nullptr), 0);
}
