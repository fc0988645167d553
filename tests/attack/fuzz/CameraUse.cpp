#include "tests/attack/fuzz/CameraUse.h"

#include "camera/OrvoCamApi.h"
#include "tests/attack/fuzz/FuzzInput.h"
#include "tests/cameralibs/transport/gige/Watched.h"

#include <atomic>
#include <thread>

using namespace Orvo;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kBuffers = 3;

/// Enough images for each of the buffers to be used again.
constexpr unsigned kImages = 6;

std::atomic<std::uint64_t> s_byteSum{0};
std::atomic<unsigned> s_images{0};

void onImage(CAM_HANDLE /*camera*/, CAM_STRM_HANDLE /*stream*/, CAM_IMAGE_INFO* info, std::uint32_t /*index*/,
             void* /*context*/)
{
    const auto* const bytes = static_cast<const std::uint8_t*>(info->data);
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < info->dataSize; ++i)
        sum += bytes[i];
    s_byteSum += sum;
    ++s_images;
}

/// The features, and a stream.
void use(Watched& watched, CAM_HANDLE camera, const char* textFeature, std::chrono::milliseconds streaming)
{
    const auto call = [&watched](const char* what, auto&& operation) { return watched.call(what, kAccess, operation); };
    CAM_NODE_HANDLE width = 0;
    CAM_NODE_HANDLE text = 0;
    std::int64_t value = 0;
    char buffer[64] = {};
    std::uint32_t size = sizeof buffer;
    (void)call("Nd_GetNode", [&] { return Nd_GetNode(camera, "Width", &width); });
    (void)call("Nd_GetNode", [&] { return Nd_GetNode(camera, textFeature, &text); });
    (void)call("Nd_GetIntValue", [&] { return Nd_GetIntValue(camera, width, &value); });
    (void)call("Nd_SetIntValue", [&] { return Nd_SetIntValue(camera, width, 32, true); });
    (void)call("Nd_GetStrValue", [&] { return Nd_GetStrValue(camera, text, buffer, &size); });
    (void)call("Nd_SetStrValue", [&] { return Nd_SetStrValue(camera, text, "written", true); });

    CAM_STRM_HANDLE stream = 0;
    if (call("Strm_OpenSimple", [&] {
            return Strm_OpenSimple(camera, &stream, nullptr, nullptr, kBuffers, nullptr);
        }) != CAM_API_STS_SUCCESS)
        return;
    (void)Strm_SetCallbackImageAcquired(stream, nullptr, onImage);
    if (call("Strm_Start", [&] { return Strm_Start(stream, kBuffers); }) == CAM_API_STS_SUCCESS) {
        CAM_API_STATUS status = CAM_API_STS_SUCCESS;
        const auto end = Clock::now() + streaming;
        while (s_images < kImages && Clock::now() < end && status != CAM_API_STS_CAMERA_NOT_RESPONDING) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            status = call("Nd_GetIntValue", [&] { return Nd_GetIntValue(camera, width, &value); });
        }
        (void)call("Strm_Stop", [&] { return Strm_Stop(stream); });
    }
    (void)call("Strm_Close", [&] { return Strm_Close(stream); });
}

} // namespace

unsigned useCamera(std::uint32_t index, const char* textFeature, std::chrono::milliseconds streaming)
{
    s_images = 0;
    Watched watched;
    CAM_HANDLE camera = 0;
    const CAM_API_STATUS opened =
        watched.call("Cam_Open", kOpening, [&] { return Cam_Open(index, &camera, 0, 1, nullptr, 1); });
    REQUIRE((opened == CAM_API_STS_SUCCESS) == (camera != 0));
    if (camera != 0) {
        use(watched, camera, textFeature, streaming);
        const CAM_API_STATUS closed = watched.call("Cam_Close", kClosing, [&] { return Cam_Close(camera); });
        REQUIRE(closed == CAM_API_STS_SUCCESS);
    }
    REQUIRE(watched.complaints() == 0);
    return s_images;
}
