// The times of images: rates, triggers, modes.

#include "camera/OrvoCamUtl.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/BuiltInTest.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

using namespace Orvo;

namespace {

class AcquisitionTest : public MonoTest {
protected:
    // Images per second according to their time stamps.
    [[nodiscard]] static double rateOf(const std::vector<Picture>& pictures)
    {
        const auto span = static_cast<double>(pictures.back().timestampNs - pictures.front().timestampNs);
        return static_cast<double>(pictures.back().number - pictures.front().number) * 1e9 / span;
    }

    // Expects that images eventually arrive at this rate. Retries, because the machine may be busy for a while.
    static void expectRate(StreamRecorder& stream, double rate)
    {
        double measured = 0;
        for (int attempt = 0; attempt < 20 && std::abs(measured / rate - 1) > 0.1; ++attempt) {
            (void)stream.take(2); // the first may still have the old settings
            measured = rateOf(stream.take(static_cast<std::size_t>(rate / 2)));
        }
        EXPECT_NEAR(measured / rate, 1, 0.1);
    }

    // Waits for ten images of another camera. In this time an unwanted image would arrive, even on a busy machine.
    static void waitForUnwantedImages()
    {
        const SimulatedCamera& other = switchedOn(kColour);
        other.setInteger("Width", 320);
        other.setInteger("Height", 240);
        EXPECT_TRUE(StreamRecorder(other.handle()).waitForImages(10));
    }
};

TEST_F(AcquisitionTest, ImagesArriveAtTheRateThatIsSet)
{
    EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionFrameRate"), 60);
    m_camera.setInteger("Width", 320);
    m_camera.setInteger("Height", 240);
    StreamRecorder stream(m_camera.handle());
    for (const double rate : {60.0, 20.0, 100.0}) {
        m_camera.setReal("AcquisitionFrameRate", rate);
        EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionResultingFrameRate"), rate);
        expectRate(stream, rate);
    }
}

TEST_F(AcquisitionTest, FrameNumbersCountFromOneInEveryStart)
{
    StreamRecorder stream(m_camera.handle());
    for (int start = 0; start < 3; ++start) {
        if (start > 0)
            stream.start();
        ASSERT_TRUE(stream.waitForImages(5));
        stream.stop();
        const auto numbers = stream.numbers();
        EXPECT_EQ(numbers.front(), 1U);
        for (std::size_t i = 1; i < numbers.size(); ++i)
            EXPECT_EQ(numbers[i], numbers[i - 1] + 1);
    }
}

TEST_F(AcquisitionTest, LongExposuresLimitTheRate)
{
    m_camera.setReal("ExposureTime", 50000);
    EXPECT_DOUBLE_EQ(m_camera.greatestReal("AcquisitionFrameRate"), 20);
    EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionFrameRate"), 20);
    EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionResultingFrameRate"), 20);
    {
        StreamRecorder stream(m_camera.handle());
        expectRate(stream, 20);
    }
    m_camera.setReal("ExposureTime", 1000);
    EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionFrameRate"), 60) << "the rate that was set applies again";
}

TEST_F(AcquisitionTest, InvalidRatesAreRefused)
{
    const CAM_NODE_HANDLE wanted = m_camera.node("AcquisitionFrameRateWantedReg");
    for (const double rate : {0.0, -5.0, 1e-300, 0.09, 1001.0, std::nan("")}) {
        EXPECT_EQ(Nd_SetFloatValue(m_camera.handle(), wanted, rate, false), CAM_API_STS_INVALID_PARAMETER) << rate;
        EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionResultingFrameRate"), 60) << rate;
    }
    EXPECT_EQ(Nd_SetFloatValue(m_camera.handle(), wanted, 0.1, false), CAM_API_STS_SUCCESS);
    EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionResultingFrameRate"), 0.1);
}

TEST_F(AcquisitionTest, FewerRowsAreFaster)
{
    m_camera.setReal("ExposureTime", 100);
    const double whole = m_camera.greatestReal("AcquisitionFrameRate");
    EXPECT_DOUBLE_EQ(whole, 200);
    m_camera.setInteger("Height", 512);
    EXPECT_DOUBLE_EQ(m_camera.greatestReal("AcquisitionFrameRate"), 2 * whole);
    m_camera.setFlag("AcquisitionFrameRateEnable", false);
    EXPECT_EQ(m_camera.access("AcquisitionFrameRate"), NODE_ACCESS_MODE_NA);
    EXPECT_DOUBLE_EQ(m_camera.real("AcquisitionResultingFrameRate"), 2 * whole);
}

TEST_F(AcquisitionTest, LinkLimitsTheRate)
{
    EXPECT_EQ(m_camera.access("DeviceLinkThroughputLimit"), NODE_ACCESS_MODE_NA);
    m_camera.choose("DeviceLinkThroughputLimitMode", "On");
    m_camera.setInteger("DeviceLinkThroughputLimit", 50000000);
    EXPECT_NEAR(m_camera.real("AcquisitionResultingFrameRate"), 50e6 / (1280 * 1024), 0.01);
}

TEST_F(AcquisitionTest, LinkCarriesTheFullRateOfDeepPixels)
{
    m_camera.setReal("ExposureTime", 100);
    m_camera.choose("PixelFormat", "Mono16");
    EXPECT_DOUBLE_EQ(m_camera.greatestReal("AcquisitionFrameRate"), 200);
}

TEST_F(AcquisitionTest, EachSoftwareTriggerGivesOneImage)
{
    m_camera.choose("TriggerMode", "On");
    bool on = false;
    std::uint32_t source = 0;
    EXPECT_EQ(GetCamTriggerMode(m_camera.handle(), &on), CAM_API_STS_SUCCESS);
    EXPECT_TRUE(on);
    EXPECT_EQ(GetCamTriggerSource(m_camera.handle(), &source), CAM_API_STS_SUCCESS);
    EXPECT_EQ(source, CAM_TRIGGER_SOURCE_SOFTWARE);
    StreamRecorder stream(m_camera.handle());
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 0U);
    for (std::size_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(ExecuteCamSoftwareTrigger(m_camera.handle()), CAM_API_STS_SUCCESS);
        ASSERT_TRUE(stream.waitForImages(i));
    }
    for (int i = 0; i < 5; ++i)
        m_camera.execute("TriggerSoftware");
    ASSERT_TRUE(stream.waitForImages(8));
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 8U);
    m_camera.choose("TriggerMode", "Off");
    EXPECT_TRUE(stream.waitForImages(12));
}

