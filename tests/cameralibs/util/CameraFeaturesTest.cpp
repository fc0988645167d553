#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/DescriptionText.h"
#include "tests/cameralibs/util/PfncFormats.h"

#include "camera/OrvoCamUtl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

// The convenience functions for features, with both libraries and the simulated cameras.

namespace {

using Orvo::CAM_API_STATUS;
using Orvo::CAM_HANDLE;

constexpr std::uint32_t kUntouched = 0xA5A5A5A5;

// Every function, without its result.
std::vector<CAM_API_STATUS> callAll(CAM_HANDLE camera)
{
    std::uint32_t number = kUntouched;
    bool flag = false;
    std::vector<CAM_API_STATUS> statuses{Orvo::GetCamWidth(camera, &number),
                                         Orvo::GetCamHeight(camera, &number),
                                         Orvo::GetCamPixelFormat(camera, &number),
                                         Orvo::GetCamTriggerMode(camera, &flag),
                                         Orvo::GetCamTriggerSource(camera, &number),
                                         Orvo::ExecuteCamSoftwareTrigger(camera),
                                         Orvo::GetCamIndexFromCamHandle(camera, &number)};
    return statuses;
}

// Expects that every function fails with this status and does not write its result.
std::vector<CAM_API_STATUS> failAll(CAM_HANDLE camera)
{
    std::uint32_t numbers[] = {kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
    bool on = true;
    bool off = false;
    std::vector<CAM_API_STATUS> statuses{Orvo::GetCamWidth(camera, &numbers[0]),
                                         Orvo::GetCamHeight(camera, &numbers[1]),
                                         Orvo::GetCamPixelFormat(camera, &numbers[2]),
                                         Orvo::GetCamTriggerMode(camera, &on),
                                         Orvo::GetCamTriggerMode(camera, &off),
                                         Orvo::GetCamTriggerSource(camera, &numbers[3]),
                                         Orvo::GetCamIndexFromCamHandle(camera, &numbers[4]),
                                         Orvo::ExecuteCamSoftwareTrigger(camera)};
    EXPECT_THAT(numbers, testing::Each(kUntouched));
    EXPECT_TRUE(on);
    EXPECT_FALSE(off);
    return statuses;
}

// The functions with a result, called with a null pointer.
std::vector<CAM_API_STATUS> callAllWithNull(CAM_HANDLE camera)
{
    return {Orvo::GetCamWidth(camera, nullptr),         Orvo::GetCamHeight(camera, nullptr),
            Orvo::GetCamPixelFormat(camera, nullptr),   Orvo::GetCamTriggerMode(camera, nullptr),
            Orvo::GetCamTriggerSource(camera, nullptr), Orvo::GetCamIndexFromCamHandle(camera, nullptr)};
}

class CameraFeatures : public CameraTest {
protected:
    using CameraTest::CameraTest;

    void choose(const char* enumeration, const char* entry) const
    {
        EXPECT_EQ(Orvo::Nd_SetEnumStrValue(m_camera, node(enumeration), entry), 0U) << enumeration << ' ' << entry;
    }
};

TEST_F(CameraFeatures, SizeFollowsTheCamera)
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    ASSERT_EQ(Orvo::GetCamWidth(m_camera, &width), 0U);
    ASSERT_EQ(Orvo::GetCamHeight(m_camera, &height), 0U);
    EXPECT_EQ(width, getInt("Width"));
    EXPECT_EQ(height, getInt("Height"));
    EXPECT_NE(width, height);

    setInt("Width", 640);
    setInt("Height", 480);
    ASSERT_EQ(Orvo::GetCamWidth(m_camera, &width), 0U);
    ASSERT_EQ(Orvo::GetCamHeight(m_camera, &height), 0U);
    EXPECT_EQ(width, 640U);
    EXPECT_EQ(height, 480U);
}

TEST_F(CameraFeatures, PixelFormatIsThePfncValue)
{
    const auto entries = entriesOf(m_camera, "PixelFormat");
    int known = 0;
    for (const PfncFormat& pfnc : kPfncFormats) {
        if (std::find(entries.begin(), entries.end(), pfnc.name) == entries.end())
            continue;
        choose("PixelFormat", pfnc.name);
        std::uint32_t format = 0;
        ASSERT_EQ(Orvo::GetCamPixelFormat(m_camera, &format), 0U);
        EXPECT_EQ(format, pfnc.value) << pfnc.name;
        ++known;
    }
    EXPECT_GT(known, 1);
}

TEST_F(CameraFeatures, TriggerModeIsOnOrOff)
{
    bool on = true;
    choose("TriggerMode", "Off");
    ASSERT_EQ(Orvo::GetCamTriggerMode(m_camera, &on), 0U);
    EXPECT_FALSE(on);
    choose("TriggerMode", "On");
    ASSERT_EQ(Orvo::GetCamTriggerMode(m_camera, &on), 0U);
    EXPECT_TRUE(on);
}

TEST_F(CameraFeatures, SoftwareTriggerSourceIs64WhateverTheCamerasNumber)
{
    std::int64_t number = 0;
    choose("TriggerSource", "Software");
    ASSERT_EQ(Orvo::Nd_GetEnumIntValue(m_camera, node("TriggerSource"), &number), 0U);
    ASSERT_NE(number, 64);
    std::uint32_t source = 0;
    ASSERT_EQ(Orvo::GetCamTriggerSource(m_camera, &source), 0U);
    EXPECT_EQ(source, Orvo::CAM_TRIGGER_SOURCE_SOFTWARE);
    EXPECT_EQ(source, 64U);

    choose("TriggerSource", "Line1");
    ASSERT_EQ(Orvo::Nd_GetEnumIntValue(m_camera, node("TriggerSource"), &number), 0U);
    ASSERT_EQ(Orvo::GetCamTriggerSource(m_camera, &source), 0U);
    EXPECT_EQ(source, number);
}

TEST_F(CameraFeatures, SoftwareTriggerTakesOneImage)
{
    choose("TriggerMode", "On");
    choose("TriggerSource", "Software");
    Orvo::CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Orvo::Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 8, nullptr), 0U);
    StreamRecorder recorder;
    recorder.attachTo(stream);
    ASSERT_EQ(Orvo::Strm_Start(stream, 8), 0U);
    execute("AcquisitionStart");
    EXPECT_TRUE(recorder.images().empty());
    for (std::size_t images = 1; images <= 3; ++images) {
        ASSERT_EQ(Orvo::ExecuteCamSoftwareTrigger(m_camera), 0U);
        ASSERT_TRUE(recorder.waitForImages(images));
        EXPECT_EQ(recorder.images().size(), images);
    }
    EXPECT_EQ(Orvo::Strm_Stop(stream), 0U);
}

