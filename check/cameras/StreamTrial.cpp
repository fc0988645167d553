#include "check/cameras/StreamTrial.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <thread>

namespace check {

using namespace Orvo;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kTrial{2};
constexpr std::uint32_t kBuffers = 8;

/// Shared by the library's thread, which calls back, and the thread that waits.
struct Tally {
    std::mutex mutex;
    StreamResult result;
    std::uint64_t lastNumber = 0;
    std::uint64_t missing = 0; ///< frame numbers that were skipped
};

void noteImage(CAM_HANDLE /*camera*/, CAM_STRM_HANDLE /*stream*/, CAM_IMAGE_INFO* info, std::uint32_t /*buffer*/,
               void* context)
{
    auto& tally = *static_cast<Tally*>(context);
    const std::lock_guard lock(tally.mutex);
    // A camera may start counting again, or lie.
    if (tally.result.images++ > 0 && info->frameNumber > tally.lastNumber)
        tally.missing += info->frameNumber - tally.lastNumber - 1;
    tally.lastNumber = info->frameNumber;
    tally.result.bytes += info->dataSize;
}

void noteError(CAM_HANDLE /*camera*/, CAM_STRM_HANDLE /*stream*/, std::uint32_t /*status*/, std::uint32_t /*buffer*/,
               void* context)
{
    auto& tally = *static_cast<Tally*>(context);
    const std::lock_guard lock(tally.mutex);
    ++tally.result.incomplete;
}

/// Incomplete images are among the skipped frame numbers.
std::uint64_t lostOf(const Tally& tally)
{
    return tally.missing - std::min(tally.missing, tally.result.incomplete);
}

/// Opens the stream and sets its callbacks.
CAM_API_STATUS openStream(CAM_HANDLE camera, Tally& tally, CAM_STRM_HANDLE& stream)
{
    CAM_API_STATUS status = Strm_OpenSimple(camera, &stream, nullptr, nullptr, kBuffers, nullptr);
    if (status == CAM_API_STS_SUCCESS)
        status = Strm_SetCallbackImageAcquired(stream, &tally, noteImage);
    if (status == CAM_API_STS_SUCCESS)
        status = Strm_SetCallbackImageError(stream, &tally, noteError);
    return status;
}

} // namespace

StreamResult tryStream(CAM_HANDLE camera)
{
    Tally tally;
    CAM_STRM_HANDLE stream = 0;
    CAM_API_STATUS status = openStream(camera, tally, stream);
    if (status == CAM_API_STS_SUCCESS)
        status = Strm_Start(stream, kBuffers);
    const Clock::time_point begin = Clock::now();
    if (status == CAM_API_STS_SUCCESS) {
        std::this_thread::sleep_for(kTrial);
        tally.result.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        status = Strm_Stop(stream);
        tally.result.packetSize = packetSizeOf(camera);
        // Stopping a camera that is gone succeeds, but this call fails.
        std::uint32_t index = 0;
        if (Strm_GetCurrentBufferIndex(stream, &index) == CAM_API_STS_CAMERA_NOT_RESPONDING)
            status = CAM_API_STS_CAMERA_NOT_RESPONDING;
    }
    if (stream != 0)
        (void)Strm_Close(stream); // no callback runs any more
    tally.result.status = status;
    tally.result.lost = lostOf(tally);
    return tally.result;
}

std::optional<std::int64_t> packetSizeOf(CAM_HANDLE camera)
{
    // The old name and the new one.
    for (const char* const name : {"GevSCPSPacketSize", "DeviceStreamChannelPacketSize"}) {
        CAM_NODE_HANDLE node = 0;
        std::int64_t value = 0;
        if (Nd_GetNode(camera, name, &node) == CAM_API_STS_SUCCESS &&
            Nd_GetIntValue(camera, node, &value) == CAM_API_STS_SUCCESS)
            return value;
    }
    return {};
}

} // namespace check
