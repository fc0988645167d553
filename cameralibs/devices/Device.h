#pragma once

/// The camera API's view of any camera, real or simulated: an entry in a list, an opened device with registers and a
/// GenICam description, and a source of images.

#include "camera/OrvoCamApi.h"
#include "cameralibs/base/Outcome.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

typedef struct _ArvDevice ArvDevice; // NOLINT(bugprone-reserved-identifier): Aravis' name

namespace cameralibs {

class ImageMemory;
class NodeMap;

/// An enumerated camera. `id` identifies it within its provider as long as the process runs.
struct DeviceInfo {
    Orvo::CAM_LINK link = Orvo::CAM_LINK_SIMULATED;
    std::string id;
    std::string vendor;
    std::string model;
    std::string serial;
    std::string userName;

    /// The camera's name in the diagnostic log.
    [[nodiscard]] std::string logName() const { return model + " " + serial; }
};

/// Memory for one image. The stream owns all buffers; a source borrows them.
struct FrameBuffer {
    std::uint8_t* data = nullptr;
    std::size_t offset = 0; ///< of `data` in the memory that the source was opened with
    std::size_t capacity = 0;

    // Set by the source when it delivers an image.
    std::size_t size = 0;
    std::uint64_t frameNumber = 0; ///< strictly increasing within one acquisition; lost images count, too
    std::uint64_t timestampNs = 0;
};

/// Receives what a source delivers. Called on the source's thread only.
class FrameSink {
public:
    virtual ~FrameSink() = default;

    /// Takes a complete image and returns the buffer to fill next; the same one if the image was dropped. Never null.
    [[nodiscard]] virtual FrameBuffer* deliver(FrameBuffer* filled) = 0;

    /// Reports an incomplete image. Its buffer stays with the source.
    virtual void fail(Orvo::CAM_API_STATUS status) = 0;
};

/// Delivers the images of a stream. start() and stop() are not called concurrently, and never on the source's thread.
class FrameSource {
public:
    virtual ~FrameSource() = default;

    /// Gets ready to receive images. The camera starts sending afterwards.
    [[nodiscard]] virtual Outcome start() = 0;

    /// Once it returns, the source no longer calls the sink. Does nothing if the source is not started.
    virtual void stop() = 0;
};

/// An opened device. Destroying it closes it.
class Device {
public:
    virtual ~Device() = default;

    [[nodiscard]] virtual const DeviceInfo& info() const = 0;

    /// The registers for the node map. Valid as long as this device.
    [[nodiscard]] virtual ArvDevice* registers() = 0;

    /// Passes the node map, before the first register access. It is destroyed before the device. The device may use it
    /// only while it has exclusive access: in this function, in register accesses and in calls of the device and its
    /// source.
    virtual void useNodes(NodeMap& /*nodes*/) {}

    /// The GenICam description (XML). Errors: CAM_API_STS_XML_LOAD_ERR.
    [[nodiscard]] virtual Outcome description(std::string& xml) = 0;

    /// Opens a source that fills `buffers`. Each holds at least the camera's payload size; these and the ones that the
    /// sink returns lie in `memory`. The device, the sink, the memory and the buffers must outlive the source.
    [[nodiscard]] virtual Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                             const std::vector<FrameBuffer*>& buffers,
                                             std::unique_ptr<FrameSource>& source) = 0;

    /// Sets the handler for a removal that the device detects itself. It may run on any thread, so it must only record
    /// the removal and its reason. To be set before the first register access.
    virtual void onRemoval(std::function<void(const std::string& reason)> handler) = 0;

    /// Begins closing: limits every wait for the device, current or future, to `time`. Thread-safe.
    virtual void closeBy(std::chrono::steady_clock::time_point /*time*/) {}

    /// The same until relax(). Meanwhile a camera's requests for more time are not granted. A new device is in this
    /// state until opening is complete and relax() is called. Thread-safe.
    virtual void hurry(std::chrono::steady_clock::time_point /*end*/) {}
    virtual void relax() {}
};

/// Finds and opens one kind of camera. The caller serialises the calls to all providers.
class DeviceProvider {
public:
    virtual ~DeviceProvider() = default;

    /// The cameras that are connected now. Their order is stable while they stay connected.
    [[nodiscard]] virtual std::vector<DeviceInfo> enumerate() = 0;

    /// Errors: CAM_API_STS_CAMERA_NOT_RESPONDING if it is gone, CAM_API_STS_ACCESS_DENIED if another program controls
    /// it, CAM_API_STS_BUSY. A reconnected camera may be opened before the lost device is destroyed.
    [[nodiscard]] virtual Outcome open(const std::string& id, std::unique_ptr<Device>& device) = 0;

    /// Aborts the provider's current wait, if any, and all later ones. May be called while other calls are in progress.
    virtual void cancel() {}
};

/// The simulated cameras. `environmentValue` is the value of ORVO_SIMULATED_CAMERAS or null: a comma-separated list of
/// the number of built-in cameras (by default three) and paths of description files. An item that is neither is
/// reported on standard error.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeSimulatedProvider(const char* environmentValue);

/// USB3 Vision and GigE Vision cameras, as selected. Every search and every opened camera runs in a separate process.
/// Searching for GigE Vision cameras takes a second.
[[nodiscard]] std::unique_ptr<DeviceProvider> makeTransportProvider(bool usb, bool gige);

} // namespace cameralibs
