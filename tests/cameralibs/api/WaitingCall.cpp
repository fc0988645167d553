#include "tests/cameralibs/api/WaitingCall.h"

#include "tests/cameralibs/api/CameraAccess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <utility>

using namespace Orvo;

namespace {

/// Whether a thread sleeps. `folder` is its folder in /proc.
bool sleeps(const std::filesystem::path& folder)
{
    std::ifstream file(folder / "stat");
    std::string line;
    std::getline(file, line);
    // The state follows the name, which is in parentheses and may contain any character.
    const auto name = line.rfind(") ");
    return name != std::string::npos && line.at(name + 2) == 'S';
}

} // namespace

WaitingCall::WaitingCall(Call call)
{
    std::packaged_task<CAM_API_STATUS()> task(std::move(call));
    m_result = task.get_future();
    std::promise<std::filesystem::path> place;
    auto folder = place.get_future();
    std::thread([task = std::move(task), place = std::move(place)]() mutable {
        place.set_value("/proc" / std::filesystem::read_symlink("/proc/thread-self"));
        task();
    }).detach();
    EXPECT_TRUE(becomes([this, path = folder.get()] { return sleeps(path) || returned(std::chrono::seconds(0)); }));
}

CAM_API_STATUS WaitingCall::result()
{
    if (returned(kPatience))
        return m_result.get();
    ADD_FAILURE() << "The call is still waiting.";
    return CAM_API_STS_TIMEOUT;
}

bool WaitingCall::returned(std::chrono::seconds within) const
{
    return m_result.wait_for(within) == std::future_status::ready;
}
