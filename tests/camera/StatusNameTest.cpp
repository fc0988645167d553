#include "camera/StatusName.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>

namespace {

const std::map<std::uint32_t, const char*> kNames = {
    {0u, "CAM_API_STS_SUCCESS"},
    {1u, "CAM_API_STS_NOT_INITIALIZED"},
    {2u, "CAM_API_STS_ALREADY_INITIALIZED"},
    {3u, "CAM_API_STS_NOT_FOUND"},
    {4u, "CAM_API_STS_ALREADY_OPENED"},
    {5u, "CAM_API_STS_ALREADY_ACTIVATED"},
    {6u, "CAM_API_STS_INVALID_CAMERA_INDEX"},
    {7u, "CAM_API_STS_INVALID_CAMERA_HANDLE"},
    {8u, "CAM_API_STS_INVALID_NODE_HANDLE"},
    {9u, "CAM_API_STS_INVALID_STREAM_HANDLE"},
    {10u, "CAM_API_STS_INVALID_REQUEST_HANDLE"},
    {11u, "CAM_API_STS_INVALID_EVENT_HANDLE"},
    {12u, "CAM_API_STS_INVALID_IMAGE_HANDLE"},
    {13u, "CAM_API_STS_INVALID_PARAMETER"},
    {14u, "CAM_API_STS_BUFFER_TOO_SMALL"},
    {15u, "CAM_API_STS_NO_MEMORY"},
    {16u, "CAM_API_STS_MEMORY_NO_ACCESS"},
    {17u, "CAM_API_STS_NOT_IMPLEMENTED"},
    {18u, "CAM_API_STS_TIMEOUT"},
    {19u, "CAM_API_STS_CAMERA_NOT_RESPONDING"},
    {20u, "CAM_API_STS_EMPTY_COMPLETE_QUEUE"},
    {21u, "CAM_API_STS_NOT_READY"},
    {22u, "CAM_API_STS_ACCESS_MODE_SET_ERR"},
    {257u, "CAM_API_STS_XML_LOAD_ERR"},
    {258u, "CAM_API_STS_GENICAM_ERR"},
    {259u, "CAM_API_STS_DLL_LOAD_ERR"},
    {2049u, "CAM_API_STS_INVALID_ADDRESS"},
    {2050u, "CAM_API_STS_WRITE_PROTECT"},
    {2051u, "CAM_API_STS_BAD_ALIGNMENT"},
    {2052u, "CAM_API_STS_ACCESS_DENIED"},
    {2053u, "CAM_API_STS_BUSY"},
    {2054u, "CAM_API_STS_NOT_READABLE"},
    {2055u, "CAM_API_STS_NOT_WRITABLE"},
    {2056u, "CAM_API_STS_NOT_AVAILABLE"},
    {4097u, "CAM_API_STS_REQUEST_TIMEOUT"},
    {4098u, "CAM_API_STS_RESEND_TIMEOUT"},
    {4099u, "CAM_API_STS_RESPONSE_TIMEOUT"},
    {4100u, "CAM_API_STS_BUFFER_FULL"},
    {4101u, "CAM_API_STS_UNEXPECTED_BUFFER_SIZE "},
    {4102u, "CAM_API_STS_UNEXPECTED_NUMBER"},
    {4103u, "CAM_API_STS_PACKET_STATUS_ERROR"},
    {4104u, "CAM_API_STS_RESEND_NOT_IMPLEMENTED"},
    {4105u, "CAM_API_STS_PACKET_UNAVAILABLE"},
    {4106u, "CAM_API_STS_MISSING_PACKETS "},
    {4107u, "CAM_API_STS_FLUSH_REQUESTED"},
    {4108u, "CAM_API_STS_TOO_MANY_PACKET_MISSING"},
    {4109u, "CAM_API_STS_FLUSHED_BY_D0EXIT"},
    {4110u, "CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE"},
    {4111u, "CAM_API_STS_DRIVER_LOAD_ERR"},
    {8193u, "CAM_API_STS_FILE_OPEN_ERROR"},
    {8194u, "CAM_API_STS_FILE_WRITE_ERROR"},
    {8195u, "CAM_API_STS_FILE_READ_ERROR"},
    {8196u, "CAM_API_STS_FILE_NOT_FOUND"},
    {41216u, "CAM_API_STS_DATA_DISCARDED"},
    {4294967295u, "CAM_API_STS_UNSUCCESSFUL"},
};

TEST(StatusName, nameOfEveryStatus)
{
    for (const auto& [status, name] : kNames)
        EXPECT_STREQ(cameraStatusName(status), name) << status;
}

TEST(StatusName, everyGapIsUnknown)
{
    constexpr std::uint32_t kHighestNamedBelowTheLast = 41216;
    for (std::uint32_t status = 0; status <= kHighestNamedBelowTheLast + 1; ++status) {
        if (kNames.find(status) == kNames.end()) {
            ASSERT_STREQ(cameraStatusName(status), "UNKNOWN") << status;
        }
    }
    for (const std::uint32_t status : {0x7FFFFFFFu, 0x80000000u, 0xFFFF0000u, 0xFFFFFFFEu})
        EXPECT_STREQ(cameraStatusName(status), "UNKNOWN") << status;
}

TEST(StatusName, theConstantsHaveTheirNumbers)
{
    EXPECT_EQ(Orvo::CAM_API_STS_GENICAM_ERR, 258u);
    EXPECT_STREQ(cameraStatusName(Orvo::CAM_API_STS_TIMEOUT), "CAM_API_STS_TIMEOUT");
    EXPECT_STREQ(cameraStatusName(Orvo::CAM_API_STS_NOT_AVAILABLE), "CAM_API_STS_NOT_AVAILABLE");
}

} // namespace
