#pragma once

/// The binary interface of the camera API, libOrvoCamApi_64.so.1.
///
/// Every operation has C linkage, returns a CAM_API_STATUS and may be called from any thread, including an image
/// callback; the few exceptions are documented with the operation. No operation throws.
///
/// Input texts are NUL-terminated bytes. Output texts are NUL-terminated UTF-8, returned in `char* buffer` and
/// `uint32_t* size`. With a null buffer, `*size` receives the required number of bytes, including the terminating NUL.
/// With a buffer, `*size` is its capacity on entry and the number of bytes written on return. If the capacity is too
/// small, the result is CAM_API_STS_BUFFER_TOO_SMALL, nothing is written, and `*size` receives the required number.
///
/// Errors are checked in this order: the library's state, the camera, the other handles, null pointers, the node type
/// and the index, the access mode, the value, the evaluation of the description.

#include <cstddef>
#include <cstdint>

#if defined(ORVO_CAM_BUILD)
#define ORVO_CAM_EXPORT __attribute__((visibility("default")))
#else
#define ORVO_CAM_EXPORT
#endif

namespace Orvo {

using CAM_API_STATUS = std::uint32_t;

constexpr CAM_API_STATUS CAM_API_STS_SUCCESS = 0;
constexpr CAM_API_STATUS CAM_API_STS_NOT_INITIALIZED = 1;
constexpr CAM_API_STATUS CAM_API_STS_ALREADY_INITIALIZED = 2;
constexpr CAM_API_STATUS CAM_API_STS_NOT_FOUND = 3;
constexpr CAM_API_STATUS CAM_API_STS_ALREADY_OPENED = 4;
constexpr CAM_API_STATUS CAM_API_STS_ALREADY_ACTIVATED = 5;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_CAMERA_INDEX = 6;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_CAMERA_HANDLE = 7;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_NODE_HANDLE = 8;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_STREAM_HANDLE = 9;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_REQUEST_HANDLE = 10;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_EVENT_HANDLE = 11;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_IMAGE_HANDLE = 12;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_PARAMETER = 13;
constexpr CAM_API_STATUS CAM_API_STS_BUFFER_TOO_SMALL = 14;
constexpr CAM_API_STATUS CAM_API_STS_NO_MEMORY = 15;
constexpr CAM_API_STATUS CAM_API_STS_MEMORY_NO_ACCESS = 16;
constexpr CAM_API_STATUS CAM_API_STS_NOT_IMPLEMENTED = 17;
constexpr CAM_API_STATUS CAM_API_STS_TIMEOUT = 18;
constexpr CAM_API_STATUS CAM_API_STS_CAMERA_NOT_RESPONDING = 19;
constexpr CAM_API_STATUS CAM_API_STS_EMPTY_COMPLETE_QUEUE = 20;
constexpr CAM_API_STATUS CAM_API_STS_NOT_READY = 21;
constexpr CAM_API_STATUS CAM_API_STS_ACCESS_MODE_SET_ERR = 22;
constexpr CAM_API_STATUS CAM_API_STS_XML_LOAD_ERR = 257;
constexpr CAM_API_STATUS CAM_API_STS_GENICAM_ERR = 258;
constexpr CAM_API_STATUS CAM_API_STS_DLL_LOAD_ERR = 259;
constexpr CAM_API_STATUS CAM_API_STS_INVALID_ADDRESS = 2049;
constexpr CAM_API_STATUS CAM_API_STS_WRITE_PROTECT = 2050;
constexpr CAM_API_STATUS CAM_API_STS_BAD_ALIGNMENT = 2051;
constexpr CAM_API_STATUS CAM_API_STS_ACCESS_DENIED = 2052;
constexpr CAM_API_STATUS CAM_API_STS_BUSY = 2053;
constexpr CAM_API_STATUS CAM_API_STS_NOT_READABLE = 2054;
constexpr CAM_API_STATUS CAM_API_STS_NOT_WRITABLE = 2055;
constexpr CAM_API_STATUS CAM_API_STS_NOT_AVAILABLE = 2056;
constexpr CAM_API_STATUS CAM_API_STS_REQUEST_TIMEOUT = 4097;
constexpr CAM_API_STATUS CAM_API_STS_RESEND_TIMEOUT = 4098;
constexpr CAM_API_STATUS CAM_API_STS_RESPONSE_TIMEOUT = 4099;
constexpr CAM_API_STATUS CAM_API_STS_BUFFER_FULL = 4100;
constexpr CAM_API_STATUS CAM_API_STS_UNEXPECTED_BUFFER_SIZE = 4101;
constexpr CAM_API_STATUS CAM_API_STS_UNEXPECTED_NUMBER = 4102;
constexpr CAM_API_STATUS CAM_API_STS_PACKET_STATUS_ERROR = 4103;
constexpr CAM_API_STATUS CAM_API_STS_RESEND_NOT_IMPLEMENTED = 4104;
constexpr CAM_API_STATUS CAM_API_STS_PACKET_UNAVAILABLE = 4105;
constexpr CAM_API_STATUS CAM_API_STS_MISSING_PACKETS = 4106;
constexpr CAM_API_STATUS CAM_API_STS_FLUSH_REQUESTED = 4107;
constexpr CAM_API_STATUS CAM_API_STS_TOO_MANY_PACKET_MISSING = 4108;
constexpr CAM_API_STATUS CAM_API_STS_FLUSHED_BY_D0EXIT = 4109;
constexpr CAM_API_STATUS CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE = 4110;
constexpr CAM_API_STATUS CAM_API_STS_DRIVER_LOAD_ERR = 4111;
constexpr CAM_API_STATUS CAM_API_STS_FILE_OPEN_ERROR = 8193;
constexpr CAM_API_STATUS CAM_API_STS_FILE_WRITE_ERROR = 8194;
constexpr CAM_API_STATUS CAM_API_STS_FILE_READ_ERROR = 8195;
constexpr CAM_API_STATUS CAM_API_STS_FILE_NOT_FOUND = 8196;
constexpr CAM_API_STATUS CAM_API_STS_DATA_DISCARDED = 41216;
constexpr CAM_API_STATUS CAM_API_STS_UNSUCCESSFUL = 0xFFFFFFFF;

/// Opaque; 0 means none. A handle is never reused within a process.
using CAM_HANDLE = std::uint64_t;
using CAM_NODE_HANDLE = std::uint64_t;
using CAM_STRM_HANDLE = std::uint64_t;
using CAM_SIGNAL_HANDLE = std::uint64_t;

/// The interface types of GenICam's GenApi standard.
enum NodeType : std::int32_t {
    NODE_TYPE_VALUE = 0,
    NODE_TYPE_BASE = 1,
    NODE_TYPE_INTEGER = 2,
    NODE_TYPE_BOOLEAN = 3,
    NODE_TYPE_COMMAND = 4,
    NODE_TYPE_FLOAT = 5,
    NODE_TYPE_STRING = 6,
    NODE_TYPE_REGISTER = 7,
    NODE_TYPE_CATEGORY = 8,
    NODE_TYPE_ENUMERATION = 9,
    NODE_TYPE_ENUM_ENTRY = 10,
    NODE_TYPE_PORT = 11,
    NODE_TYPE_UNKNOWN = 12,
};

enum NodeAccessMode : std::int32_t {
    NODE_ACCESS_MODE_NI = 0,        ///< not implemented
    NODE_ACCESS_MODE_NA = 1,        ///< not available
    NODE_ACCESS_MODE_WO = 2,        ///< write-only
    NODE_ACCESS_MODE_RO = 3,        ///< read-only
    NODE_ACCESS_MODE_RW = 4,        ///< read-write
    NODE_ACCESS_MODE_UNDEFINED = 6, ///< not read yet; the library never returns it
};

enum TC_NODE_VISIBILITY : std::int32_t {
    NODE_VISIBILITY_BEGINNER = 0,
    NODE_VISIBILITY_EXPERT = 1,
    NODE_VISIBILITY_GURU = 2,
    NODE_VISIBILITY_INVISIBLE = 3,
};

enum NodeRepresentation : std::int32_t {
    NODE_REPRESENTATION_LINEAR = 0,
    NODE_REPRESENTATION_LOGARITHMIC = 1,
    NODE_REPRESENTATION_BOOLEAN = 2,
    NODE_REPRESENTATION_PURE_NUMBER = 3,
    NODE_REPRESENTATION_HEX_NUMBER = 4,
    NODE_REPRESENTATION_IPV4_ADDRESS = 5,
    NODE_REPRESENTATION_MAC_ADDRESS = 6,
};

enum FloatDisplayNotation : std::int32_t {
    FLOAT_DISPLAY_NOTATION_AUTOMATIC = 0,
    FLOAT_DISPLAY_NOTATION_FIXED = 1,
    FLOAT_DISPLAY_NOTATION_SCIENTIFIC = 2,
};

/// One image of a stream. Reserved bytes are zero.
struct CAM_IMAGE_INFO {
    std::uint8_t reserved0[8];
    std::uint64_t timestampNs;
    std::uint8_t reserved16[16];
    std::uint64_t frameNumber; ///< strictly increasing after a start; a gap means that images were lost
    void* data;                ///< the raw image, in the camera's pixel format; see Strm_Start
    std::uint64_t dataSize;    ///< number of bytes at `data`
    std::uint8_t reserved56[8];
    std::uint32_t status; ///< a CAM_API_STATUS; 0 = complete
    std::uint8_t reserved68[20];
};
static_assert(sizeof(CAM_IMAGE_INFO) == 88 && alignof(CAM_IMAGE_INFO) == 8);
static_assert(offsetof(CAM_IMAGE_INFO, timestampNs) == 8 && offsetof(CAM_IMAGE_INFO, frameNumber) == 32);
static_assert(offsetof(CAM_IMAGE_INFO, data) == 40 && offsetof(CAM_IMAGE_INFO, dataSize) == 48);
static_assert(offsetof(CAM_IMAGE_INFO, status) == 64);

enum CAM_LINK : std::uint32_t {
    CAM_LINK_USB3_VISION = 1,
    CAM_LINK_GIGE_VISION = 2,
    CAM_LINK_SIMULATED = 255,
};

/// The identification of a camera. The texts are ASCII and NUL-terminated; reserved bytes are zero.
struct CAM_INFO {
    std::uint32_t link; ///< a CAM_LINK
    char vendorName[64];
    char modelName[64];
    char serialNumber[64];
    char userDefinedName[64]; ///< a real camera's is empty until it has been opened once since Sys_Initialize
    std::uint32_t cameraIndex;
    std::uint8_t reserved[760];
};
static_assert(sizeof(CAM_INFO) == 1024 && offsetof(CAM_INFO, vendorName) == 4 && offsetof(CAM_INFO, modelName) == 68);
static_assert(offsetof(CAM_INFO, serialNumber) == 132 && offsetof(CAM_INFO, userDefinedName) == 196);
static_assert(offsetof(CAM_INFO, cameraIndex) == 260);

/// The kinds of camera that Sys_Initialize enables.
enum CAM_LAYER : std::uint32_t {
    CAM_LAYER_USB3_VISION = 1,
    CAM_LAYER_GIGE_VISION = 2,
    CAM_LAYER_SIMULATED = 4,
};

/// The versions of the underlying layers. The texts are UTF-8 and NUL-terminated; reserved bytes are zero.
struct CAM_SYSTEM_INFO {
    char driverVersion[64];
    char u3vApi2Version[64];
    char u3vCamApiVersion[64];
    std::uint8_t reserved192[192];
    char camApiVersion[64];
    std::uint8_t reserved448[576];
};
static_assert(sizeof(CAM_SYSTEM_INFO) == 1024 && offsetof(CAM_SYSTEM_INFO, u3vApi2Version) == 64);
static_assert(offsetof(CAM_SYSTEM_INFO, u3vCamApiVersion) == 128 && offsetof(CAM_SYSTEM_INFO, camApiVersion) == 384);

extern "C" {

/// Callbacks run on a thread of the library, one at a time per stream, with no lock of the library held. `info` is
/// valid only during the call. Every operation may be called inside except Strm_Stop, Strm_Close, Cam_Close and
/// Sys_Terminate, which return CAM_API_STS_INVALID_PARAMETER there.
typedef void (*CAM_IMAGE_ACQUIRED_CALLBACK)(CAM_HANDLE camera, CAM_STRM_HANDLE stream, CAM_IMAGE_INFO* info,
                                            std::uint32_t bufferIndex, void* context);
typedef void (*CAM_IMAGE_ERROR_CALLBACK)(CAM_HANDLE camera, CAM_STRM_HANDLE stream, std::uint32_t status,
                                         std::uint32_t bufferIndex, void* context);
typedef void (*CAM_BUFFER_BUSY_CALLBACK)(CAM_HANDLE camera, CAM_STRM_HANDLE stream, std::uint32_t bufferIndex,
                                         void* context);

// --- System ---------------------------------------------------------------------------------------------------------

/// `mask` selects the layers: a combination of CAM_LAYER values, or 65535 for all. A second call without Sys_Terminate
/// in between returns CAM_API_STS_ALREADY_INITIALIZED.
ORVO_CAM_EXPORT CAM_API_STATUS Sys_Initialize(std::uint32_t mask);

/// Closes all cameras, streams and signals. Meanwhile, operations on other threads, including Sys_Initialize, return
/// CAM_API_STS_NOT_INITIALIZED.
ORVO_CAM_EXPORT CAM_API_STATUS Sys_Terminate();

ORVO_CAM_EXPORT CAM_API_STATUS Sys_GetInformation(CAM_SYSTEM_INFO* info);

/// Enumerates again, which takes about a second if GigE Vision cameras are searched for. Camera indices are 0 to
/// `*count` - 1 and valid until the next call.
ORVO_CAM_EXPORT CAM_API_STATUS Sys_GetNumOfCameras(std::uint32_t* count);

ORVO_CAM_EXPORT CAM_API_STATUS Sys_CreateSignal(CAM_SIGNAL_HANDLE* signal);
ORVO_CAM_EXPORT CAM_API_STATUS Sys_CloseSignal(CAM_SIGNAL_HANDLE signal);

/// 0 = set, CAM_API_STS_TIMEOUT = not set within the time. 0 ms polls, 0xFFFFFFFF ms waits without a time-out.
ORVO_CAM_EXPORT CAM_API_STATUS Sys_WaitForSignal(CAM_SIGNAL_HANDLE signal, std::uint32_t timeoutMs);

// --- Camera ---------------------------------------------------------------------------------------------------------

/// By camera handle, or by index if `camera` is 0. Does not access the device.
ORVO_CAM_EXPORT CAM_API_STATUS Cam_GetInformation(CAM_HANDLE camera, std::uint32_t cameraIndex, CAM_INFO* info);

/// `removalSignal` (0 = none) is cleared here and set when the camera is unplugged, before any operation on its
/// handles returns CAM_API_STS_CAMERA_NOT_RESPONDING; it then stays set. `openOption` is 1, `reserved` null,
/// `accessMode` 1 (control). CAM_API_STS_XML_LOAD_ERR and CAM_API_STS_GENICAM_ERR leave a text for
/// Misc_GetLastGenICamError.
ORVO_CAM_EXPORT CAM_API_STATUS Cam_Open(std::uint32_t cameraIndex, CAM_HANDLE* camera, CAM_SIGNAL_HANDLE removalSignal,
                                        std::uint32_t openOption, void* reserved, std::uint32_t accessMode);

/// Also closes the camera's stream.
ORVO_CAM_EXPORT CAM_API_STATUS Cam_Close(CAM_HANDLE camera);

/// The text behind the last CAM_API_STS_GENICAM_ERR or CAM_API_STS_XML_LOAD_ERR of the calling thread, of at
/// most 1,000 bytes. The library owns it; it is valid until the next operation on this thread. Needs no Sys_Initialize.
ORVO_CAM_EXPORT CAM_API_STATUS Misc_GetLastGenICamError(const char** text);

// --- Stream ---------------------------------------------------------------------------------------------------------

/// `maxImageSize` (may be null) receives the size of the largest image in bytes. A camera has one stream at most. If
/// the buffers would take 4 GiB or more in total, this operation and Strm_Start return CAM_API_STS_INVALID_PARAMETER.
ORVO_CAM_EXPORT CAM_API_STATUS Strm_OpenSimple(CAM_HANDLE camera, CAM_STRM_HANDLE* stream, std::uint32_t* maxImageSize,
                                               void* reserved1, std::uint32_t bufferCount, void* reserved2);
ORVO_CAM_EXPORT CAM_API_STATUS Strm_Close(CAM_STRM_HANDLE stream);

/// A null callback removes the one that is set.
ORVO_CAM_EXPORT CAM_API_STATUS Strm_SetCallbackImageAcquired(CAM_STRM_HANDLE stream, void* context,
                                                             CAM_IMAGE_ACQUIRED_CALLBACK callback);
ORVO_CAM_EXPORT CAM_API_STATUS Strm_SetCallbackImageError(CAM_STRM_HANDLE stream, void* context,
                                                          CAM_IMAGE_ERROR_CALLBACK callback);
ORVO_CAM_EXPORT CAM_API_STATUS Strm_SetCallbackBufferBusy(CAM_STRM_HANDLE stream, void* context,
                                                          CAM_BUFFER_BUSY_CALLBACK callback);

/// From now on, the data of every slot is readable memory for an image of the largest width, the largest height and the
/// widest pixel format reported for the camera since it was opened. Bytes that the camera does not send are zero.
ORVO_CAM_EXPORT CAM_API_STATUS Strm_Start(CAM_STRM_HANDLE stream, std::uint32_t requestCount);

/// No callback runs after it has returned. 0 if the stream is not started.
ORVO_CAM_EXPORT CAM_API_STATUS Strm_Stop(CAM_STRM_HANDLE stream);

/// The slot of the newest image; CAM_API_STS_NOT_READY before the first image of a start.
ORVO_CAM_EXPORT CAM_API_STATUS Strm_GetCurrentBufferIndex(CAM_STRM_HANDLE stream, std::uint32_t* index);

/// A locked slot is not overwritten until it has been unlocked as often as it was locked. If the next slot is locked,
/// the image is dropped and reported by the buffer-busy callback. Slots may be locked after Strm_Stop until Strm_Close.
ORVO_CAM_EXPORT CAM_API_STATUS Strm_LockBuffer(CAM_STRM_HANDLE stream, std::uint32_t index, CAM_IMAGE_INFO* info);
ORVO_CAM_EXPORT CAM_API_STATUS Strm_UnlockBuffer(CAM_STRM_HANDLE stream, std::uint32_t index);

// --- Node -----------------------------------------------------------------------------------------------------------
// The entry of an enumeration is a separate node; its access mode is 3 while it can be chosen, else 1 or 0. If `verify`
// is false, range and increment are left to the device; the access mode is always checked.

/// CAM_API_STS_NOT_FOUND and handle 0 for an unknown name. A node always has the same handle.
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetNode(CAM_HANDLE camera, const char* name, CAM_NODE_HANDLE* node);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetNumOfFeatures(CAM_HANDLE camera, CAM_NODE_HANDLE category, std::uint32_t* count);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFeatureByIndex(CAM_HANDLE camera, CAM_NODE_HANDLE category, std::uint32_t index,
                                                    CAM_NODE_HANDLE* child);

/// At most 255 bytes without the terminating NUL.
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetName(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetType(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeType* type);

/// The current access mode, including the effects of selectors, availability and locks. That of categories is 3.
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE camera, CAM_NODE_HANDLE node, NodeAccessMode* mode);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetVisibility(CAM_HANDLE camera, CAM_NODE_HANDLE node,
                                                TC_NODE_VISIBILITY* visibility);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetDescription(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer,
                                                 std::uint32_t* size);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetToolTip(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer,
                                             std::uint32_t* size);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetUnit(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetRepresentation(CAM_HANDLE camera, CAM_NODE_HANDLE node,
                                                    NodeRepresentation* representation);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatDisplayNotation(CAM_HANDLE camera, CAM_NODE_HANDLE node,
                                                          FloatDisplayNotation* notation);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatDisplayPrecision(CAM_HANDLE camera, CAM_NODE_HANDLE node,
                                                           std::int64_t* precision);

ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatMin(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatMax(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value);

/// CAM_API_STS_INVALID_PARAMETER if Nd_GetFloatHasInc returns false.
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, double* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetFloatHasInc(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool* hasInc);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetBoolValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer,
                                              std::uint32_t* size);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetEnumStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, char* buffer,
                                                  std::uint32_t* size);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetEnumIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t* value);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetNumOfEnumEntries(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::uint32_t* count);

/// Entries are in the order of the camera's description, including those that cannot be chosen.
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetEnumEntryByIndex(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::uint32_t index,
                                                      CAM_NODE_HANDLE* entry);

/// The symbolic name of an entry, at most 255 bytes without the terminating NUL.
ORVO_CAM_EXPORT CAM_API_STATUS Nd_GetEnumEntryStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE entry, char* buffer,
                                                       std::uint32_t* size);

ORVO_CAM_EXPORT CAM_API_STATUS Nd_SetIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t value,
                                              bool verify = true);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_SetFloatValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, double value,
                                                bool verify = true);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_SetBoolValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool value, bool verify = true);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_SetStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, const char* value,
                                              bool verify = true);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_SetEnumStrValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, const char* value,
                                                  bool verify = true);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_SetEnumIntValue(CAM_HANDLE camera, CAM_NODE_HANDLE node, std::int64_t value,
                                                  bool verify = true);
ORVO_CAM_EXPORT CAM_API_STATUS Nd_CmdExecute(CAM_HANDLE camera, CAM_NODE_HANDLE node, bool verify = true);

} // extern "C"

} // namespace Orvo