TEST_F(AcquisitionTest, TriggersOfOtherSourcesAreIgnored)
{
    m_camera.choose("TriggerMode", "On");
    EXPECT_EQ(m_camera.access("TriggerActivation"), NODE_ACCESS_MODE_NA);
    m_camera.choose("TriggerSource", "Line0");
    EXPECT_EQ(m_camera.access("TriggerActivation"), NODE_ACCESS_MODE_RW);
    StreamRecorder stream(m_camera.handle());
    m_camera.execute("TriggerSoftware");
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 0U);
    m_camera.choose("TriggerSource", "Software");
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 0U) << "A trigger that came too early is no trigger";
}

TEST_F(AcquisitionTest, WithoutTriggerModeTriggersDoNothing)
{
    m_camera.setReal("AcquisitionFrameRate", 2);
    StreamRecorder stream(m_camera.handle());
    ASSERT_TRUE(stream.waitForImages(1));
    m_camera.execute("TriggerSoftware");
    EXPECT_LT(rateOf(stream.take(3)), 3) << "no image arrived early";
}

TEST_F(AcquisitionTest, PendingTriggersEndWithTheirSource)
{
    m_camera.choose("TriggerMode", "On");
    m_camera.setReal("TriggerDelay", 1000000);
    StreamRecorder stream(m_camera.handle());
    m_camera.execute("TriggerSoftware");
    m_camera.choose("TriggerSource", "Line0");
    m_camera.setReal("TriggerDelay", 0);
    m_camera.choose("TriggerSource", "Software");
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 0U);
}

TEST_F(AcquisitionTest, ImageComesAfterTriggerDelayAndExposure)
{
    m_camera.choose("TriggerMode", "On");
    m_camera.setReal("TriggerDelay", 120000);
    m_camera.setReal("ExposureTime", 80000);
    StreamRecorder stream(m_camera.handle());
    const auto before = std::chrono::steady_clock::now();
    m_camera.execute("TriggerSoftware");
    ASSERT_TRUE(stream.waitForImages(1));
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(200));
}

TEST_F(AcquisitionTest, ModesLimitTheImagesOfAStart)
{
    EXPECT_EQ(m_camera.access("AcquisitionFrameCount"), NODE_ACCESS_MODE_NA);
    m_camera.choose("AcquisitionMode", "MultiFrame");
    m_camera.setInteger("AcquisitionFrameCount", 4);
    StreamRecorder stream(m_camera.handle());
    ASSERT_TRUE(stream.waitForImages(4));
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 4U);
    EXPECT_FALSE(m_camera.flag("AcquisitionStatus"));
    stream.stop();
    m_camera.choose("AcquisitionMode", "SingleFrame");
    stream.start();
    ASSERT_TRUE(stream.waitForImages(1));
    waitForUnwantedImages();
    EXPECT_EQ(stream.imageCount(), 1U);
    m_camera.execute("AcquisitionStart");
    ASSERT_TRUE(stream.waitForImages(2));
    EXPECT_EQ(stream.numbers().back(), 2U) << "Numbers go on within a start of the stream";
}

TEST_F(AcquisitionTest, AcquisitionStopStopsTheImages)
{
    StreamRecorder stream(m_camera.handle());
    ASSERT_TRUE(stream.waitForImages(2));
    EXPECT_TRUE(m_camera.flag("AcquisitionStatus"));
    m_camera.execute("AcquisitionStop");
    waitForUnwantedImages();
    const std::size_t stopped = stream.imageCount();
    waitForUnwantedImages();
    EXPECT_LE(stream.imageCount(), stopped + 1) << "one may have been in progress";
    m_camera.execute("AcquisitionStart");
    EXPECT_TRUE(stream.waitForImages(stopped + 3));
}

TEST_F(AcquisitionTest, SizesAreLockedDuringAcquisition)
{
    const char* const locked[] = {
        "Width", "Height", "PixelFormat", "BinningHorizontal", "AcquisitionMode", "AccessLockedWhileStreaming"};
    {
        const StreamRecorder stream(m_camera.handle());
        for (const char* const name : locked)
            EXPECT_EQ(m_camera.access(name), NODE_ACCESS_MODE_RO) << name;
        EXPECT_EQ(m_camera.access("UserSetLoad"), NODE_ACCESS_MODE_NA);
        EXPECT_EQ(m_camera.access("OffsetX"), NODE_ACCESS_MODE_RW);
        EXPECT_EQ(m_camera.access("ExposureTime"), NODE_ACCESS_MODE_RW);
    }
    for (const char* const name : locked)
        EXPECT_EQ(m_camera.access(name), NODE_ACCESS_MODE_RW) << name;
}

} // namespace
