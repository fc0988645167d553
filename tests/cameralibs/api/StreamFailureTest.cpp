// The state after a stream fails to start or stop.

#include "tests/cameralibs/api/DescribedCamera.h"
#include "tests/cameralibs/api/MemoryLimit.h"

#include <gtest/gtest.h>

#include <string>

using namespace Orvo;

namespace {

/// An Integer that keeps this value.
std::string fixed(const std::string& name, int value)
{
    const std::string text = std::to_string(value);
    return "<Integer Name=\"" + name + "\"><Value>" + text + "</Value><Min>" + text + "</Min><Max>" + text +
           "</Max></Integer>";
}

/// A command that can be executed while the register `switchName` is not 0.
std::string switchedCommand(const std::string& name, const std::string& switchName, unsigned address)
{
    return "<Command Name=\"" + name + "\"><pIsAvailable>" + switchName + "</pIsAvailable><pValue>" + name +
           "Reg</pValue><CommandValue>1</CommandValue></Command>" + intReg(name + "Reg", address);
}

std::string imagingCamera()
{
    return describe("Width Height PayloadSize TLParamsLocked AcquisitionStart AcquisitionStop",
                    fixed("Width", 64) + fixed("Height", 64) + integerNode("PayloadSize", 0, "<Min>4096</Min>") +
                        integerNode("TLParamsLocked", 4, "<Max>1</Max>") + intReg("MayStart", 8) +
                        intReg("MayStop", 12) + switchedCommand("AcquisitionStart", "MayStart", 16) +
                        switchedCommand("AcquisitionStop", "MayStop", 20));
}

class StreamFailureTest : public ::testing::Test {
protected:
    StreamFailureTest()
    {
        EXPECT_EQ(m_described.status(), CAM_API_STS_SUCCESS) << m_described.error();
        setInt(m_camera, "MayStart", 1);
        setInt(m_camera, "MayStop", 1);
        EXPECT_EQ(Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr), CAM_API_STS_SUCCESS);
    }

    [[nodiscard]] std::int64_t locked() const { return intOf(m_camera, "TLParamsLocked"); }

    const DescribedCamera m_described{imagingCamera()};
    const CAM_HANDLE m_camera = m_described.handle();
    CAM_STRM_HANDLE m_stream = 0;
};

} // namespace

TEST_F(StreamFailureTest, CameraThatRefusesToStartIsUnlocked)
{
    setInt(m_camera, "MayStart", 0);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(locked(), 0);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS) << "it is not started";
    setInt(m_camera, "MayStart", 1);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_EQ(locked(), 1);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(locked(), 0);
}

TEST_F(StreamFailureTest, CameraThatRefusesToStopIsUnlocked)
{
    ASSERT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    setInt(m_camera, "MayStop", 0);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(locked(), 0);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS) << "it is stopped nevertheless";
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
    EXPECT_EQ(locked(), 0);
}

TEST_F(StreamFailureTest, StartsAgainAfterPayloadsOfFourGigabytesInTotal)
{
    for (const std::int64_t payload : {0x40000000LL, 0xFFFFFFFFLL}) {
        setInt(m_camera, "PayloadSize", payload);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_INVALID_PARAMETER);
        EXPECT_EQ(locked(), 0);
    }
    setInt(m_camera, "PayloadSize", 0x3FFFFFFF);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}

TEST_F(StreamFailureTest, StartsAgainAfterImagesThatDoNotFitMemory)
{
    if (!MemoryLimit::kPossible)
        GTEST_SKIP() << "sanitizers do not work with a memory limit";
    setInt(m_camera, "PayloadSize", 0x3FFFFFFF);
    {
        const MemoryLimit limit(1U << 30);
        EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_NO_MEMORY);
    }
    EXPECT_EQ(locked(), 0);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
    setInt(m_camera, "PayloadSize", 4096);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}
