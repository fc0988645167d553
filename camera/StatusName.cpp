#include "StatusName.h"

#include <algorithm>
#include <iterator>

namespace {

struct StatusName {
    Orvo::CAM_API_STATUS status;
    const char* name;
};

// In rising order of the status. The blanks that end two of the names are meant.
constexpr StatusName kStatusNames[] = {
    {0x0, "CAM_API_STS_SUCCESS"},
    {0x1, "CAM_API_STS_NOT_INITIALIZED"},
    {0x2, "CAM_API_STS_ALREADY_INITIALIZED"},
    {0x3, "CAM_API_STS_NOT_FOUND"},
    {0x4, "CAM_API_STS_ALREADY_OPENED"},
    {0x5, "CAM_API_STS_ALREADY_ACTIVATED"},
    {0x6, "CAM_API_STS_INVALID_CAMERA_INDEX"},
    {0x7, "CAM_API_STS_INVALID_CAMERA_HANDLE"},
    {0x8, "CAM_API_STS_INVALID_NODE_HANDLE"},
    {0x9, "CAM_API_STS_INVALID_STREAM_HANDLE"},
    {0xA, "CAM_API_STS_INVALID_REQUEST_HANDLE"},
    {0xB, "CAM_API_STS_INVALID_EVENT_HANDLE"},
    {0xC, "CAM_API_STS_INVALID_IMAGE_HANDLE"},
    {0xD, "CAM_API_STS_INVALID_PARAMETER"},
    {0xE, "CAM_API_STS_BUFFER_TOO_SMALL"},
    {0xF, "CAM_API_STS_NO_MEMORY"},
    {0x10, "CAM_API_STS_MEMORY_NO_ACCESS"},
    {0x11, "CAM_API_STS_NOT_IMPLEMENTED"},
    {0x12, "CAM_API_STS_TIMEOUT"},
    {0x13, "CAM_API_STS_CAMERA_NOT_RESPONDING"},
    {0x14, "CAM_API_STS_EMPTY_COMPLETE_QUEUE"},
    {0x15, "CAM_API_STS_NOT_READY"},
    {0x16, "CAM_API_STS_ACCESS_MODE_SET_ERR"},
    {0x101, "CAM_API_STS_XML_LOAD_ERR"},
    {0x102, "CAM_API_STS_GENICAM_ERR"},
    {0x103, "CAM_API_STS_DLL_LOAD_ERR"},
    {0x801, "CAM_API_STS_INVALID_ADDRESS"},
    {0x802, "CAM_API_STS_WRITE_PROTECT"},
    {0x803, "CAM_API_STS_BAD_ALIGNMENT"},
    {0x804, "CAM_API_STS_ACCESS_DENIED"},
    {0x805, "CAM_API_STS_BUSY"},
    {0x806, "CAM_API_STS_NOT_READABLE"},
    {0x807, "CAM_API_STS_NOT_WRITABLE"},
    {0x808, "CAM_API_STS_NOT_AVAILABLE"},
    {0x1001, "CAM_API_STS_REQUEST_TIMEOUT"},
    {0x1002, "CAM_API_STS_RESEND_TIMEOUT"},
    {0x1003, "CAM_API_STS_RESPONSE_TIMEOUT"},
    {0x1004, "CAM_API_STS_BUFFER_FULL"},
    {0x1005, "CAM_API_STS_UNEXPECTED_BUFFER_SIZE "},
    {0x1006, "CAM_API_STS_UNEXPECTED_NUMBER"},
    {0x1007, "CAM_API_STS_PACKET_STATUS_ERROR"},
    {0x1008, "CAM_API_STS_RESEND_NOT_IMPLEMENTED"},
    {0x1009, "CAM_API_STS_PACKET_UNAVAILABLE"},
    {0x100A, "CAM_API_STS_MISSING_PACKETS "},
    {0x100B, "CAM_API_STS_FLUSH_REQUESTED"},
    {0x100C, "CAM_API_STS_TOO_MANY_PACKET_MISSING"},
    {0x100D, "CAM_API_STS_FLUSHED_BY_D0EXIT"},
    {0x100E, "CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE"},
    {0x100F, "CAM_API_STS_DRIVER_LOAD_ERR"},
    {0x2001, "CAM_API_STS_FILE_OPEN_ERROR"},
    {0x2002, "CAM_API_STS_FILE_WRITE_ERROR"},
    {0x2003, "CAM_API_STS_FILE_READ_ERROR"},
    {0x2004, "CAM_API_STS_FILE_NOT_FOUND"},
    {0xA100, "CAM_API_STS_DATA_DISCARDED"},
    {0xFFFFFFFF, "CAM_API_STS_UNSUCCESSFUL"},
};

} // namespace

const char* cameraStatusName(Orvo::CAM_API_STATUS status) noexcept
{
    const auto found = std::lower_bound(std::begin(kStatusNames), std::end(kStatusNames), status,
                                        [](const StatusName& row, Orvo::CAM_API_STATUS s) { return row.status < s; });
    return found != std::end(kStatusNames) && found->status == status ? found->name : "UNKNOWN";
}
