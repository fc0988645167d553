#include "HeldUpNews.h"

#include "FakeUsb.h"

#include "tests/cameralibs/api/CameraAccess.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <condition_variable>
#include <mutex>

namespace {

/// What the thread and the test tell each other. Never destroyed: GLib unlocks to the very end.
struct Meeting {
    std::mutex mutex;
    std::condition_variable changed;
    int unlocksToGo = 0; ///< 0: nobody waits for the moment
    bool held = false;
};

Meeting& meeting()
{
    static auto& theMeeting = *new Meeting; // NOLINT(cppcoreguidelines-owning-memory)
    return theMeeting;
}

void countUnlock()
{
    std::unique_lock lock(meeting().mutex);
    if (meeting().unlocksToGo == 0 || --meeting().unlocksToGo != 0)
        return;
    meeting().held = true;
    meeting().changed.wait(lock, [] { return !meeting().held; });
}

} // namespace

extern "C" __attribute__((visibility("default"))) void g_mutex_unlock(GMutex* mutex)
{
    static const auto unlock = reinterpret_cast<void (*)(GMutex*)>(::dlsym(RTLD_NEXT, "g_mutex_unlock"));
    unlock(mutex);
    if (usb::tellsOfRemoval())
        countUnlock();
}

HeldUpNews::HeldUpNews(int moment)
    : m_toldBefore(usb::removalsTold())
{
    const std::lock_guard lock(meeting().mutex);
    meeting().unlocksToGo = moment;
}

HeldUpNews::~HeldUpNews()
{
    goOn();
    waitUntilTold();
}

bool HeldUpNews::waitForMoment() const
{
    const auto held = [] {
        const std::lock_guard lock(meeting().mutex);
        return meeting().held;
    };
    EXPECT_TRUE(becomes([&] { return held() || usb::removalsTold() > m_toldBefore; }));
    return held();
}

void HeldUpNews::goOn()
{
    const std::lock_guard lock(meeting().mutex);
    meeting().unlocksToGo = 0;
    meeting().held = false;
    meeting().changed.notify_all();
}

void HeldUpNews::waitUntilTold() const
{
    EXPECT_TRUE(becomes([&] { return usb::removalsTold() > m_toldBefore; }));
}
