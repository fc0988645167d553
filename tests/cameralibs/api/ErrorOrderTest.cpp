#include "tests/cameralibs/api/CameraFixture.h"
#include "tests/cameralibs/api/DescribedCamera.h"

using namespace Orvo;

// Errors are checked in a fixed order. Each call here has several; the first one determines the status.

namespace {

constexpr std::uint64_t kUnknown = 0x7000000000000000;

class ErrorOrderTest : public CameraTest {};

} // namespace

TEST_F(ErrorOrderTest, OfNodeOperations)
{
    const CAM_NODE_HANDLE width = node("Width");
    std::int64_t value = 0;
    std::uint32_t count = 0;
    CAM_NODE_HANDLE other = 0;
    EXPECT_EQ(Nd_GetNode(kUnknown, nullptr, nullptr), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(kUnknown, kUnknown, nullptr), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(m_camera, kUnknown, nullptr), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_SetStrValue(m_camera, kUnknown, nullptr), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_SetStrValue(m_camera, width, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_GetFeatureByIndex(m_camera, kUnknown, 99999, nullptr), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(Nd_GetFeatureByIndex(m_camera, node("Root"), 99999, &other), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_GetNumOfFeatures(m_camera, width, &count), CAM_API_STS_INVALID_PARAMETER);
    unplug();
    EXPECT_EQ(Nd_GetIntValue(kUnknown, width, &value), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Nd_GetIntValue(m_camera, kUnknown, nullptr), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Nd_GetNode(m_camera, nullptr, nullptr), CAM_API_STS_CAMERA_NOT_RESPONDING);
    ASSERT_EQ(Sys_Terminate(), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetIntValue(kUnknown, kUnknown, nullptr), CAM_API_STS_NOT_INITIALIZED);
}

TEST(ErrorOrder, TypeAccessValueEvaluation)
{
    DescribedCamera camera(describe(constant("No", 0) + intReg("Reg", 0, "RO") +
                                    R"(<Float Name="GoneFloat"><pIsAvailable>No</pIsAvailable><Value>1</Value></Float>
           <Integer Name="GoneAndBroken"><pIsAvailable>No</pIsAvailable><pValue>Division</pValue><Max>5</Max></Integer>
           <Integer Name="Broken"><pValue>Division</pValue><Max>5</Max></Integer>
           <Converter Name="Writable"><FormulaTo>1 / FROM</FormulaTo><FormulaFrom>1 / TO</FormulaFrom>
             <pValue>Free</pValue></Converter>
           <Float Name="BrokenAtZero"><pValue>Writable</pValue><Min>0</Min><Max>5</Max></Float>
           <Integer Name="Free"><Value>0</Value></Integer>
           <IntSwissKnife Name="Division"><pVariable Name="A">No</pVariable><Formula>1 / A</Formula></IntSwissKnife>)"));
    ASSERT_EQ(camera.status(), CAM_API_STS_SUCCESS) << camera.error();
    const CAM_HANDLE c = camera.handle();
    std::int64_t value = 0;
    double number = 0;
    // The type is checked before the access mode.
    EXPECT_EQ(Nd_GetIntValue(c, camera.node("GoneFloat"), &value), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_GetFloatValue(c, camera.node("GoneFloat"), &number), CAM_API_STS_NOT_AVAILABLE);
    // The access mode is checked before the value and the evaluation.
    EXPECT_EQ(Nd_GetIntValue(c, camera.node("GoneAndBroken"), &value), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("GoneAndBroken"), 99), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(Nd_SetIntValue(c, camera.node("Broken"), 99), CAM_API_STS_NOT_WRITABLE) << "a formula is read-only";
    EXPECT_EQ(Nd_GetIntValue(c, camera.node("Broken"), &value), CAM_API_STS_GENICAM_ERR);
    // The value is checked before the evaluation.
    EXPECT_EQ(Nd_SetFloatValue(c, camera.node("BrokenAtZero"), 6), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Nd_SetFloatValue(c, camera.node("BrokenAtZero"), 0), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(Nd_SetFloatValue(c, camera.node("BrokenAtZero"), 1), CAM_API_STS_SUCCESS);
}

TEST_F(ErrorOrderTest, OfStreamOperations)
{
    CAM_STRM_HANDLE stream = 0;
    EXPECT_EQ(Strm_OpenSimple(kUnknown, nullptr, nullptr, nullptr, 0, nullptr), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_EQ(Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, 0, nullptr), CAM_API_STS_INVALID_PARAMETER);
    ASSERT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, 0, nullptr), CAM_API_STS_ALREADY_OPENED);
    EXPECT_EQ(Strm_LockBuffer(kUnknown, 99, nullptr), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_GetCurrentBufferIndex(kUnknown, nullptr), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_GetCurrentBufferIndex(stream, nullptr), CAM_API_STS_INVALID_PARAMETER)
        << "checked before CAM_API_STS_NOT_READY";
    EXPECT_EQ(Strm_LockBuffer(stream, 0, nullptr), CAM_API_STS_INVALID_PARAMETER)
        << "checked before CAM_API_STS_NOT_READY";
    unplug();
    EXPECT_EQ(Strm_Start(kUnknown, 8), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(Strm_OpenSimple(m_camera, nullptr, nullptr, nullptr, 0, nullptr), CAM_API_STS_CAMERA_NOT_RESPONDING)
        << "checked before CAM_API_STS_ALREADY_OPENED";
    EXPECT_EQ(Strm_LockBuffer(stream, 99, nullptr), CAM_API_STS_CAMERA_NOT_RESPONDING);
}

TEST_F(ErrorOrderTest, OfOpening)
{
    CAM_HANDLE camera = 0;
    EXPECT_EQ(Cam_Open(99, nullptr, kUnknown, 1, nullptr, 1), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(Cam_Open(0, nullptr, kUnknown, 1, nullptr, 1), CAM_API_STS_ALREADY_OPENED);
    unplug();
    EXPECT_EQ(Cam_Open(0, nullptr, kUnknown, 1, nullptr, 1), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(camera, 0U);
}
