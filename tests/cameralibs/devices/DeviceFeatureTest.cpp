// Features that have effects other than changing the image.

#include "tests/cameralibs/api/CameraAccess.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/BuiltInTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

using namespace Orvo;

namespace {

class DeviceFeatureTest : public MonoTest {};

TEST_F(DeviceFeatureTest, TemperatureChanges)
{
    const double first = m_camera.real("DeviceTemperature");
    EXPECT_GT(first, 20);
    EXPECT_LT(first, 60);
    EXPECT_TRUE(becomes([&] { return m_camera.real("DeviceTemperature") != first; }));
    m_camera.choose("DeviceTemperatureSelector", "Mainboard");
    EXPECT_LT(m_camera.real("DeviceTemperature"), first - 1);
}

TEST_F(DeviceFeatureTest, ClockRunsAndProvidesTheTimeStamps)
{
    const std::int64_t before = m_camera.integer("Timestamp");
    const Picture picture = takePicture(m_camera.handle());
    m_camera.execute("TimestampLatch");
    const std::int64_t latched = m_camera.integer("TimestampLatchValue");
    EXPECT_GT(static_cast<std::int64_t>(picture.timestampNs), before);
    EXPECT_LT(static_cast<std::int64_t>(picture.timestampNs), latched);
    EXPECT_EQ(m_camera.integer("TimestampLatchValue"), latched);
    m_camera.execute("TimestampReset");
    m_camera.execute("TimestampLatch");
    EXPECT_LT(m_camera.integer("TimestampLatchValue"), latched);
}

TEST_F(DeviceFeatureTest, AutomaticExposureAndGainKeepTheBrightness)
{
    m_camera.setReal("Gain", 6);
    m_camera.choose("ExposureAuto", "Once");
    EXPECT_EQ(m_camera.choice("ExposureAuto"), "Off");
    EXPECT_NEAR(m_camera.real("ExposureTime"), 10000 / std::pow(10, 6 / 20.0), 1);
    m_camera.choose("ExposureAuto", "Continuous");
    EXPECT_EQ(m_camera.access("ExposureTime"), NODE_ACCESS_MODE_RO);
    m_camera.setReal("Gain", 20);
    EXPECT_NEAR(m_camera.real("ExposureTime"), 1000, 1);
    m_camera.choose("ExposureAuto", "Off");
    m_camera.choose("GainAuto", "Continuous");
    m_camera.setReal("ExposureTime", 5000);
    EXPECT_NEAR(m_camera.real("Gain"), 6, 0.05);
    EXPECT_EQ(m_camera.access("Gain"), NODE_ACCESS_MODE_RO);
}

TEST_F(DeviceFeatureTest, AcquisitionStartCannotBeTriggered)
{
    const CAM_NODE_HANDLE selector = m_camera.node("TriggerSelector");
    const auto entries = m_camera.entries("TriggerSelector");
    const auto found = std::find(entries.begin(), entries.end(), "AcquisitionStart");
    ASSERT_NE(found, entries.end());
    CAM_NODE_HANDLE entry = 0;
    NodeAccessMode access = NODE_ACCESS_MODE_UNDEFINED;
    ASSERT_EQ(Nd_GetEnumEntryByIndex(m_camera.handle(), selector, static_cast<std::uint32_t>(found - entries.begin()),
                                     &entry),
              CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_GetAccessMode(m_camera.handle(), entry, &access), CAM_API_STS_SUCCESS);
    EXPECT_EQ(access, NODE_ACCESS_MODE_NA);
    const std::string before = m_camera.choice("TriggerSelector");
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera.handle(), selector, "AcquisitionStart"), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(m_camera.choice("TriggerSelector"), before);
}

TEST_F(DeviceFeatureTest, UserSetsAreSavedAndLoaded)
{
    m_camera.setInteger("Width", 640);
    m_camera.setReal("Gain", 3);
    m_camera.choose("UserSetSelector", "UserSet1");
    m_camera.execute("UserSetSave");
    m_camera.choose("UserSetSelector", "Default");
    EXPECT_EQ(m_camera.access("UserSetSave"), NODE_ACCESS_MODE_NA);
    m_camera.execute("UserSetLoad");
    EXPECT_EQ(m_camera.integer("Width"), 1280);
    EXPECT_DOUBLE_EQ(m_camera.real("Gain"), 0);
    EXPECT_EQ(m_camera.integer("PayloadSize"), 1280 * 1024);
    m_camera.choose("UserSetSelector", "UserSet1");
    m_camera.execute("UserSetLoad");
    EXPECT_EQ(m_camera.integer("Width"), 640);
    EXPECT_DOUBLE_EQ(m_camera.real("Gain"), 3);
    EXPECT_EQ(m_camera.integer("PayloadSize"), 640 * 1024);
}

