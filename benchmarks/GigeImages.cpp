// What does a GigE Vision camera cost, and how fast may it send? Both processes together, in a network of its own:
//
//     tests/cameralibs/devices/aravis/own-network build/release/bin/gige_images
//
// With LD_LIBRARY_PATH another build of the camera library is measured.

#include "benchmarks/Process.h"
#include "camera/OrvoCamApi.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <sys/resource.h>

using namespace Orvo;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kStreaming{10};
constexpr int kRounds = 15;

struct Row {
    std::int64_t width;
    std::int64_t height;
    const char* format;
    double rate;
};

/// The second has as many bytes a second as 20 images of 20 million pixels.
constexpr Row kRows[] = {{640, 200, "Mono8", 1000}, {2048, 2048, "RGB8", 32}};

struct Seen {
    std::atomic<std::uint64_t> images{0};
    std::atomic<std::uint64_t> dropped{0};
    std::atomic<std::uint64_t> failed{0};
    std::atomic<std::uint64_t> first{0};
    std::atomic<std::uint64_t> last{0};
};

int failures = 0;

void require(CAM_API_STATUS status, const char* what)
{
    if (status == CAM_API_STS_SUCCESS)
        return;
    std::printf("%s: %u\n", what, status);
    ++failures;
}

/// Of processes that have ended and were waited for, too: such as the transport of a camera that is closed.
double processorSecondsWithChildren()
{
    rusage children{};
    ::getrusage(RUSAGE_CHILDREN, &children);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return process::processorSeconds() + seconds(children.ru_utime) + seconds(children.ru_stime);
}

double medianMs(const std::function<void()>& step, const std::function<void()>& afterwards)
{
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const auto begin = Clock::now();
        step();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        afterwards();
    }
    std::nth_element(times.begin(), times.begin() + kRounds / 2, times.end());
    return times[kRounds / 2];
}

CAM_NODE_HANDLE nodeOf(CAM_HANDLE camera, const char* name)
{
    CAM_NODE_HANDLE node = 0;
    require(Nd_GetNode(camera, name, &node), name);
    return node;
}

CAM_HANDLE open()
{
    CAM_HANDLE camera = 0;
    require(Cam_Open(0, &camera, 0, 1, nullptr, 1), "Cam_Open");
    return camera;
}

void measure(const Row& row)
{
    Seen seen;
    const CAM_HANDLE camera = open();
    require(Nd_SetIntValue(camera, nodeOf(camera, "Width"), row.width), "Width");
    require(Nd_SetIntValue(camera, nodeOf(camera, "Height"), row.height), "Height");
    require(Nd_SetEnumStrValue(camera, nodeOf(camera, "PixelFormat"), row.format), "PixelFormat");
    require(Nd_SetFloatValue(camera, nodeOf(camera, "AcquisitionFrameRate"), row.rate), "AcquisitionFrameRate");
    CAM_STRM_HANDLE stream = 0;
    require(Strm_OpenSimple(camera, &stream, nullptr, nullptr, 8, nullptr), "Strm_OpenSimple");
    (void)Strm_SetCallbackImageAcquired(
        stream, &seen, [](CAM_HANDLE, CAM_STRM_HANDLE, CAM_IMAGE_INFO* info, std::uint32_t, void* context) {
            auto& told = *static_cast<Seen*>(context);
            if (told.images++ == 0)
                told.first = info->frameNumber;
            told.last = info->frameNumber;
        });
    (void)Strm_SetCallbackImageError(stream, &seen,
                                     [](CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void* context) {
                                         ++static_cast<Seen*>(context)->failed;
                                     });
    (void)Strm_SetCallbackBufferBusy(stream, &seen, [](CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, void* context) {
        ++static_cast<Seen*>(context)->dropped;
    });
    const double before = processorSecondsWithChildren();
    require(Strm_Start(stream, 8), "Strm_Start");
    std::this_thread::sleep_for(kStreaming);
    require(Strm_Stop(stream), "Strm_Stop");
    require(Cam_Close(camera), "Cam_Close");
    const double spent = processorSecondsWithChildren() - before;
    const std::uint64_t sent = seen.last - seen.first + 1;
    const std::uint64_t lost = sent - seen.images + seen.dropped;
    std::printf("%lld x %lld %-6s %6.1f of %.0f images a second, %llu lost, %llu failed, %.0f us of a processor each\n",
                static_cast<long long>(row.width), static_cast<long long>(row.height), row.format,
                static_cast<double>(seen.images) / std::chrono::duration<double>(kStreaming).count(), row.rate,
                static_cast<unsigned long long>(lost), static_cast<unsigned long long>(seen.failed),
                spent * 1e6 / static_cast<double>(std::max<std::uint64_t>(seen.images, 1)));
    std::fflush(stdout);
    failures += lost + seen.failed != 0 ? 1 : 0;
}

} // namespace

int main()
{
    // It ends with its input.
    const std::unique_ptr<std::FILE, decltype(&::pclose)> device(::popen(GIGE_CAMERA, "w"), &::pclose);
    require(Sys_Initialize(CAM_LAYER_GIGE_VISION), "Sys_Initialize");
    std::uint32_t count = 0;
    for (int i = 0; i < kRounds && count == 0; ++i)
        require(Sys_GetNumOfCameras(&count), "Sys_GetNumOfCameras");
    std::printf("discovery %.1f ms\n",
                medianMs([&] { require(Sys_GetNumOfCameras(&count), "Sys_GetNumOfCameras"); }, [] {}));
    CAM_HANDLE camera = 0;
    double closing = 0;
    const double opening =
        medianMs([&] { camera = open(); },
                 [&] {
                     const auto begin = Clock::now();
                     require(Cam_Close(camera), "Cam_Close");
                     closing =
                         std::max(closing, std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
                 });
    std::printf("Cam_Open %.1f ms, Cam_Close at most %.1f ms\n", opening, closing);
    for (const Row& row : kRows)
        measure(row);
    require(Sys_Terminate(), "Sys_Terminate");
    return failures == 0 ? 0 : 1;
}
