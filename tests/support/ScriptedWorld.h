#pragma once

#include "tests/support/ScriptedNodeMap.h"
#include "tests/support/ScriptedRecorder.h"

#include <condition_variable>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace scripted {

constexpr Orvo::CAM_NODE_HANDLE kNodeHandlesPerOpening = 1000000;

struct AttachedCamera {
    CameraSpec spec;
    bool unplugged = false;
};

struct OpenCamera {
    Orvo::CAM_HANDLE handle = 0; // 0 = none is open
    std::size_t attachedIndex = 0;
    std::uint32_t cameraIndex = 0;
    Orvo::CAM_SIGNAL_HANDLE removalSignal = 0;
    bool unplugged = false;
};

struct Slot {
    std::vector<std::uint8_t> data;
    Orvo::CAM_IMAGE_INFO info{};
    bool filled = false;
    int locks = 0;
};

template <typename Function> struct Registered {
    Function function = nullptr;
    void* context = nullptr;
};

struct Callbacks {
    Registered<Orvo::CAM_IMAGE_ACQUIRED_CALLBACK> image;
    Registered<Orvo::CAM_IMAGE_ERROR_CALLBACK> error;
    Registered<Orvo::CAM_BUFFER_BUSY_CALLBACK> busy;
};

struct Stream {
    Orvo::CAM_STRM_HANDLE handle = 0; // 0 = none is open
    Orvo::CAM_HANDLE camera = 0;
    bool started = false;
    std::vector<Slot> slots;
    std::optional<std::uint32_t> newest;
    Callbacks callbacks;
};

struct ImageFormat {
    std::uint32_t width = 64;
    std::uint32_t height = 48;
    std::uint32_t pixelFormat = kBayerRG8;
    std::uint8_t triggerFlag = 0;
    std::uint32_t triggerSource = 0;

    [[nodiscard]] std::size_t imageBytes() const;
};

/// The complete state of the scripted camera, guarded by one lock.
struct World {
    /// Common part of every operation: counts and records the call, runs the hook, and returns the scripted failure or
    /// calls `body`. `body` gets the held lock and may release it while it waits.
    template <typename Body>
    Orvo::CAM_API_STATUS call(std::string_view name, std::initializer_list<Argument> arguments, Body body)
    {
        std::unique_lock lock(mutex);
        Recorder::Operation& operation = recorder.operation(name);
        const std::uint64_t sequence = recorder.begin(operation, arguments);
        const int count = operation.countEver; // the hook may lead to more calls of this operation
        if (operation.hook) {
            const std::function<void()> hook = operation.hook;
            lock.unlock();
            hook();
            lock.lock();
        }
        const std::optional<Orvo::CAM_API_STATUS> planned = operation.plannedStatus(count);
        const Orvo::CAM_API_STATUS status = planned ? *planned : body(lock);
        recorder.finish(sequence, status);
        return status;
    }

    [[nodiscard]] Orvo::CAM_API_STATUS checkCamera(Orvo::CAM_HANDLE handle) const;
    /// For operations that succeed on an unplugged camera.
    [[nodiscard]] Orvo::CAM_API_STATUS checkCameraKnown(Orvo::CAM_HANDLE handle) const;
    [[nodiscard]] Orvo::CAM_API_STATUS checkStream(Orvo::CAM_STRM_HANDLE handle) const;
    /// Operations that would wait for a callback to return are refused inside it.
    [[nodiscard]] bool inCallback() const { return callbackThread == std::this_thread::get_id(); }

    void closeStream();
    void closeCamera();
    void fillDefaults();

    mutable std::mutex mutex;
    std::condition_variable changed;
    Recorder recorder;

    bool initialised = false;
    std::vector<AttachedCamera> cameras;
    std::vector<std::size_t> listed; // by camera index, since the last count
    std::map<Orvo::CAM_SIGNAL_HANDLE, bool> signals;
    OpenCamera camera;
    Stream stream;
    Callbacks lateCallbacks;
    std::thread::id callbackThread; // the thread that runs a callback now
    int locks = 0;

    NodeMap nodes;
    std::optional<NodeMap> nextNodes; // set while a camera is open
    Orvo::CAM_NODE_HANDLE nodeHandleBase = 0;
    std::map<std::pair<std::string, std::string>, Orvo::CAM_API_STATUS> nodeFailures; // by operation and node

    ImageFormat format;
    std::string genICamError;
    Orvo::CAM_SYSTEM_INFO systemInformation{};
    std::function<void(void*, const void*, std::uint32_t, std::uint32_t)> convert;

    Orvo::CAM_SIGNAL_HANDLE lastSignal = 0;
    Orvo::CAM_HANDLE lastCamera = 0;
    Orvo::CAM_STRM_HANDLE lastStream = 0;
};

[[nodiscard]] World& world();

/// Copies `source` with its NUL, by the rules for text results of the interface.
[[nodiscard]] Orvo::CAM_API_STATUS giveText(const std::string& source, char* buffer, std::uint32_t* size);

/// The largest prefix of `source` that fits, with a NUL.
void fillField(char* field, std::size_t capacity, const std::string& source);

} // namespace scripted
