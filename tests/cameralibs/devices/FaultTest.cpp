// The faults that can be simulated.

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/BuiltInTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

using namespace Orvo;
using ::testing::Contains;
using ::testing::Each;
using ::testing::Not;

namespace {

class FaultTest : public MonoTest {};

constexpr int kLongBurst = 1'000'000;

/// A long burst of errors from a camera that sends no images. `onError` is called for each one, with a node of the
/// camera.
class BurstStream {
public:
    using Reaction = void (*)(CAM_HANDLE camera, CAM_NODE_HANDLE node);

    BurstStream(const SimulatedCamera& camera, const char* node, Reaction onError)
        : m_camera(camera)
        , m_node(camera.node(node))
        , m_onError(onError)
    {
        camera.choose("TriggerMode", "On");
        EXPECT_EQ(Strm_OpenSimple(camera.handle(), &m_stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Strm_SetCallbackImageError(m_stream, this, callback), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
        camera.setInteger("SimulationErrorBurst", kLongBurst);
        EXPECT_TRUE(becomes([this] { return m_errors > 0; }));
    }
    ~BurstStream() { EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS); }
    BurstStream(const BurstStream&) = delete;
    BurstStream& operator=(const BurstStream&) = delete;

    void stop() const { EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS); }
    [[nodiscard]] int errors() const { return m_errors; }

private:
    static void callback(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void* context)
    {
        auto& self = *static_cast<BurstStream*>(context);
        ++self.m_errors;
        self.m_onError(self.m_camera.handle(), self.m_node);
    }

