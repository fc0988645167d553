#include "cameralibs/transport/connection/ImageSender.h"

#include <gtest/gtest.h>

using cameralibs::transport::imageStatus;

namespace {

struct StatusRow {
    ArvBufferStatus buffer;
    Orvo::CAM_API_STATUS status;
};

constexpr StatusRow kStatuses[] = {
    {ARV_BUFFER_STATUS_SUCCESS, 0},
    {ARV_BUFFER_STATUS_TIMEOUT, 4106},
    {ARV_BUFFER_STATUS_MISSING_PACKETS, 4106},
    {ARV_BUFFER_STATUS_WRONG_PACKET_ID, 4102},
    {ARV_BUFFER_STATUS_SIZE_MISMATCH, 4101},
    {ARV_BUFFER_STATUS_ABORTED, 4107},
    {ARV_BUFFER_STATUS_FILLING, 4107},
    {ARV_BUFFER_STATUS_CLEARED, 41216},
    {ARV_BUFFER_STATUS_UNKNOWN, 41216},
};

} // namespace

TEST(ImageStatus, OfEveryBufferStatus)
{
    for (const StatusRow& row : kStatuses)
        EXPECT_EQ(imageStatus(row.buffer, 0), row.status) << "buffer status " << row.buffer;
}

TEST(ImageStatus, RowsWithBytesBetweenThemHaveTheWrongSize)
{
    EXPECT_EQ(imageStatus(ARV_BUFFER_STATUS_SUCCESS, 4), 4101U);
}
