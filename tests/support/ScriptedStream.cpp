#include "tests/support/ScriptedWorld.h"

#include <algorithm>
#include <cstring>

using namespace scripted;

namespace {

void waitForCallback(std::unique_lock<std::mutex>& lock)
{
    world().changed.wait(lock, [] { return world().callbackThread == std::thread::id(); });
}

/// Runs `callback` on a thread of its own, without the lock. Callbacks never overlap.
template <typename Callback> void runCallback(std::unique_lock<std::mutex>& lock, Callback callback)
{
    World& w = world();
    std::thread thread([&w, &callback] {
        {
            const std::lock_guard inner(w.mutex);
        }
        callback();
    });
    w.callbackThread = thread.get_id();
    lock.unlock();
    thread.join();
    lock.lock();
    w.callbackThread = {};
    w.changed.notify_all();
}

void callBusy(std::unique_lock<std::mutex>& lock, Registered<Orvo::CAM_BUFFER_BUSY_CALLBACK> registered,
              std::uint32_t bufferIndex)
{
    if (registered.function == nullptr)
        return;
    runCallback(lock, [&, camera = world().stream.camera, stream = world().stream.handle] {
        registered.function(camera, stream, bufferIndex, registered.context);
    });
}

void callError(std::unique_lock<std::mutex>& lock, Registered<Orvo::CAM_IMAGE_ERROR_CALLBACK> registered,
               std::uint32_t status, std::uint32_t bufferIndex)
{
    if (registered.function == nullptr)
        return;
    runCallback(lock, [&, camera = world().stream.camera, stream = world().stream.handle] {
        registered.function(camera, stream, status, bufferIndex, registered.context);
    });
}

void callImage(std::unique_lock<std::mutex>& lock, Registered<Orvo::CAM_IMAGE_ACQUIRED_CALLBACK> registered,
               Orvo::CAM_IMAGE_INFO info, std::uint32_t bufferIndex)
{
    if (registered.function == nullptr)
        return;
    runCallback(lock, [&, camera = world().camera.handle, stream = world().stream.handle] {
        registered.function(camera, stream, &info, bufferIndex, registered.context);
    });
}

void fillSlot(Slot& slot, std::uint64_t frameNumber, std::uint8_t fill, std::uint32_t status)
{
    slot.data.assign(world().format.imageBytes(), fill);
    slot.info = {};
    slot.info.timestampNs = frameNumber * 1000000;
    slot.info.frameNumber = frameNumber;
    slot.info.data = slot.data.data();
    slot.info.dataSize = slot.data.size();
    slot.info.status = status;
    slot.filled = true;
}

/// Registers a callback if the stream handle is valid, and keeps it for late calls.
template <typename Function>
Orvo::CAM_API_STATUS registerCallback(Orvo::CAM_STRM_HANDLE stream, Registered<Function> Callbacks::*member,
                                      Registered<Function> registered)
{
    if (const Orvo::CAM_API_STATUS status = world().checkStream(stream))
        return status;
    world().stream.callbacks.*member = registered;
    world().lateCallbacks.*member = registered;
    return Orvo::CAM_API_STS_SUCCESS;
}

} // namespace

namespace scripted {

bool streaming()
{
    const std::lock_guard lock(world().mutex);
    return world().stream.started;
}

bool deliverImage(std::uint64_t frameNumber, std::uint8_t fill, std::uint32_t status)
{
    World& w = world();
    std::unique_lock lock(w.mutex);
    waitForCallback(lock);
    Stream& stream = w.stream;
    if (!stream.started)
        return false;
    const auto index = stream.newest ? static_cast<std::uint32_t>((*stream.newest + 1) % stream.slots.size()) : 0;
    Slot& slot = stream.slots[index];
    if (slot.locks > 0) {
        callBusy(lock, stream.callbacks.busy, index);
        return true;
    }
    fillSlot(slot, frameNumber, fill, status);
    stream.newest = index;
    callImage(lock, stream.callbacks.image, slot.info, index);
    return true;
}

bool deliverError(std::uint32_t status, std::uint32_t bufferIndex)
{
    std::unique_lock lock(world().mutex);
    waitForCallback(lock);
    if (!world().stream.started)
        return false;
    callError(lock, world().stream.callbacks.error, status, bufferIndex);
    return true;
}

bool deliverBusy(std::uint32_t bufferIndex)
{
    std::unique_lock lock(world().mutex);
    waitForCallback(lock);
    if (!world().stream.started)
        return false;
    callBusy(lock, world().stream.callbacks.busy, bufferIndex);
    return true;
}

void lateImage(std::uint64_t frameNumber)
{
    std::unique_lock lock(world().mutex);
    waitForCallback(lock);
    Orvo::CAM_IMAGE_INFO info{};
    info.frameNumber = frameNumber;
    callImage(lock, world().lateCallbacks.image, info, 0);
}

void lateError(std::uint32_t status, std::uint32_t bufferIndex)
{
    std::unique_lock lock(world().mutex);
    waitForCallback(lock);
    callError(lock, world().lateCallbacks.error, status, bufferIndex);
}

void lateBusy(std::uint32_t bufferIndex)
{
    std::unique_lock lock(world().mutex);
    waitForCallback(lock);
    callBusy(lock, world().lateCallbacks.busy, bufferIndex);
}

int lockedBuffers()
{
    const std::lock_guard lock(world().mutex);
    return world().locks;
}

} // namespace scripted

