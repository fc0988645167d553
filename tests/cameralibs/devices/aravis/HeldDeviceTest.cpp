#include "cameralibs/devices/aravis/HeldDevice.h"

#include <arv.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

using namespace orvo;

namespace {

class HeldDeviceTest : public testing::Test {
protected:
    explicit HeldDeviceTest(std::chrono::milliseconds patience = std::chrono::seconds(30))
    {
        GObjectPointer<ArvDevice> device(arv_fake_device_new("1", nullptr));
        g_object_weak_ref(
            G_OBJECT(device.get()),
            [](void* self, GObject*) { static_cast<HeldDeviceTest*>(self)->m_giver = std::this_thread::get_id(); },
            this);
        m_held = std::make_unique<HeldDevice>(std::move(device), patience);
    }

    std::unique_ptr<HeldDevice> m_held;
    std::atomic<std::thread::id> m_giver{}; ///< the thread that gave the device back, once it is
};

class ImpatientHeldDeviceTest : public HeldDeviceTest {
protected:
    ImpatientHeldDeviceTest()
        : HeldDeviceTest(std::chrono::milliseconds(10))
    {
    }
};

} // namespace

TEST_F(HeldDeviceTest, GivenBackAtItsEnd)
{
    EXPECT_TRUE(m_held->letGo());
    EXPECT_EQ(m_giver.load(), std::thread::id());
    m_held.reset();
    EXPECT_EQ(m_giver.load(), std::this_thread::get_id());
}

TEST_F(HeldDeviceTest, NeedsNotBeLetGoFirst)
{
    m_held.reset();
    EXPECT_EQ(m_giver.load(), std::this_thread::get_id());
}

TEST_F(HeldDeviceTest, NeverGivenBackByAnotherHolder)
{
    ArvDevice* const other = m_held->get();
    g_object_ref(other);
    EXPECT_FALSE(m_held->letGo());
    std::thread thread([other] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // more than a destructor takes that does not wait
        g_object_unref(other);
    });
    m_held.reset();
    EXPECT_EQ(m_giver.load(), std::this_thread::get_id());
    thread.join();
}

TEST_F(ImpatientHeldDeviceTest, NobodyWaitsForEverForAReferenceThatIsLost)
{
    ArvDevice* const other = m_held->get();
    g_object_ref(other);
    m_held = nullptr;
    EXPECT_EQ(m_giver.load(), std::thread::id()) << "not while it is held";
    g_object_unref(other);
    EXPECT_EQ(m_giver.load(), std::this_thread::get_id());
}