    const SimulatedCamera& m_camera;
    const CAM_NODE_HANDLE m_node;
    const Reaction m_onError;
    CAM_STRM_HANDLE m_stream = 0;
    std::atomic<int> m_errors{0};
};

TEST(UnplugTest, UnpluggedCameraFailsEveryOperation)
{
    const Library library("2");
    const SimulatedCamera camera(kMono);
    const SimulatedCamera other(kColour);
    const CAM_NODE_HANDLE width = camera.node("Width");
    StreamRecorder stream(camera.handle());
    ASSERT_TRUE(stream.waitForImages(2));
    EXPECT_EQ(Sys_WaitForSignal(camera.removal(), 0), CAM_API_STS_TIMEOUT);
    camera.execute("SimulationUnplug");
    EXPECT_EQ(Sys_WaitForSignal(camera.removal(), 0), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(camera.handle(), width, &value), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Nd_SetIntValue(camera.handle(), width, 640, true), CAM_API_STS_CAMERA_NOT_RESPONDING);
    CAM_HANDLE again = 0;
    EXPECT_EQ(Cam_Open(kMono, &again, 0, 1, nullptr, 1), CAM_API_STS_CAMERA_NOT_RESPONDING);
    const std::size_t count = stream.imageCount();
    EXPECT_TRUE(StreamRecorder(other.handle()).waitForImages(10)) << "the other camera is not affected";
    EXPECT_LE(stream.imageCount(), count + 1);
    EXPECT_EQ(Library::enumerate(), 1U);
    EXPECT_STREQ(Library::info(0).serialNumber, "SIM-2");
}

TEST(UnplugTest, UnpluggedCameraComesBack)
{
    const Library library("1");
    {
        const SimulatedCamera camera(0);
        camera.setText("DeviceUserID", "Left");
        camera.setInteger("Width", 640);
        camera.setInteger("SimulationReplugAfter", 3);
        camera.execute("SimulationUnplug");
        EXPECT_EQ(Library::enumerate(), 0U);
        ASSERT_TRUE(becomes([] { return Library::enumerate() == 1; }));
        CAM_NODE_HANDLE width = 0;
        EXPECT_EQ(Nd_GetNode(camera.handle(), "Width", &width), CAM_API_STS_CAMERA_NOT_RESPONDING)
            << "the old handle stays removed";
    }
    const SimulatedCamera camera(0);
    EXPECT_EQ(camera.text("DeviceUserID"), "Left");
    EXPECT_EQ(camera.integer("Width"), 1280) << "Switched on anew";
    EXPECT_GE(StreamRecorder(camera.handle()).take(2).size(), 2U);
}

TEST_F(FaultTest, EveryNthImageIsLost)
{
    StreamRecorder stream(m_camera.handle());
    stream.stop();
    m_camera.setInteger("SimulationLoseEvery", 3);
    stream.start();
    ASSERT_TRUE(stream.waitForImages(12));
    stream.stop();
    const auto numbers = stream.numbers();
    std::uint64_t expected = 0;
    for (const std::uint64_t number : numbers) {
        expected += (expected + 1) % 3 == 0 ? 2 : 1;
        EXPECT_EQ(number, expected);
    }
    EXPECT_TRUE(stream.errors().empty());
}

TEST_F(FaultTest, EveryNthImageIsIncomplete)
{
    StreamRecorder stream(m_camera.handle());
    stream.stop();
    m_camera.setInteger("SimulationIncompleteEvery", 4);
    stream.start();
    ASSERT_TRUE(stream.waitForErrors(3));
    stream.stop();
    EXPECT_THAT(stream.errors(), Each(CAM_API_STS_MISSING_PACKETS));
    const auto numbers = stream.numbers();
    for (const std::uint64_t number : numbers)
        EXPECT_NE(number % 4, 0U);
    EXPECT_THAT(numbers, Contains(5U));
}

TEST_F(FaultTest, ErrorBurstSendsThatManyErrors)
{
    m_camera.choose("TriggerMode", "On"); // no images
    StreamRecorder stream(m_camera.handle());
    m_camera.setInteger("SimulationErrorBurst", 25);
    ASSERT_TRUE(stream.waitForErrors(25));
    m_camera.setInteger("SimulationErrorBurst", 5);
    ASSERT_TRUE(stream.waitForErrors(30));
    EXPECT_EQ(stream.errors().size(), 30U);
    EXPECT_THAT(stream.errors(), Each(Not(CAM_API_STS_SUCCESS)));
    stream.stop();
    m_camera.setInteger("SimulationErrorBurst", 7);
    stream.start();
    m_camera.setInteger("SimulationErrorBurst", 1);
    ASSERT_TRUE(stream.waitForErrors(1));
    EXPECT_EQ(stream.errors().size(), 1U) << "Nobody was there to hear the seven";
}

TEST_F(FaultTest, StoppingEndsABurst)
{
    // The first callback returns once stopping has begun.
    const BurstStream stream(m_camera, "AcquisitionStatus", [](CAM_HANDLE camera, CAM_NODE_HANDLE status) {
        bool active = true;
        EXPECT_TRUE(
            becomes([&] { return Nd_GetBoolValue(camera, status, &active) != CAM_API_STS_SUCCESS || !active; }));
    });
    stream.stop();
    EXPECT_LT(stream.errors(), kLongBurst);
}

TEST(UnplugTest, UnpluggingEndsABurst)
{
    const Library library("1");
    const SimulatedCamera camera(0);
    const BurstStream stream(camera, "SimulationUnplug",
                             [](CAM_HANDLE lost, CAM_NODE_HANDLE unplug) { (void)Nd_CmdExecute(lost, unplug); });
    ASSERT_EQ(Sys_WaitForSignal(camera.removal(), 60000), CAM_API_STS_SUCCESS);
    stream.stop();
    EXPECT_EQ(stream.errors(), 1);
}

TEST_F(FaultTest, AccessesAreDelayed)
{
    m_camera.setInteger("SimulationAccessDelay", 40000);
    const auto before = std::chrono::steady_clock::now();
    (void)m_camera.integer("IntegerPureNumber");
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(40));
    m_camera.setInteger("SimulationAccessDelay", 0);
    EXPECT_EQ(m_camera.integer("SimulationAccessDelay"), 0);
}

TEST_F(FaultTest, AccessesAreRefused)
{
    const CAM_NODE_HANDLE number = m_camera.node("IntegerPureNumber");
    StreamRecorder stream(m_camera.handle());
    ASSERT_TRUE(stream.waitForImages(1));
    m_camera.setFlag("SimulationRefuseAccess", true);
    std::int64_t value = 77;
    EXPECT_EQ(Nd_GetIntValue(m_camera.handle(), number, &value), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(Nd_SetIntValue(m_camera.handle(), number, 1, true), CAM_API_STS_ACCESS_DENIED);
    EXPECT_TRUE(m_camera.flag("SimulationRefuseAccess"));
    EXPECT_TRUE(stream.waitForImages(stream.imageCount() + 5)) << "images still arrive";
    m_camera.setFlag("SimulationRefuseAccess", false);
    EXPECT_EQ(m_camera.integer("IntegerPureNumber"), 12345);
    EXPECT_EQ(Sys_WaitForSignal(m_camera.removal(), 0), CAM_API_STS_TIMEOUT) << "the camera is not removed";
}

} // namespace
