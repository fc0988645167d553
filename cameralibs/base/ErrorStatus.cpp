#include "cameralibs/base/ErrorStatus.h"

#include <arv.h>

#include <cstddef>
#include <iterator>

namespace cameralibs {

namespace {

using namespace Orvo;

// Indexed by ArvDeviceError.
constexpr CAM_API_STATUS kDeviceErrors[] = {
    CAM_API_STS_INVALID_PARAMETER,     // wrong feature
    CAM_API_STS_NOT_FOUND,             // feature not found
    CAM_API_STS_CAMERA_NOT_RESPONDING, // not connected
    CAM_API_STS_UNSUCCESSFUL,          // protocol error
    CAM_API_STS_CAMERA_NOT_RESPONDING, // transfer error
    CAM_API_STS_CAMERA_NOT_RESPONDING, // timeout
    CAM_API_STS_CAMERA_NOT_RESPONDING, // not found
    CAM_API_STS_INVALID_PARAMETER,     // invalid parameter
    CAM_API_STS_XML_LOAD_ERR,          // description not found
    CAM_API_STS_NOT_IMPLEMENTED,       // no stream channel
    CAM_API_STS_ACCESS_DENIED,         // not controller
    CAM_API_STS_UNSUCCESSFUL,          // unknown
    CAM_API_STS_NOT_IMPLEMENTED,       // not implemented by the device
    CAM_API_STS_INVALID_PARAMETER,     // parameter refused by the device
    CAM_API_STS_INVALID_ADDRESS,       // invalid address
    CAM_API_STS_WRITE_PROTECT,         // write protect
    CAM_API_STS_BAD_ALIGNMENT,         // bad alignment
    CAM_API_STS_ACCESS_DENIED,         // access denied
    CAM_API_STS_BUSY,                  // busy
};

CAM_API_STATUS genicamStatus(int code, Attempted attempted)
{
    switch (code) {
    case ARV_GC_ERROR_EMPTY_ENUMERATION:
    case ARV_GC_ERROR_NO_EVENT_IMPLEMENTATION:
        return CAM_API_STS_NOT_AVAILABLE;
    case ARV_GC_ERROR_OUT_OF_RANGE:
    case ARV_GC_ERROR_ENUM_ENTRY_NOT_FOUND:
    case ARV_GC_ERROR_INVALID_LENGTH:
    case ARV_GC_ERROR_SET_FROM_STRING_UNDEFINED:
    case ARV_GC_ERROR_GET_AS_STRING_UNDEFINED:
    case ARV_GC_ERROR_INVALID_SYNTAX:
        return CAM_API_STS_INVALID_PARAMETER;
    case ARV_GC_ERROR_READ_ONLY: // Aravis also reports this for reading a write-only register
        return attempted == Attempted::writing ? CAM_API_STS_NOT_WRITABLE : CAM_API_STS_NOT_READABLE;
    default:
        return CAM_API_STS_GENICAM_ERR;
    }
}

Outcome mapped(const GErrorPointer& error, Attempted attempted, CAM_API_STATUS other)
{
    if (!error)
        return {};
    Outcome outcome{other, error->message != nullptr ? error->message : ""};
    const auto code = static_cast<std::size_t>(error->code);
    if (error->domain == ARV_DEVICE_ERROR) {
        outcome.status = code < std::size(kDeviceErrors) ? kDeviceErrors[code] : CAM_API_STS_UNSUCCESSFUL;
    } else if (error->domain == ARV_GC_ERROR) {
        outcome.status = genicamStatus(error->code, attempted);
    } else if (error->domain == ARV_CHUNK_PARSER_ERROR) {
        outcome.status = CAM_API_STS_NOT_AVAILABLE;
    }
    return outcome;
}

} // namespace

Outcome outcomeOf(const GErrorPointer& error, Attempted attempted)
{
    return mapped(error, attempted, CAM_API_STS_GENICAM_ERR);
}

Outcome outcomeOfOpening(const GErrorPointer& error)
{
    // Aravis reports a device that another program has claimed as a protocol error.
    const bool refused = g_error_matches(error.get(), ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_PROTOCOL_ERROR) != FALSE;
    Outcome outcome = mapped(error, Attempted::reading, CAM_API_STS_UNSUCCESSFUL);
    if (refused)
        outcome.status = CAM_API_STS_BUSY;
    return outcome;
}

} // namespace cameralibs
