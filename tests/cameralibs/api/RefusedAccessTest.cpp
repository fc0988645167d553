#include "tests/cameralibs/api/CameraFixture.h"

using namespace Orvo;

namespace {

/// A camera that refuses every register access. Operations that do not access the device still work.
class RefusedAccessTest : public CameraTest {
protected:
    RefusedAccessTest() { EXPECT_EQ(refuse(true), CAM_API_STS_SUCCESS); }
    ~RefusedAccessTest() override { EXPECT_EQ(refuse(false), CAM_API_STS_SUCCESS); }

    [[nodiscard]] CAM_API_STATUS refuse(bool on) const
    {
        return Nd_SetBoolValue(m_camera, node("SimulationRefuseAccess"), on);
    }
};

void walk(CAM_HANDLE camera, CAM_NODE_HANDLE node, int& visited)
{
    ++visited;
    NodeType type = NODE_TYPE_UNKNOWN;
    TC_NODE_VISIBILITY visibility = NODE_VISIBILITY_BEGINNER;
    NodeRepresentation representation = NODE_REPRESENTATION_LINEAR;
    EXPECT_EQ(Nd_GetType(camera, node, &type), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetVisibility(camera, node, &visibility), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetRepresentation(camera, node, &representation), CAM_API_STS_SUCCESS);
    for (const TextOperation text : {Nd_GetName, Nd_GetToolTip, Nd_GetDescription, Nd_GetUnit})
        EXPECT_NE(textOf(text, camera, node).rfind("status ", 0), 0U);
    std::uint32_t count = 0;
    CAM_NODE_HANDLE child = 0;
    if (type == NODE_TYPE_CATEGORY) {
        EXPECT_EQ(Nd_GetNumOfFeatures(camera, node, &count), CAM_API_STS_SUCCESS);
        for (std::uint32_t i = 0; i < count; ++i) {
            ASSERT_EQ(Nd_GetFeatureByIndex(camera, node, i, &child), CAM_API_STS_SUCCESS);
            walk(camera, child, visited);
        }
    } else if (type == NODE_TYPE_ENUMERATION) {
        EXPECT_EQ(Nd_GetNumOfEnumEntries(camera, node, &count), CAM_API_STS_SUCCESS);
        for (std::uint32_t i = 0; i < count; ++i) {
            ASSERT_EQ(Nd_GetEnumEntryByIndex(camera, node, i, &child), CAM_API_STS_SUCCESS);
            EXPECT_NE(textOf(Nd_GetEnumEntryStrValue, camera, child), "");
            EXPECT_NE(textOf(Nd_GetName, camera, child), "");
        }
    } else if (type == NODE_TYPE_FLOAT) {
        FloatDisplayNotation notation = FLOAT_DISPLAY_NOTATION_AUTOMATIC;
        std::int64_t precision = 0;
        EXPECT_EQ(Nd_GetFloatDisplayNotation(camera, node, &notation), CAM_API_STS_SUCCESS);
        EXPECT_EQ(Nd_GetFloatDisplayPrecision(camera, node, &precision), CAM_API_STS_SUCCESS);
    }
}

} // namespace

TEST_F(RefusedAccessTest, DescriptionIsAnsweredFromMemory)
{
    int visited = 0;
    walk(m_camera, node("Root"), visited);
    EXPECT_GT(visited, 40);
    CAM_INFO info = {};
    EXPECT_EQ(Cam_GetInformation(m_camera, 0, &info), CAM_API_STS_SUCCESS);
}

TEST_F(RefusedAccessTest, ValuesAreDenied)
{
    std::int64_t value = 77;
    EXPECT_EQ(Nd_GetIntValue(m_camera, node("Width"), &value), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(Nd_SetIntValue(m_camera, node("Width"), 64), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(Nd_CmdExecute(m_camera, node("AcquisitionStart")), CAM_API_STS_ACCESS_DENIED);
    // The camera does not count as removed.
    EXPECT_EQ(Sys_WaitForSignal(m_signal, 0), CAM_API_STS_TIMEOUT);
    ASSERT_EQ(refuse(false), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Nd_GetIntValue(m_camera, node("Width"), &value), CAM_API_STS_SUCCESS);
}

TEST_F(RefusedAccessTest, StreamThatDoesNotStartCanBeStartedLater)
{
    CAM_STRM_HANDLE stream = 77;
    EXPECT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(stream, 77U);
    ASSERT_EQ(refuse(false), CAM_API_STS_SUCCESS);
    ASSERT_EQ(Strm_OpenSimple(m_camera, &stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    ASSERT_EQ(refuse(true), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS) << "not started";
    ASSERT_EQ(refuse(false), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    // Strm_Stop stops the stream even if it cannot tell the camera.
    ASSERT_EQ(refuse(true), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_ACCESS_DENIED);
    EXPECT_EQ(Strm_Stop(stream), CAM_API_STS_SUCCESS);
    ASSERT_EQ(refuse(false), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(stream, 8), CAM_API_STS_SUCCESS);
    ASSERT_EQ(refuse(true), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Close(stream), CAM_API_STS_SUCCESS);
}