TEST_F(DeviceFeatureTest, BinningIsPartOfAUserSet)
{
    m_camera.setInteger("BinningHorizontal", 2);
    m_camera.choose("UserSetSelector", "UserSet0");
    m_camera.execute("UserSetSave");
    m_camera.execute("DeviceReset");
    EXPECT_EQ(m_camera.integer("WidthMax"), 1280);
    m_camera.choose("UserSetSelector", "UserSet0");
    m_camera.execute("UserSetLoad");
    EXPECT_EQ(m_camera.integer("BinningHorizontal"), 2);
    EXPECT_EQ(m_camera.integer("WidthMax"), 640);
    EXPECT_EQ(m_camera.integer("Width"), 640);
}

TEST_F(DeviceFeatureTest, LinesShowTheirSource)
{
    m_camera.choose("LineSelector", "Line2");
    EXPECT_EQ(m_camera.choice("LineMode"), "Output");
    m_camera.choose("LineSource", "UserOutput1");
    EXPECT_FALSE(m_camera.flag("LineStatus"));
    m_camera.setInteger("UserOutputValueAll", 2);
    m_camera.choose("UserOutputSelector", "UserOutput1");
    EXPECT_TRUE(m_camera.flag("UserOutputValue"));
    EXPECT_TRUE(m_camera.flag("LineStatus"));
    EXPECT_EQ(m_camera.integer("LineStatusAll"), 4);
    m_camera.setFlag("UserOutputValue", false);
    EXPECT_EQ(m_camera.integer("UserOutputValueAll"), 0);
    m_camera.setFlag("LineInverter", true);
    EXPECT_TRUE(m_camera.flag("LineStatus"));
    m_camera.choose("LineSelector", "Line0");
    EXPECT_EQ(m_camera.choice("LineMode"), "Input");
    EXPECT_EQ(m_camera.access("LineSource"), NODE_ACCESS_MODE_NA);
    EXPECT_FALSE(m_camera.flag("LineInverter"));
}

TEST_F(DeviceFeatureTest, CountersCountImages)
{
    m_camera.choose("TriggerMode", "On");
    m_camera.choose("CounterSelector", "Counter1");
    m_camera.choose("CounterEventSource", "FrameStart");
    m_camera.execute("CounterReset");
    StreamRecorder stream(m_camera.handle());
    for (std::size_t i = 1; i <= 5; ++i) {
        m_camera.execute("TriggerSoftware");
        ASSERT_TRUE(stream.waitForImages(i));
    }
    EXPECT_EQ(m_camera.integer("CounterValue"), 5);
    m_camera.setInteger("CounterDuration", 3);
    EXPECT_EQ(m_camera.integer("CounterValue"), 2);
    m_camera.setInteger("CounterDuration", 1);
    EXPECT_EQ(m_camera.integer("CounterValue"), 0) << "it ends with every image";
    m_camera.setInteger("CounterDuration", 1000);
    m_camera.execute("CounterReset");
    EXPECT_EQ(m_camera.integer("CounterValue"), 0);
}

TEST(PowerTest, NonVolatileSettingsSurvivePowerOff)
{
    const Library library("1");
    {
        const SimulatedCamera camera(0);
        camera.setText("DeviceUserID", "Über der Tür");
        camera.setReal("ExposureTime", 2000);
        camera.choose("UserSetSelector", "UserSet0");
        camera.setText("UserSetDescription", "Bright");
        camera.execute("UserSetSave");
        camera.choose("UserSetDefault", "UserSet0");
        camera.setReal("ExposureTime", 3000);
        camera.setInteger("SimulationLoseEvery", 2);
    }
    const SimulatedCamera camera(0);
    EXPECT_EQ(camera.text("DeviceUserID"), "Über der Tür");
    EXPECT_DOUBLE_EQ(camera.real("ExposureTime"), 2000);
    EXPECT_EQ(camera.choice("UserSetDefault"), "UserSet0");
    EXPECT_EQ(camera.integer("SimulationLoseEvery"), 0);
    camera.choose("UserSetSelector", "UserSet0");
    EXPECT_EQ(camera.text("UserSetDescription"), "Bright");
    camera.choose("UserSetDefault", "Default");
    camera.execute("DeviceReset");
    EXPECT_DOUBLE_EQ(camera.real("ExposureTime"), 10000);
}

TEST(PowerTest, UserDefinedNameIsListed)
{
    const Library library("1");
    {
        const SimulatedCamera camera(0);
        camera.setText("DeviceUserID", "Left");
    }
    EXPECT_STREQ(Library::info(0).userDefinedName, "Left");
    (void)Library::enumerate();
    EXPECT_STREQ(Library::info(0).userDefinedName, "Left");
}

} // namespace
