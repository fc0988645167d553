#include "tests/cameralibs/api/CameraFixture.h"

#include <cmath>
#include <limits>

using namespace Orvo;

using NodeTest = CameraTest;

TEST_F(NodeTest, NodesAreFoundByNameWithAlwaysTheSameHandle)
{
    CAM_NODE_HANDLE handle = 77;
    EXPECT_EQ(Nd_GetNode(m_camera, "NoSuchNode", &handle), CAM_API_STS_NOT_FOUND);
    EXPECT_EQ(handle, 0U);
    EXPECT_EQ(Nd_GetNode(m_camera, nullptr, &handle), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_GetNode(m_camera, "Width", nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(node("Width"), node("Width"));
    EXPECT_NE(node("Width"), node("Height"));
    const CAM_NODE_HANDLE category = node("RegionOfInterest");
    std::uint32_t count = 0;
    ASSERT_EQ(Nd_GetNumOfFeatures(m_camera, category, &count), CAM_API_STS_SUCCESS);
    bool found = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE child = 0;
        ASSERT_EQ(Nd_GetFeatureByIndex(m_camera, category, i, &child), CAM_API_STS_SUCCESS);
        found = found || child == node("Width");
    }
    EXPECT_TRUE(found);
    CAM_NODE_HANDLE beyond = 77;
    EXPECT_EQ(Nd_GetFeatureByIndex(m_camera, category, count, &beyond), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(beyond, 77U);
}

TEST_F(NodeTest, TextsFollowTheBufferConvention)
{
    const CAM_NODE_HANDLE width = node("Width");
    std::uint32_t size = 0;
    ASSERT_EQ(Nd_GetName(m_camera, width, nullptr, &size), CAM_API_STS_SUCCESS);
    EXPECT_EQ(size, 6U);
    char buffer[8] = "#######";
    size = 5;
    EXPECT_EQ(Nd_GetName(m_camera, width, buffer, &size), CAM_API_STS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 6U);
    EXPECT_STREQ(buffer, "#######");
    size = sizeof buffer;
    EXPECT_EQ(Nd_GetName(m_camera, width, buffer, &size), CAM_API_STS_SUCCESS);
    EXPECT_EQ(size, 6U);
    EXPECT_STREQ(buffer, "Width");
    EXPECT_EQ(buffer[6], '#');
    EXPECT_EQ(Nd_GetName(m_camera, width, buffer, nullptr), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(NodeTest, WrongNodeHandlesAreRefused)
{
    std::int64_t value = 77;
    EXPECT_EQ(Nd_GetIntValue(m_camera, 0, &value), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(m_camera, m_camera, &value), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(m_camera, std::numeric_limits<std::uint64_t>::max(), &value),
              CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(m_camera, 0, nullptr), CAM_API_STS_INVALID_NODE_HANDLE) << "before null pointers";
    EXPECT_EQ(Nd_GetIntValue(node("Width"), node("Width"), &value), CAM_API_STS_INVALID_CAMERA_HANDLE);
    const CAM_NODE_HANDLE stale = node("Width");
    ASSERT_EQ(Cam_Close(m_camera), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_Open(0, &m_camera, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetIntValue(m_camera, stale, &value), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(value, 77);
}

TEST_F(NodeTest, NodesOfAnotherCameraAreRefused)
{
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    ::setenv("ORVO_SIMULATED_CAMERAS", "2", 1); // NOLINT(concurrency-mt-unsafe)
    ASSERT_EQ(Sys_Initialize(CAM_LAYER_SIMULATED), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Sys_GetNumOfCameras(&m_cameras), CAM_API_STS_SUCCESS);
    CAM_HANDLE first = 0;
    CAM_HANDLE second = 0;
    ASSERT_EQ(Cam_Open(0, &first, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Cam_Open(1, &second, 0, 1, nullptr, 1), CAM_API_STS_SUCCESS);
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(first, nodeOf(second, "Width"), &value), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(second, nodeOf(first, "Width"), &value), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(second, nodeOf(second, "Width"), &value), CAM_API_STS_SUCCESS);
}

TEST_F(NodeTest, IntegerIsReadAndWritten)
{
    const CAM_NODE_HANDLE width = node("Width");
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    std::int64_t increment = 0;
    ASSERT_EQ(Nd_GetIntMin(m_camera, width, &minimum), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_GetIntMax(m_camera, width, &maximum), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_GetIntInc(m_camera, width, &increment), CAM_API_STS_SUCCESS);
    EXPECT_GT(minimum, 0);
    EXPECT_GT(maximum, minimum);
    EXPECT_GT(increment, 1);
    EXPECT_EQ(Nd_SetIntValue(m_camera, width, minimum + increment), CAM_API_STS_SUCCESS);
    EXPECT_EQ(getInt("Width"), minimum + increment);
    for (const std::int64_t bad : {minimum - increment, maximum + increment, minimum + increment + 1,
                                   std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(Nd_SetIntValue(m_camera, width, bad), CAM_API_STS_INVALID_PARAMETER) << bad;
    EXPECT_EQ(getInt("Width"), minimum + increment);
}

TEST_F(NodeTest, FloatIsReadAndWritten)
{
    const CAM_NODE_HANDLE exposure = node("ExposureTime");
    double minimum = 0;
    double maximum = 0;
    double value = 0;
    ASSERT_EQ(Nd_GetFloatMin(m_camera, exposure, &minimum), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_GetFloatMax(m_camera, exposure, &maximum), CAM_API_STS_SUCCESS);
    EXPECT_LT(minimum, maximum);
    EXPECT_EQ(Nd_SetFloatValue(m_camera, exposure, 1234.0), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Nd_GetFloatValue(m_camera, exposure, &value), CAM_API_STS_SUCCESS);
    EXPECT_DOUBLE_EQ(value, 1234.0);
    for (const double bad : {minimum / 2, maximum * 2, std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_EQ(Nd_SetFloatValue(m_camera, exposure, bad), CAM_API_STS_INVALID_PARAMETER) << bad;
    EXPECT_EQ(Nd_SetFloatValue(m_camera, exposure, std::nan(""), false), CAM_API_STS_INVALID_PARAMETER);
    ASSERT_EQ(Nd_GetFloatValue(m_camera, exposure, &value), CAM_API_STS_SUCCESS);
    EXPECT_DOUBLE_EQ(value, 1234.0);
}

TEST_F(NodeTest, BooleanIsReadAndWritten)
{
    const CAM_NODE_HANDLE reverse = node("ReverseX");
    for (const bool wanted : {true, false, true}) {
        EXPECT_EQ(Nd_SetBoolValue(m_camera, reverse, wanted), CAM_API_STS_SUCCESS);
        bool value = !wanted;
        ASSERT_EQ(Nd_GetBoolValue(m_camera, reverse, &value), CAM_API_STS_SUCCESS);
        EXPECT_EQ(value, wanted);
    }
}

TEST_F(NodeTest, StringIsReadAndWritten)
{
    const CAM_NODE_HANDLE id = node("DeviceUserID");
    EXPECT_EQ(Nd_SetStrValue(m_camera, id, "left camera"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, id), "left camera");
    EXPECT_EQ(Nd_SetStrValue(m_camera, id, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetStrValue(m_camera, id, std::string(1000, 'x').c_str()), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, id), "left camera");
    EXPECT_EQ(Nd_SetStrValue(m_camera, id, ""), CAM_API_STS_SUCCESS);
    EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, id), "");
}

TEST_F(NodeTest, EnumerationIsReadAndWritten)
{
    const CAM_NODE_HANDLE format = node("PixelFormat");
    EXPECT_THAT(entriesOf(m_camera, "PixelFormat"), ::testing::IsSupersetOf({"Mono8", "Mono16"}));
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera, format, "Mono16"), CAM_API_STS_SUCCESS);
    EXPECT_EQ(textOf(Nd_GetEnumStrValue, m_camera, format), "Mono16");
    std::int64_t value = 0;
    ASSERT_EQ(Nd_GetEnumIntValue(m_camera, format, &value), CAM_API_STS_SUCCESS);
    EXPECT_EQ(value, 0x01100007);
    EXPECT_EQ(Nd_SetEnumIntValue(m_camera, format, 0x01080001), CAM_API_STS_SUCCESS);
    EXPECT_EQ(textOf(Nd_GetEnumStrValue, m_camera, format), "Mono8");
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera, format, "NoSuchFormat"), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera, format, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetEnumIntValue(m_camera, format, 12345), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(textOf(Nd_GetEnumStrValue, m_camera, format), "Mono8");
    CAM_NODE_HANDLE entry = 0;
    EXPECT_EQ(Nd_GetEnumEntryByIndex(m_camera, format, 1000, &entry), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(entry, 0U);
}

TEST_F(NodeTest, OperationsRefuseNodesOfOtherTypes)
{
    constexpr CAM_API_STATUS kWrong = CAM_API_STS_INVALID_PARAMETER;
    const CAM_NODE_HANDLE integer = node("Width");
    const CAM_NODE_HANDLE floating = node("ExposureTime");
    const CAM_NODE_HANDLE enumeration = node("PixelFormat");
    const CAM_NODE_HANDLE category = node("Root");
    const CAM_NODE_HANDLE command = node("AcquisitionStart");
    std::int64_t number = 0;
    double real = 0;
    bool flag = false;
    std::uint32_t count = 0;
    CAM_NODE_HANDLE other = 0;
    FloatDisplayNotation notation = FLOAT_DISPLAY_NOTATION_AUTOMATIC;
    EXPECT_EQ(Nd_GetIntValue(m_camera, enumeration, &number), kWrong);
    EXPECT_EQ(Nd_GetIntMin(m_camera, floating, &number), kWrong);
    EXPECT_EQ(Nd_GetFloatValue(m_camera, integer, &real), kWrong);
    EXPECT_EQ(Nd_GetFloatHasInc(m_camera, integer, &flag), kWrong);
    EXPECT_EQ(Nd_GetBoolValue(m_camera, integer, &flag), kWrong);
    EXPECT_EQ(textOf(Nd_GetStrValue, m_camera, enumeration), "status 13");
    EXPECT_EQ(textOf(Nd_GetEnumStrValue, m_camera, integer), "status 13");
    EXPECT_EQ(Nd_GetEnumIntValue(m_camera, integer, &number), kWrong);
    EXPECT_EQ(Nd_GetNumOfFeatures(m_camera, integer, &count), kWrong);
    EXPECT_EQ(Nd_GetFeatureByIndex(m_camera, integer, 0, &other), kWrong);
    EXPECT_EQ(Nd_GetNumOfEnumEntries(m_camera, integer, &count), kWrong);
    EXPECT_EQ(Nd_GetEnumEntryByIndex(m_camera, category, 0, &other), kWrong);
    EXPECT_EQ(textOf(Nd_GetEnumEntryStrValue, m_camera, enumeration), "status 13");
    EXPECT_EQ(Nd_GetFloatDisplayNotation(m_camera, integer, &notation), kWrong);
    EXPECT_EQ(Nd_GetFloatDisplayPrecision(m_camera, integer, &number), kWrong);
    EXPECT_EQ(Nd_SetIntValue(m_camera, floating, 1), kWrong);
    EXPECT_EQ(Nd_SetFloatValue(m_camera, integer, 1.0), kWrong);
    EXPECT_EQ(Nd_SetBoolValue(m_camera, integer, true), kWrong);
    EXPECT_EQ(Nd_SetStrValue(m_camera, command, "x"), kWrong);
    EXPECT_EQ(Nd_SetEnumStrValue(m_camera, integer, "x"), kWrong);
    EXPECT_EQ(Nd_SetEnumIntValue(m_camera, integer, 1), kWrong);
    EXPECT_EQ(Nd_CmdExecute(m_camera, integer), kWrong);
}
