#pragma once

/// A camera API that does what a test tells it: the tests of the viewer link it in place of the camera libraries.
///
/// Every operation of both libraries is there, is recorded with its arguments, and can be made to fail at any call.
/// Without a script there is one camera: 64 x 48, BayerRG8, no images of its own, and a small node map. Every member
/// may be called from any thread, but the test's own thread is the one that scripts.
///
/// One camera can be open at a time. Handles begin anew with each reset, so that recorded calls compare as text:
/// signals count from 1001, cameras from 2001, streams from 3001; the nodes of the n-th opening from n x 1000000 + 1,
/// in the order of the node map.

#include "camera/OrvoCamApi.h"
#include "camera/OrvoCamUtl.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace scripted {

/// One recorded call: the name of the operation, and its arguments as text in their order. Numbers are decimal, handles
/// too; out-pointers "out" or "null", other pointers "ptr" or "null", texts in quotes, flags "true" / "false", doubles
/// in the shortest form that reads back.
struct Call {
    std::string operation;
    std::vector<std::string> arguments;
    Orvo::CAM_API_STATUS result = Orvo::CAM_API_STS_UNSUCCESSFUL; ///< CAM_API_STS_UNSUCCESSFUL while it is under way

    /// `Operation(a, b)`.
    [[nodiscard]] std::string text() const;
};

/// Back to the state without a script: no calls, no failures, system not initialised, default camera and nodes.
/// No stream may be running.
void reset();

// --- Failing --------------------------------------------------------------------------------------------------------

/// From now on the `nth` call of the operation (1 = the next) gives `status` and does nothing else; the later ones
/// are as ever. Several for one operation add up. Status 0 makes a call that claims success and gives nothing.
void failCall(const std::string& operation, Orvo::CAM_API_STATUS status, int nth = 1);

/// Every call of the operation fails until `heal`.
void failAlways(const std::string& operation, Orvo::CAM_API_STATUS status);

/// Every call of a node operation that names this node fails until `heal`.
void failNode(const std::string& node, const std::string& operation, Orvo::CAM_API_STATUS status);

/// Ends every failure that was scripted for the operation.
void heal(const std::string& operation);

/// Called at the start of every call of the operation, on the caller's thread, when the call is counted and before
/// anything is decided; it may script and may call operations. Null removes it.
void onCall(const std::string& operation, std::function<void()> hook);

// --- Recorded calls -------------------------------------------------------------------------------------------------

[[nodiscard]] std::vector<Call> calls();
/// Calls whose operation starts with one of the prefixes, such as "Strm_" or "Cam_Open".
[[nodiscard]] std::vector<Call> calls(const std::vector<std::string>& prefixes);
/// The operations' names only, Sys_WaitForSignal and the display thread's polling of buffers left out.
[[nodiscard]] std::vector<std::string> callNames();
[[nodiscard]] int count(const std::string& operation);
void clearCalls();

// --- Cameras --------------------------------------------------------------------------------------------------------

/// What discovery lists, in this order.
struct CameraSpec {
    std::string vendor = "Scripted";
    std::string model = "SC-1";
    std::string serial = "0001";
    std::string userName;
    std::uint32_t link = Orvo::CAM_LINK_SIMULATED;
};
void setCameras(std::vector<CameraSpec> cameras);

/// Pixel formats of the default camera, which has the first.
constexpr std::uint32_t bayerRG8 = 0x01080009;
constexpr std::uint32_t mono8 = 0x01080001;

/// What the utility operations tell. The nodes Width, Height, PixelFormat, TriggerMode and TriggerSource follow where
/// they are, and lead when they are written. `flag` is the byte that tells the trigger mode; any but 0 means on.
void setImageFormat(std::uint32_t width, std::uint32_t height, std::uint32_t pixelFormat);
void setTrigger(std::uint8_t flag, std::uint32_t source);

/// The text of Misc_GetLastGenICamError.
void setGenICamError(std::string text);
/// A text of 64 bytes or more fills its field without a NUL; all other bytes of the record are 'X'.
void setSystemInformation(const std::string& driver, const std::string& u3vApi2, const std::string& u3vCamApi,
                          const std::string& camApi);