TEST_F(CameraFeatures, EveryFunctionWorksInsideAnImageCallback)
{
    Orvo::CAM_STRM_HANDLE stream = 0;
    ASSERT_EQ(Orvo::Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 8, nullptr), 0U);
    std::vector<CAM_API_STATUS> statuses;
    StreamRecorder recorder;
    recorder.onImage = [&](const StreamRecorder::Image& image) {
        if (statuses.empty())
            statuses = callAll(image.camera);
    };
    recorder.attachTo(stream);
    ASSERT_EQ(Orvo::Strm_Start(stream, 8), 0U);
    execute("AcquisitionStart");
    ASSERT_TRUE(recorder.waitForImages(1));
    ASSERT_EQ(Orvo::Strm_Stop(stream), 0U);
    EXPECT_THAT(statuses, testing::Each(Orvo::CAM_API_STS_SUCCESS));
}

TEST_F(CameraFeatures, NullResultIsInvalidForAValidCamera)
{
    EXPECT_THAT(callAllWithNull(m_camera), testing::Each(Orvo::CAM_API_STS_INVALID_PARAMETER));
    EXPECT_THAT(callAllWithNull(m_camera + 1000), testing::Each(Orvo::CAM_API_STS_INVALID_CAMERA_HANDLE));
}

TEST_F(CameraFeatures, OtherHandlesAreRefused)
{
    for (const CAM_HANDLE camera :
         {CAM_HANDLE{0}, m_camera + 1000, CAM_HANDLE{m_signal}, node("Width"), ~CAM_HANDLE{0}}) {
        EXPECT_THAT(failAll(camera), testing::Each(Orvo::CAM_API_STS_INVALID_CAMERA_HANDLE)) << camera;
    }
}

TEST_F(CameraFeatures, ClosedCameraIsRefused)
{
    ASSERT_EQ(Orvo::Cam_Close(m_camera), 0U);
    EXPECT_THAT(failAll(m_camera), testing::Each(Orvo::CAM_API_STS_INVALID_CAMERA_HANDLE));
}

TEST_F(CameraFeatures, UnpluggedCameraDoesNotRespond)
{
    unplug();
    ASSERT_EQ(Orvo::Sys_WaitForSignal(m_signal, 10000), 0U);
    EXPECT_THAT(failAll(m_camera), testing::Each(Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING));
    EXPECT_THAT(callAllWithNull(m_camera), testing::Each(Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING));
}

