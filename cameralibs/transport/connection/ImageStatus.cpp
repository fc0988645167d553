#include "cameralibs/transport/connection/ImageStatus.h"

namespace cameralibs::transport {

using namespace Orvo;

CAM_API_STATUS imageStatus(ArvBufferStatus status, int rowPadding)
{
    switch (status) {
    case ARV_BUFFER_STATUS_SUCCESS:
        return rowPadding == 0 ? CAM_API_STS_SUCCESS : CAM_API_STS_UNEXPECTED_BUFFER_SIZE;
    case ARV_BUFFER_STATUS_TIMEOUT:
    case ARV_BUFFER_STATUS_MISSING_PACKETS:
        return CAM_API_STS_MISSING_PACKETS;
    case ARV_BUFFER_STATUS_WRONG_PACKET_ID:
        return CAM_API_STS_UNEXPECTED_NUMBER;
    case ARV_BUFFER_STATUS_SIZE_MISMATCH:
        return CAM_API_STS_UNEXPECTED_BUFFER_SIZE;
    case ARV_BUFFER_STATUS_ABORTED:
    case ARV_BUFFER_STATUS_FILLING:
        return CAM_API_STS_FLUSH_REQUESTED;
    default:
        return CAM_API_STS_DATA_DISCARDED;
    }
}

} // namespace cameralibs::transport
