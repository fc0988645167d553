// The trial of a stream, with a camera whose images are scripted.

#include "check/cameras/StreamTrial.h"

#include "tests/support/ScriptedCamera.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace check;
using namespace Orvo;

namespace {

constexpr std::uint32_t kWidth = 32;
constexpr std::uint32_t kHeight = 10;

class OpenCamera {
public:
    OpenCamera()
    {
        EXPECT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
        std::uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Cam_Open(0, &m_handle, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    }
    ~OpenCamera()
    {
        EXPECT_EQ(Cam_Close(m_handle), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    }
    OpenCamera(const OpenCamera&) = delete;
    OpenCamera& operator=(const OpenCamera&) = delete;

    [[nodiscard]] CAM_HANDLE handle() const { return m_handle; }

private:
    CAM_HANDLE m_handle = 0;
};

class StreamTrialTest : public ::testing::Test {
protected:
    StreamTrialTest()
    {
        scripted::reset();
        scripted::setImageFormat(kWidth, kHeight, scripted::kMono8);
    }
};

/// A trial in which images with these numbers arrive; 0 stands for an incomplete one.
StreamResult resultOf(const std::vector<std::uint64_t>& numbers)
{
    scripted::onCall("Strm_Stop", [numbers] {
        for (const std::uint64_t number : numbers) {
            EXPECT_TRUE(number == 0 ? scripted::deliverError(CAM_API_STS_MISSING_PACKETS)
                                    : scripted::deliverImage(number));
        }
    });
    const OpenCamera camera;
    return tryStream(camera.handle());
}

} // namespace

TEST_F(StreamTrialTest, NumbersMissingBetweenTwoImagesAreLostImages)
{
    // The first number may be any. Numbers may repeat, and start again.
    const StreamResult result = resultOf({7, 8, 11, 12, 12, 3, 4, 6});
    EXPECT_EQ(result.status, CAM_API_STS_SUCCESS);
    EXPECT_EQ(result.images, 8U);
    EXPECT_EQ(result.lost, 3U) << "9, 10 and 5";
    EXPECT_EQ(result.incomplete, 0U);
    EXPECT_EQ(result.bytes, 8U * kWidth * kHeight);
    EXPECT_GE(result.seconds, 2);
    EXPECT_FALSE(scripted::streaming());
}

TEST_F(StreamTrialTest, IncompleteImagesAreNotLost)
{
    const StreamResult result = resultOf({1, 0, 3, 0, 6});
    EXPECT_EQ(result.images, 3U);
    EXPECT_EQ(result.incomplete, 2U);
    EXPECT_EQ(result.lost, 1U);
}

TEST_F(StreamTrialTest, MoreIncompleteImagesThanMissingNumbersLoseNothing)
{
    const StreamResult result = resultOf({0, 0, 3, 5});
    EXPECT_EQ(result.incomplete, 2U);
    EXPECT_EQ(result.lost, 0U);
}

TEST_F(StreamTrialTest, FailureEndsTheTrialWithItsStatus)
{
    const OpenCamera camera;
    for (const char* const operation : {"Strm_SetCallbackImageAcquired", "Strm_SetCallbackImageError", "Strm_Start"}) {
        SCOPED_TRACE(operation);
        scripted::clearCalls();
        scripted::failCall(operation, CAM_API_STS_NO_MEMORY);
        EXPECT_EQ(tryStream(camera.handle()).status, CAM_API_STS_NO_MEMORY);
        EXPECT_EQ(scripted::callNames().back(), "Strm_Close");
        EXPECT_EQ(scripted::count("Strm_Start"), operation == std::string("Strm_Start") ? 1 : 0);
        EXPECT_EQ(scripted::count("Strm_Stop"), 0);
    }
    scripted::clearCalls();
    scripted::failCall("Strm_OpenSimple", CAM_API_STS_NO_MEMORY);
    EXPECT_EQ(tryStream(camera.handle()).status, CAM_API_STS_NO_MEMORY);
    EXPECT_EQ(scripted::callNames(), std::vector<std::string>{"Strm_OpenSimple"});
}

TEST_F(StreamTrialTest, StreamThatCannotBeStoppedIsAFailure)
{
    const OpenCamera camera;
    scripted::failCall("Strm_Stop", CAM_API_STS_UNSUCCESSFUL);
    EXPECT_EQ(tryStream(camera.handle()).status, CAM_API_STS_UNSUCCESSFUL);
}

TEST_F(StreamTrialTest, CameraThatIsGoneAtTheEndIsAFailure)
{
    const OpenCamera camera;
    scripted::failCall("Strm_GetCurrentBufferIndex", CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(tryStream(camera.handle()).status, CAM_API_STS_CAMERA_NOT_RESPONDING);
}

TEST_F(StreamTrialTest, PacketSizeIsThatOfEitherFeature)
{
    scripted::NodeSpec size;
    size.intValue = 1400;
    for (const char* const name : {"GevSCPSPacketSize", "DeviceStreamChannelPacketSize"}) {
        size.name = name;
        scripted::setNodes({size});
        EXPECT_EQ(packetSizeOf(OpenCamera().handle()), 1400) << name;
    }
    size.name = "Width";
    scripted::setNodes({size});
    EXPECT_FALSE(packetSizeOf(OpenCamera().handle()));
}