TEST_F(CameraFeatures, FunctionsMayBeCalledFromAnyThread)
{
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([this] {
            for (int round = 0; round < 20; ++round)
                EXPECT_THAT(callAll(m_camera), testing::Each(Orvo::CAM_API_STS_SUCCESS));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

class ManyCameras : public SystemTest {
protected:
    ManyCameras()
        : SystemTest("3")
    {
    }
};

TEST_F(ManyCameras, IndexIsThatOfTheLastEnumeration)
{
    for (std::uint32_t i = 0; i < m_cameras; ++i) {
        CAM_HANDLE camera = 0;
        ASSERT_EQ(Orvo::Cam_Open(i, &camera, 0, 1, nullptr, 1), 0U);
        std::uint32_t index = kUntouched;
        EXPECT_EQ(Orvo::GetCamIndexFromCamHandle(camera, &index), 0U);
        EXPECT_EQ(index, i);
    }
}

// A camera with an unusual description: sizes of more than 32 bits, different numbers for the standard's names, and no
// software trigger.
constexpr const char* kOddDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Odd" VendorName="Test" StandardNameSpace="None" SchemaMajorVersion="1"
    SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="00000000-0000-0000-0000-000000000000" VersionGuid="00000000-0000-0000-0000-000000000000"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root">
    <pFeature>Width</pFeature><pFeature>Height</pFeature>
    <pFeature>TriggerMode</pFeature><pFeature>TriggerSource</pFeature>
  </Category>
  <Integer Name="Width"><Value>4294967296</Value></Integer>
  <Integer Name="Height"><Value>-1</Value></Integer>
  <Enumeration Name="TriggerMode">
    <EnumEntry Name="On"><Value>0</Value></EnumEntry>
    <EnumEntry Name="Off"><Value>1</Value></EnumEntry>
    <Value>0</Value>
  </Enumeration>
  <Enumeration Name="TriggerSource">
    <EnumEntry Name="Line5"><Value>4294967295</Value></EnumEntry>
    <EnumEntry Name="Software"><Value>4294967296</Value></EnumEntry>
    <EnumEntry Name="Line6"><Value>4294967297</Value></EnumEntry>
    <Value>4294967295</Value>
  </Enumeration>
  <Port Name="Device"/>
</RegisterDescription>
)";

struct OddDescription {
    DescriptionFile file{kOddDescription};
};

class OddCamera : private OddDescription, public CameraFeatures {
protected:
    OddCamera()
        : CameraFeatures("0," + file.path())
    {
    }
};

TEST_F(OddCamera, NumberBeyond32BitsIsInvalid)
{
    std::uint32_t number = kUntouched;
    EXPECT_EQ(Orvo::GetCamWidth(m_camera, &number), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Orvo::GetCamHeight(m_camera, &number), Orvo::CAM_API_STS_INVALID_PARAMETER);
    choose("TriggerSource", "Line6");
    EXPECT_EQ(Orvo::GetCamTriggerSource(m_camera, &number), Orvo::CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(number, kUntouched);
}

TEST_F(OddCamera, EntriesAreRecognisedByNameNotByNumber)
{
    bool on = false;
    EXPECT_EQ(Orvo::GetCamTriggerMode(m_camera, &on), 0U);
    EXPECT_TRUE(on);
    choose("TriggerMode", "Off");
    EXPECT_EQ(Orvo::GetCamTriggerMode(m_camera, &on), 0U);
    EXPECT_FALSE(on);

    std::uint32_t source = 0;
    EXPECT_EQ(Orvo::GetCamTriggerSource(m_camera, &source), 0U);
    EXPECT_EQ(source, 4294967295U);
    choose("TriggerSource", "Software");
    EXPECT_EQ(Orvo::GetCamTriggerSource(m_camera, &source), 0U);
    EXPECT_EQ(source, Orvo::CAM_TRIGGER_SOURCE_SOFTWARE);
}

TEST_F(OddCamera, FeatureThatIsMissingIsNotFound)
{
    std::uint32_t format = kUntouched;
    EXPECT_EQ(Orvo::GetCamPixelFormat(m_camera, &format), Orvo::CAM_API_STS_NOT_FOUND);
    EXPECT_EQ(format, kUntouched);
    EXPECT_EQ(Orvo::ExecuteCamSoftwareTrigger(m_camera), Orvo::CAM_API_STS_NOT_FOUND);
}

TEST(CameraFeaturesWithoutLibrary, BeforeInitializeAndAfterTerminate)
{
    EXPECT_THAT(failAll(0), testing::Each(Orvo::CAM_API_STS_NOT_INITIALIZED));
    EXPECT_THAT(failAll(1), testing::Each(Orvo::CAM_API_STS_NOT_INITIALIZED));
    EXPECT_THAT(callAllWithNull(1), testing::Each(Orvo::CAM_API_STS_NOT_INITIALIZED));
    ASSERT_EQ(Orvo::Sys_Initialize(0), 0U);
    EXPECT_THAT(failAll(1), testing::Each(Orvo::CAM_API_STS_INVALID_CAMERA_HANDLE));
    ASSERT_EQ(Orvo::Sys_Terminate(), 0U);
    EXPECT_THAT(failAll(1), testing::Each(Orvo::CAM_API_STS_NOT_INITIALIZED));
}

} // namespace