/// Sets the removal signal of the open camera; from then on operations on it give 19 and discovery does not list it.
void unplug();
/// Every unplugged camera is back; a handle from before stays dead.
void plugIn();

// --- Stream ---------------------------------------------------------------------------------------------------------

/// True between Strm_Start and Strm_Stop.
[[nodiscard]] bool streaming();

/// Puts an image into the next slot and calls the image callback, on a thread that is not the test's; returns when the
/// callback has returned. `fill` is written to every byte. An image that finds the slot locked is dropped and told by
/// the busy callback. False where no stream is running. May be called from any thread but a callback's.
bool deliverImage(std::uint64_t frameNumber, std::uint8_t fill = 0, std::uint32_t status = 0);
bool deliverError(std::uint32_t status, std::uint32_t bufferIndex = 0);
bool deliverBusy(std::uint32_t bufferIndex);

/// The callbacks that were registered last, kept past Strm_Close, so that a late callback can be played; each is called
/// on a thread that is not the test's. The late image has a frame number and nothing else.
void lateImage(std::uint64_t frameNumber);
void lateError(std::uint32_t status, std::uint32_t bufferIndex = 0);
void lateBusy(std::uint32_t bufferIndex);

/// What ConvImage does besides being recorded: by default it writes the first source byte to B, G and R, and 255.
void onConvImage(std::function<void(void* dst, const void* src, std::uint32_t width, std::uint32_t height)> convert);

/// Locks that were taken and not given back.
[[nodiscard]] int lockedBuffers();

// --- Nodes ----------------------------------------------------------------------------------------------------------

struct NodeSpec {
    std::string name;
    Orvo::NodeType type = Orvo::NODE_TYPE_INTEGER;
    Orvo::NodeAccessMode access = Orvo::NODE_ACCESS_MODE_RW;
    Orvo::TC_NODE_VISIBILITY visibility = Orvo::NODE_VISIBILITY_BEGINNER;
    std::string description;
    std::string toolTip;
    std::string unit;
    Orvo::NodeRepresentation representation = Orvo::NODE_REPRESENTATION_PURE_NUMBER;
    Orvo::FloatDisplayNotation notation = Orvo::FLOAT_DISPLAY_NOTATION_FIXED;
    std::int64_t precision = 2;

    std::int64_t intValue = 0; ///< of an enumeration: the value of the chosen entry
    std::int64_t intMin = INT64_MIN;
    std::int64_t intMax = INT64_MAX;
    std::int64_t intInc = 1;
    double floatValue = 0;
    double floatMin = -1e300;
    double floatMax = 1e300;
    std::uint8_t floatHasInc = 0; ///< true where it is not 0: a library may write any byte
    double floatInc = 0;
    std::uint8_t boolValue = 0; ///< likewise
    std::string strValue;

    /// Features of a category; entries of an enumeration (type NODE_TYPE_ENUM_ENTRY, `intValue` their number, `name`
    /// the symbolic name; as nodes they are called EnumEntry_, the enumeration, _ and that name). A category may name a
    /// feature that is nowhere else: fetching its handle gives CAM_API_STS_NOT_FOUND then.
    std::vector<std::string> features;
    std::vector<NodeSpec> entries;

    int executed = 0; ///< of a command: how often it was executed
};

[[nodiscard]] NodeSpec category(std::string name, std::vector<std::string> features);
[[nodiscard]] NodeSpec enumEntry(std::string name, std::int64_t value,
                                 Orvo::NodeAccessMode access = Orvo::NODE_ACCESS_MODE_RO);

/// Replaces the node map; the first node is usually the category "Root". While a camera is open it takes effect at the
/// next Cam_Open. Values outlive closing and opening.
void setNodes(std::vector<NodeSpec> nodes);
/// A node as it is now, and changing it under the viewer; the name must exist, and stays.
[[nodiscard]] NodeSpec node(const std::string& name);
void changeNode(const std::string& name, const std::function<void(NodeSpec&)>& change);

} // namespace scripted
