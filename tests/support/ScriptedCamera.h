#pragma once

/// A camera API that tests script; the tests of the viewer link it instead of the camera libraries.
///
/// It implements every operation of both libraries, records each call with its arguments, and can make any call fail.
/// Without a script there is one camera: 64 x 48, BayerRG8, no images of its own, and a small node map. All functions
/// are thread-safe, but only the test's own thread should script.
///
/// One camera can be open at a time. Handles restart with each reset, so that recorded calls compare as text:
/// signals count from 1001, cameras from 2001, streams from 3001; the nodes of the n-th opening from n x 1000000 + 1,
/// in the order of the node map.

#include "camera/OrvoCamApi.h"
#include "camera/OrvoCamUtl.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace scripted {

/// One recorded call: the name of the operation and its arguments as text, in order. Numbers and handles are decimal,
/// out-pointers "out" or "null", other pointers "ptr" or "null", texts quoted, flags "true" or "false", doubles in the
/// shortest form that converts back exactly.
struct Call {
    std::string operation;
    std::vector<std::string> arguments;
    Orvo::CAM_API_STATUS result = Orvo::CAM_API_STS_UNSUCCESSFUL; ///< CAM_API_STS_UNSUCCESSFUL until it returns

    /// `Operation(a, b)`.
    [[nodiscard]] std::string text() const;
};

/// Restores the state without a script: no calls, no failures, system not initialised, default camera and nodes.
/// No stream may be running.
void reset();

// --- Failing --------------------------------------------------------------------------------------------------------

/// The `nth` call of the operation from now on (1 = the next) only returns `status`; later calls are not affected.
/// Several failures of one operation add up. Status 0 makes a call return success without a result.
void failCall(const std::string& operation, Orvo::CAM_API_STATUS status, int nth = 1);

/// Every call of the operation fails until `heal`.
void failAlways(const std::string& operation, Orvo::CAM_API_STATUS status);

/// Every call of a node operation that names this node fails until `heal`.
void failNode(const std::string& node, const std::string& operation, Orvo::CAM_API_STATUS status);

/// Ends every failure that was scripted for the operation.
void heal(const std::string& operation);

/// Ends every scripted failure but those of failNode().
void healAll();

/// The hook runs at the start of every call of the operation, on the caller's thread, after the call is counted and
/// before its result is decided. It may script and call operations. Null removes it.
void onCall(const std::string& operation, std::function<void()> hook);

// --- Recorded calls -------------------------------------------------------------------------------------------------

[[nodiscard]] std::vector<Call> calls();
/// The number of recorded calls, and those from the n-th on (0 = the first).
[[nodiscard]] std::size_t callCount();
[[nodiscard]] std::vector<Call> callsFrom(std::size_t first);
/// Calls whose operation starts with one of the prefixes, such as "Strm_" or "Cam_Open".
[[nodiscard]] std::vector<Call> calls(const std::vector<std::string>& prefixes);
/// The names of the operations, without Sys_WaitForSignal and the display thread's polling of buffers.
[[nodiscard]] std::vector<std::string> callNames();
[[nodiscard]] int count(const std::string& operation);
void clearCalls();

// --- Cameras --------------------------------------------------------------------------------------------------------

/// The cameras that discovery lists, in this order.
struct CameraSpec {
    std::string vendor = "Scripted";
    std::string model = "SC-1";
    std::string serial = "0001";
    std::string userName;
    std::uint32_t link = Orvo::CAM_LINK_SIMULATED;
};
void setCameras(std::vector<CameraSpec> cameras);

/// Pixel formats of the default camera; the first is the current one.
constexpr std::uint32_t kBayerRG8 = 0x01080009;
constexpr std::uint32_t kMono8 = 0x01080001;

/// Sets the results of the utility operations. The nodes Width, Height, PixelFormat, TriggerMode and TriggerSource
/// follow if they exist; writing one of them changes the results. `flag` is the trigger mode byte; any but 0 means on.
void setImageFormat(std::uint32_t width, std::uint32_t height, std::uint32_t pixelFormat);
void setTrigger(std::uint8_t flag, std::uint32_t source);

