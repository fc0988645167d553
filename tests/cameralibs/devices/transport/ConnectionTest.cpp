// The connection to a transport, as the library's devices use it.

#include "cameralibs/devices/transport/Connection.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <string>

using namespace cameralibs;

namespace {

/// The reason that the next handler hears.
std::future<std::string> nextReason(Connection& connection)
{
    auto promise = std::make_shared<std::promise<std::string>>();
    connection.onGone([promise](const std::string& reason) { promise->set_value(reason); });
    return promise->get_future();
}

} // namespace

TEST(ConnectionTest, HandlersHearTheReasonBeforeAndAfterTheLoss)
{
    ASSERT_EQ(::setenv("ORVO_CAMERA_TRANSPORT", TRANSPORT, 1), 0);
    Connection connection("camera");
    const Outcome opened = connection.open();
    ASSERT_TRUE(opened.ok()) << opened.text;
    std::future<std::string> early = nextReason(connection);
    EXPECT_FALSE(connection.gone());
    EXPECT_FALSE(connection.endNow("The first reason"));
    EXPECT_FALSE(connection.endNow("Another reason"));
    EXPECT_TRUE(connection.gone());
    EXPECT_EQ(early.get(), "The first reason");
    std::future<std::string> late = nextReason(connection);
    ASSERT_EQ(late.wait_for(std::chrono::seconds(0)), std::future_status::ready) << "at once";
    EXPECT_EQ(late.get(), "The first reason");
}
