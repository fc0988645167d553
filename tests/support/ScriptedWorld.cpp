#include "tests/support/ScriptedWorld.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace scripted {

namespace {

// Polled by the display thread every few milliseconds; the number of calls depends on the machine.
constexpr std::array<std::string_view, 5> kPolling = {
    "Sys_WaitForSignal", "Strm_GetCurrentBufferIndex", "Strm_LockBuffer", "Strm_UnlockBuffer", "ConvImage",
};

void convertFirstByte(void* dst, const void* src, std::uint32_t width, std::uint32_t height)
{
    const std::uint32_t value = *static_cast<const std::uint8_t*>(src);
    std::fill_n(static_cast<std::uint32_t*>(dst), std::size_t{width} * height, 0xFF000000U | value * 0x010101U);
}

} // namespace

std::size_t ImageFormat::imageBytes() const
{
    const std::size_t bitsPerPixel = (pixelFormat >> 16U) & 0xFFU;
    return (std::size_t{width} * height * bitsPerPixel + 7) / 8;
}

World& world()
{
    static World instance;
    static const bool prepared = [] {
        instance.fillDefaults();
        return true;
    }();
    static_cast<void>(prepared);
    return instance;
}

void World::fillDefaults()
{
    initialised = false;
    cameras.assign(1, {});
    listed.clear();
    signals.clear();
    camera = {};
    stream = {};
    lateCallbacks = {};
    locks = 0;
    nodes = NodeMap(defaultNodes());
    nextNodes.reset();
    nodeHandleBase = 0;
    nodeFailures.clear();
    format = {};
    genICamError = "Scripted GenICam error";
    systemInformation = {};
    convert = convertFirstByte;
    lastSignal = 1000;
    lastCamera = 2000;
    lastStream = 3000;
}

Orvo::CAM_API_STATUS World::checkCameraKnown(Orvo::CAM_HANDLE handle) const
{
    if (!initialised)
        return Orvo::CAM_API_STS_NOT_INITIALIZED;
    return handle == 0 || handle != camera.handle ? Orvo::CAM_API_STS_INVALID_CAMERA_HANDLE : Orvo::CAM_API_STS_SUCCESS;
}

Orvo::CAM_API_STATUS World::checkCamera(Orvo::CAM_HANDLE handle) const
{
    const Orvo::CAM_API_STATUS status = checkCameraKnown(handle);
    return status == 0 && camera.unplugged ? Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING : status;
}

Orvo::CAM_API_STATUS World::checkStream(Orvo::CAM_STRM_HANDLE handle) const
{
    if (!initialised)
        return Orvo::CAM_API_STS_NOT_INITIALIZED;
    return handle == 0 || handle != stream.handle ? Orvo::CAM_API_STS_INVALID_STREAM_HANDLE : Orvo::CAM_API_STS_SUCCESS;
}

void World::closeStream()
{
    stream = {};
}

void World::closeCamera()
{
    closeStream();
    camera = {};
    if (nextNodes)
        nodes = *std::exchange(nextNodes, std::nullopt);
}

Orvo::CAM_API_STATUS giveText(const std::string& source, char* buffer, std::uint32_t* size)
{
    if (size == nullptr)
        return Orvo::CAM_API_STS_INVALID_PARAMETER;
    const auto need = static_cast<std::uint32_t>(source.size() + 1);
    const std::uint32_t capacity = std::exchange(*size, need);
    if (buffer == nullptr)
        return Orvo::CAM_API_STS_SUCCESS;
    if (capacity < need)
        return Orvo::CAM_API_STS_BUFFER_TOO_SMALL;
    std::memcpy(buffer, source.c_str(), need);
    return Orvo::CAM_API_STS_SUCCESS;
}

void fillField(char* field, std::size_t capacity, const std::string& source)
{
    const std::size_t length = std::min(source.size(), capacity - 1);
    std::memcpy(field, source.data(), length);
    field[length] = '\0';
}

// --- Interface for the tests ----------------------------------------------------------------------------------------

void reset()
{
    const std::lock_guard lock(world().mutex);
    world().recorder.reset();
    world().fillDefaults();
}

void failCall(const std::string& operation, Orvo::CAM_API_STATUS status, int nth)
{
    const std::lock_guard lock(world().mutex);
    Recorder::Operation& known = world().recorder.operation(operation);
    known.failures[known.countEver + nth] = status;
}

void healAll()
{
    const std::lock_guard lock(world().mutex);
    world().recorder.heal();
}

void failAlways(const std::string& operation, Orvo::CAM_API_STATUS status)
{
    const std::lock_guard lock(world().mutex);
    world().recorder.operation(operation).failsAlways = status;
}

void failNode(const std::string& node, const std::string& operation, Orvo::CAM_API_STATUS status)
{
    const std::lock_guard lock(world().mutex);
    world().nodeFailures[{operation, node}] = status;
}

void heal(const std::string& operation)
{
    const std::lock_guard lock(world().mutex);
    Recorder::Operation& known = world().recorder.operation(operation);
    known.failures.clear();
    known.failsAlways.reset();
    auto& nodeFailures = world().nodeFailures;
    for (auto failure = nodeFailures.begin(); failure != nodeFailures.end();)
        failure = failure->first.first == operation ? nodeFailures.erase(failure) : std::next(failure);
}

void onCall(const std::string& operation, std::function<void()> hook)
{
    const std::lock_guard lock(world().mutex);
    world().recorder.operation(operation).hook = std::move(hook);
}

std::size_t callCount()
{
    const std::lock_guard lock(world().mutex);
    return world().recorder.size();
}

std::vector<Call> callsFrom(std::size_t first)
{
    const std::lock_guard lock(world().mutex);
    return world().recorder.calls(first);
}

std::vector<Call> calls()
{
    const std::lock_guard lock(world().mutex);
    return world().recorder.calls();
}

std::vector<Call> calls(const std::vector<std::string>& prefixes)
{
    std::vector<Call> result = calls();
    const auto isOther = [&](const Call& call) {
        return std::none_of(prefixes.begin(), prefixes.end(),
                            [&](const std::string& prefix) { return call.operation.rfind(prefix, 0) == 0; });
    };
    result.erase(std::remove_if(result.begin(), result.end(), isOther), result.end());
    return result;
}

std::vector<std::string> callNames()
{
    std::vector<std::string> names;
    for (const Call& call : calls()) {
        if (std::find(kPolling.begin(), kPolling.end(), call.operation) == kPolling.end())
            names.push_back(call.operation);
    }
    return names;
}

int count(const std::string& operation)
{
    const std::lock_guard lock(world().mutex);
    return world().recorder.operation(operation).countSinceClear;
}

void clearCalls()
{
    const std::lock_guard lock(world().mutex);
    world().recorder.clear();
}

} // namespace scripted