struct Trigger {
    bool on = false;
    std::uint32_t source = 0;
};
[[nodiscard]] Trigger trigger();

/// Sets the text of Misc_GetLastGenICamError.
void setGenICamError(std::string text);
/// A text of 64 bytes or more fills its field without a NUL; all other bytes of the record are 'X'.
void setSystemInformation(const std::string& driver, const std::string& u3vApi2, const std::string& u3vCamApi,
                          const std::string& camApi);

/// Sets the removal signal of the open camera. From then on operations on it return 19 and discovery omits it.
void unplug();
/// Reconnects every unplugged camera; earlier handles stay invalid.
void plugIn();

// --- Stream ---------------------------------------------------------------------------------------------------------

/// True between Strm_Start and Strm_Stop.
[[nodiscard]] bool streaming();

/// Puts an image into the next buffer, calls the image callback on another thread, and returns when the callback has
/// returned. `fill` is written to every byte. If the buffer is locked, the image is dropped and the busy callback is
/// called instead. False if no stream is running. May be called from any thread but a callback's.
bool deliverImage(std::uint64_t frameNumber, std::uint8_t fill = 0, std::uint32_t status = 0);
bool deliverError(std::uint32_t status, std::uint32_t bufferIndex = 0);
bool deliverBusy(std::uint32_t bufferIndex);

/// Call the callbacks registered last, even after Strm_Close, to simulate late callbacks; each is called on another
/// thread. The late image has a frame number and nothing else.
void lateImage(std::uint64_t frameNumber);
void lateError(std::uint32_t status, std::uint32_t bufferIndex = 0);
void lateBusy(std::uint32_t bufferIndex);

/// Sets what ConvImage does. By default it writes the first source byte to B, G and R, and 255 to alpha.
void onConvImage(std::function<void(void* dst, const void* src, std::uint32_t width, std::uint32_t height)> convert);

/// Buffers that are still locked.
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

    std::int64_t intValue = 0; ///< of an enumeration: the value of the current entry
    std::int64_t intMin = INT64_MIN;
    std::int64_t intMax = INT64_MAX;
    std::int64_t intInc = 1;
    double floatValue = 0;
    double floatMin = -1e300;
    double floatMax = 1e300;
    std::uint8_t floatHasInc = 0; ///< true if it is not 0: a library may write any byte
    double floatInc = 0;
    std::uint8_t boolValue = 0; ///< likewise
    std::string strValue;

    /// Features of a category; entries of an enumeration (type NODE_TYPE_ENUM_ENTRY, `intValue` their number, `name`
    /// the symbolic name; their node names are "EnumEntry_<enumeration>_<name>"). A category may list a feature that
    /// does not exist: fetching its handle then returns CAM_API_STS_NOT_FOUND.
    std::vector<std::string> features;
    std::vector<NodeSpec> entries;

    int executed = 0; ///< of a command: number of executions
};

[[nodiscard]] NodeSpec category(std::string name, std::vector<std::string> features);
[[nodiscard]] NodeSpec enumEntry(std::string name, std::int64_t value,
                                 Orvo::NodeAccessMode access = Orvo::NODE_ACCESS_MODE_RO);

/// Replaces the node map; the first node is usually the category "Root". While a camera is open, this takes effect at
/// the next Cam_Open. Values survive closing and reopening.
void setNodes(std::vector<NodeSpec> nodes);
/// Reads a node, or changes it behind the viewer's back. The name must exist and must not be changed.
[[nodiscard]] NodeSpec node(const std::string& name);
void changeNode(const std::string& name, const std::function<void(NodeSpec&)>& change);
/// Of all nodes but the entries of enumerations, in the order of the node map.
[[nodiscard]] std::vector<std::string> nodeNames();

} // namespace scripted
