#include "cameralibs/base/ErrorStatus.h"

#include <arv.h>
#include <gio/gio.h>
#include <gtest/gtest.h>

using namespace cameralibs;

namespace {

struct DeviceRow {
    int code;
    Orvo::CAM_API_STATUS status;
};

constexpr Orvo::CAM_API_STATUS kUnsuccessful = 0xFFFFFFFF;

constexpr DeviceRow kDeviceErrors[] = {
    {ARV_DEVICE_ERROR_WRONG_FEATURE, 13},
    {ARV_DEVICE_ERROR_FEATURE_NOT_FOUND, 3},
    {ARV_DEVICE_ERROR_NOT_CONNECTED, 19},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR, kUnsuccessful},
    {ARV_DEVICE_ERROR_TRANSFER_ERROR, 19},
    {ARV_DEVICE_ERROR_TIMEOUT, 19},
    {ARV_DEVICE_ERROR_NOT_FOUND, 19},
    {ARV_DEVICE_ERROR_INVALID_PARAMETER, 13},
    {ARV_DEVICE_ERROR_GENICAM_NOT_FOUND, 257},
    {ARV_DEVICE_ERROR_NO_STREAM_CHANNEL, 17},
    {ARV_DEVICE_ERROR_NOT_CONTROLLER, 2052},
    {ARV_DEVICE_ERROR_UNKNOWN, kUnsuccessful},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_NOT_IMPLEMENTED, 17},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_PARAMETER, 13},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_INVALID_ADDRESS, 2049},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_WRITE_PROTECT, 2050},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_BAD_ALIGNMENT, 2051},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_ACCESS_DENIED, 2052},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_BUSY, 2053},
    {ARV_DEVICE_ERROR_PROTOCOL_ERROR_BUSY + 1, kUnsuccessful},
    {-1, kUnsuccessful},
};

struct GenicamRow {
    int code;
    Orvo::CAM_API_STATUS reading;
    Orvo::CAM_API_STATUS writing;
};

constexpr GenicamRow kGenicamErrors[] = {
    {ARV_GC_ERROR_PROPERTY_NOT_DEFINED, 258, 258},
    {ARV_GC_ERROR_PVALUE_NOT_DEFINED, 258, 258},
    {ARV_GC_ERROR_INVALID_PVALUE, 258, 258},
    {ARV_GC_ERROR_EMPTY_ENUMERATION, 2056, 2056},
    {ARV_GC_ERROR_OUT_OF_RANGE, 13, 13},
    {ARV_GC_ERROR_NO_DEVICE_SET, 258, 258},
    {ARV_GC_ERROR_NO_EVENT_IMPLEMENTATION, 2056, 2056},
    {ARV_GC_ERROR_NODE_NOT_FOUND, 258, 258},
    {ARV_GC_ERROR_ENUM_ENTRY_NOT_FOUND, 13, 13},
    {ARV_GC_ERROR_INVALID_LENGTH, 13, 13},
    {ARV_GC_ERROR_READ_ONLY, 2054, 2055},
    {ARV_GC_ERROR_SET_FROM_STRING_UNDEFINED, 13, 13},
    {ARV_GC_ERROR_GET_AS_STRING_UNDEFINED, 13, 13},
    {ARV_GC_ERROR_INVALID_BIT_RANGE, 258, 258},
    {ARV_GC_ERROR_INVALID_SYNTAX, 13, 13},
};

GErrorPointer errorOf(GQuark domain, int code)
{
    return GErrorPointer(g_error_new_literal(domain, code, "what happened"));
}

Orvo::CAM_API_STATUS status(GQuark domain, int code, Attempted attempted)
{
    return outcomeOf(errorOf(domain, code), attempted).status;
}

} // namespace

TEST(ErrorStatus, NoErrorIsSuccess)
{
    EXPECT_TRUE(outcomeOf({}, Attempted::reading).ok());
    EXPECT_TRUE(outcomeOfOpening({}).ok());
}

TEST(ErrorStatus, EveryDeviceErrorIsMapped)
{
    for (const DeviceRow& row : kDeviceErrors) {
        EXPECT_EQ(status(ARV_DEVICE_ERROR, row.code, Attempted::reading), row.status) << row.code;
        EXPECT_EQ(status(ARV_DEVICE_ERROR, row.code, Attempted::writing), row.status) << row.code;
    }
}

TEST(ErrorStatus, EveryDescriptionErrorIsMapped)
{
    for (const GenicamRow& row : kGenicamErrors) {
        EXPECT_EQ(status(ARV_GC_ERROR, row.code, Attempted::reading), row.reading) << row.code;
        EXPECT_EQ(status(ARV_GC_ERROR, row.code, Attempted::writing), row.writing) << row.code;
    }
}

TEST(ErrorStatus, ErrorsOfOtherLibrariesAreGenICamErrors)
{
    EXPECT_EQ(status(ARV_CHUNK_PARSER_ERROR, 0, Attempted::reading), 2056U);
    EXPECT_EQ(status(g_quark_from_static_string("Aravis"), 1, Attempted::reading), 258U);
    EXPECT_EQ(status(G_IO_ERROR, G_IO_ERROR_FAILED, Attempted::writing), 258U);
}

TEST(ErrorStatus, ErrorsOfOpeningAreMapped)
{
    for (const DeviceRow& row : kDeviceErrors) {
        // Aravis reports a refused claim as a protocol error.
        const Orvo::CAM_API_STATUS expected = row.code == ARV_DEVICE_ERROR_PROTOCOL_ERROR ? 2053 : row.status;
        EXPECT_EQ(outcomeOfOpening(errorOf(ARV_DEVICE_ERROR, row.code)).status, expected) << row.code;
    }
    EXPECT_EQ(outcomeOfOpening(errorOf(G_IO_ERROR, G_IO_ERROR_FAILED)).status, kUnsuccessful);
}

TEST(ErrorStatus, KeepsTheText)
{
    EXPECT_EQ(outcomeOf(errorOf(ARV_GC_ERROR, ARV_GC_ERROR_NODE_NOT_FOUND), Attempted::reading).text, "what happened");
    EXPECT_EQ(outcomeOfOpening(errorOf(G_IO_ERROR, 0)).text, "what happened");
}

TEST(ErrorStatus, NextCallReplacesAnEarlierError)
{
    GErrorPointer error = errorOf(G_IO_ERROR, G_IO_ERROR_FAILED);
    EXPECT_TRUE(error);
    EXPECT_EQ(*error.out(), nullptr);
    EXPECT_FALSE(error);
}
