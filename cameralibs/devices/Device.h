#pragma once

/// Where cameras come from, as the camera API sees them: an entry of an enumeration, an opened device with registers
/// behind a GenICam description, and a source of images.

#include "camera/OrvoCamApi.h"
#include "cameralibs/base/Outcome.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

typedef struct _ArvDevice ArvDevice; // NOLINT(bugprone-reserved-identifier): the name that Aravis gave it

namespace cameralibs {

class ImageMemory;
class NodeMap;

/// One camera of an enumeration. `id` names it within its provider for as long as the process runs.
struct DeviceInfo {
    Orvo::CAM_LINK link = Orvo::CAM_LINK_SIMULATED;
    std::string id;
    std::string vendor;
    std::string model;
    std::string serial;
    std::string userName;

    /// What the diagnostic log calls it.
    [[nodiscard]] std::string logName() const { return model + " " + serial; }
};

/// Memory for one image. The stream owns the buffers; a source borrows those it is given.
struct FrameBuffer {
    std::uint8_t* data = nullptr;
    std::size_t offset = 0; ///< of `data` in the memory that the source was opened with
    std::size_t capacity = 0;

    // Filled in by the source for a delivered image.
    std::size_t size = 0;
    std::uint64_t frameNumber = 0; ///< rises strictly within one start, and counts lost images
    std::uint64_t timestampNs = 0;
};

/// What a stream does with what a source brings. Called on the source's one thread.
class FrameSink {
public:
    virtual ~FrameSink() = default;

    /// Takes a complete image and returns the buffer that is free instead: the same one where the image was dropped.
    /// Never null.
    [[nodiscard]] virtual FrameBuffer* deliver(FrameBuffer* filled) = 0;

    /// An image that did not arrive whole; its buffer stays with the source.
    virtual void fail(Orvo::CAM_API_STATUS status) = 0;
};

/// The images of one opened stream. start() and stop() are called from one thread at a time, never by the source's own.
class FrameSource {
public:
    virtual ~FrameSource() = default;

    /// Begins to wait for images; the camera is told to send them afterwards.
    [[nodiscard]] virtual Outcome start() = 0;

    /// Returns when the source's thread makes no further call into the sink. Nothing to do for one that is not started.
    virtual void stop() = 0;
};

/// An opened device. Destroying it closes it.
class Device {
public:
    virtual ~Device() = default;

    [[nodiscard]] virtual const DeviceInfo& info() const = 0;

    /// The registers; the node map holds the pointer for no longer than this device lives.
    [[nodiscard]] virtual ArvDevice* registers() = 0;

    /// The map over the registers was made, and no register accessed yet. It ends before this device does, and is used
    /// only while the device has it to itself: here, in register accesses, and in calls of the device and its source.
    virtual void useNodes(NodeMap& /*nodes*/) {}

    /// The GenICam description (XML). Errors: CAM_API_STS_XML_LOAD_ERR.
    [[nodiscard]] virtual Outcome description(std::string& xml) = 0;

    /// A source that fills `buffers`, each at least the camera's payload size. They lie in `memory`, as do those that
    /// the sink gives in exchange. Sink, memory and buffers outlive the source, the source does not outlive the device.
    [[nodiscard]] virtual Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                             const std::vector<FrameBuffer*>& buffers,
                                             std::unique_ptr<FrameSource>& source) = 0;

    /// `handler` runs, on any thread, as soon as the device finds out by itself that it is gone: it only notes the
    /// fact, and the reason. Set before the first register access.
    virtual void onRemoval(std::function<void(const std::string& reason)> handler) = 0;

    /// Closing begins: whatever waits for the device, now or later, does so until `time` at most. Any thread.
    virtual void closeBy(std::chrono::steady_clock::time_point /*time*/) {}

    /// The same until relax(). Meanwhile a camera that asks for patience gets none. A provider opens a device in a
    /// hurry, which lasts until the device is told that all of its opening is over. Any thread.
    virtual void hurry(std::chrono::steady_clock::time_point /*end*/) {}
    virtual void relax() {}
};

/// A kind of camera. Calls into all providers are serialised by the caller.
class DeviceProvider {
public:
    virtual ~DeviceProvider() = default;

    /// The cameras attached now, in an order that does not change while they stay attached.
    [[nodiscard]] virtual std::vector<DeviceInfo> enumerate() = 0;

    /// Errors: CAM_API_STS_CAMERA_NOT_RESPONDING where it is gone, CAM_API_STS_ACCESS_DENIED where another program
    /// controls it, CAM_API_STS_BUSY. A device that is back may be opened while the lost one is not destroyed yet.
    [[nodiscard]] virtual Outcome open(const std::string& id, std::unique_ptr<Device>& device) = 0;

    /// Ends what the provider is waiting for, and lets it wait for nothing more. Any thread, while others call it.
    virtual void cancel() {}
};

} // namespace cameralibs