namespace Orvo {

CAM_API_STATUS Strm_OpenSimple(CAM_HANDLE camera, CAM_STRM_HANDLE* stream, std::uint32_t* maxImageSize, void* reserved1,
                               std::uint32_t bufferCount, void* reserved2)
{
    return world().call(
        "Strm_OpenSimple",
        {number(camera), out(stream), out(maxImageSize), in(reserved1), number(bufferCount), in(reserved2)},
        [&](auto&) -> CAM_API_STATUS {
            World& w = world();
            if (const CAM_API_STATUS status = w.checkCamera(camera))
                return status;
            if (w.stream.handle != 0)
                return CAM_API_STS_ALREADY_OPENED;
            if (stream == nullptr || bufferCount == 0)
                return CAM_API_STS_INVALID_PARAMETER;
            w.stream.handle = ++w.lastStream;
            w.stream.camera = camera;
            w.stream.slots.resize(bufferCount);
            *stream = w.stream.handle;
            if (maxImageSize != nullptr)
                *maxImageSize = static_cast<std::uint32_t>(w.format.imageBytes());
            return CAM_API_STS_SUCCESS;
        });
}

CAM_API_STATUS Strm_Close(CAM_STRM_HANDLE stream)
{
    return world().call("Strm_Close", {number(stream)}, [&](auto& lock) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = world().checkStream(stream))
            return status;
        if (world().inCallback())
            return CAM_API_STS_INVALID_PARAMETER;
        waitForCallback(lock);
        world().closeStream();
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_SetCallbackImageAcquired(CAM_STRM_HANDLE stream, void* context,
                                             CAM_IMAGE_ACQUIRED_CALLBACK function)
{
    return world().call("Strm_SetCallbackImageAcquired", {number(stream), in(context), callback(function)}, [&](auto&) {
        return registerCallback(stream, &Callbacks::image, {function, context});
    });
}

CAM_API_STATUS Strm_SetCallbackImageError(CAM_STRM_HANDLE stream, void* context, CAM_IMAGE_ERROR_CALLBACK function)
{
    return world().call("Strm_SetCallbackImageError", {number(stream), in(context), callback(function)}, [&](auto&) {
        return registerCallback(stream, &Callbacks::error, {function, context});
    });
}

CAM_API_STATUS Strm_SetCallbackBufferBusy(CAM_STRM_HANDLE stream, void* context, CAM_BUFFER_BUSY_CALLBACK function)
{
    return world().call("Strm_SetCallbackBufferBusy", {number(stream), in(context), callback(function)}, [&](auto&) {
        return registerCallback(stream, &Callbacks::busy, {function, context});
    });
}

CAM_API_STATUS Strm_Start(CAM_STRM_HANDLE stream, std::uint32_t requestCount)
{
    return world().call("Strm_Start", {number(stream), number(requestCount)}, [&](auto&) -> CAM_API_STATUS {
        World& w = world();
        if (const CAM_API_STATUS status = w.checkStream(stream))
            return status;
        if (w.camera.unplugged)
            return CAM_API_STS_CAMERA_NOT_RESPONDING;
        if (std::exchange(w.stream.started, true))
            return CAM_API_STS_ALREADY_ACTIVATED;
        w.stream.newest.reset();
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_Stop(CAM_STRM_HANDLE stream)
{
    return world().call("Strm_Stop", {number(stream)}, [&](auto& lock) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = world().checkStream(stream))
            return status;
        if (world().inCallback())
            return CAM_API_STS_INVALID_PARAMETER;
        world().stream.started = false;
        waitForCallback(lock);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_GetCurrentBufferIndex(CAM_STRM_HANDLE stream, std::uint32_t* index)
{
    return world().call("Strm_GetCurrentBufferIndex", {number(stream), out(index)}, [&](auto&) -> CAM_API_STATUS {
        const World& w = world();
        if (const CAM_API_STATUS status = w.checkStream(stream))
            return status;
        if (w.camera.unplugged)
            return CAM_API_STS_CAMERA_NOT_RESPONDING;
        if (index == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        if (!w.stream.newest)
            return CAM_API_STS_NOT_READY;
        *index = *w.stream.newest;
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_LockBuffer(CAM_STRM_HANDLE stream, std::uint32_t index, CAM_IMAGE_INFO* info)
{
    return world().call("Strm_LockBuffer", {number(stream), number(index), out(info)}, [&](auto&) -> CAM_API_STATUS {
        World& w = world();
        if (const CAM_API_STATUS status = w.checkStream(stream))
            return status;
        if (w.camera.unplugged)
            return CAM_API_STS_CAMERA_NOT_RESPONDING;
        if (info == nullptr || index >= w.stream.slots.size())
            return CAM_API_STS_INVALID_PARAMETER;
        Slot& slot = w.stream.slots[index];
        if (!slot.filled)
            return CAM_API_STS_NOT_READY;
        ++slot.locks;
        ++w.locks;
        *info = slot.info;
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_UnlockBuffer(CAM_STRM_HANDLE stream, std::uint32_t index)
{
    return world().call("Strm_UnlockBuffer", {number(stream), number(index)}, [&](auto&) -> CAM_API_STATUS {
        World& w = world();
        if (const CAM_API_STATUS status = w.checkStream(stream))
            return status;
        if (index >= w.stream.slots.size() || w.stream.slots[index].locks == 0)
            return CAM_API_STS_INVALID_PARAMETER;
        --w.stream.slots[index].locks;
        --w.locks;
        return CAM_API_STS_SUCCESS;
    });
}

} // namespace Orvo
