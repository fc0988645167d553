// Measures the cost of a GigE Vision camera in both processes beside bare Aravis in this one, and how fast it can send.
// Runs in a separate network namespace:
//
//     tests/cameralibs/transport/own-network build/release/bin/gige_images
//
// Set LD_LIBRARY_PATH to measure another build of the camera library.

#include "benchmarks/AravisPeer.h"
#include "benchmarks/Process.h"
#include "benchmarks/Report.h"
#include "camera/OrvoCamApi.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/resource.h>

using namespace Orvo;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kStreaming{5};
constexpr int kStreamingRounds = 3;
constexpr int kRounds = 15;
constexpr int kSearches = 5;

// What separate processes may cost.
constexpr double kMostMoreMilliseconds = 30;
constexpr double kMostMoreMicroseconds = 40; ///< per image

struct Row {
    aravis::Images images;
    double leastRate;
    bool mayLose;
};

/// The second row has the data rate of 20 Mono8 images of 20 million pixels per second: more than sender and receiver
/// together can process on two cores without losses.
constexpr Row kRows[] = {{{640, 200, "Mono8", 1000}, 950, false}, {{2048, 2048, "RGB8", 32}, 27, true}};

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

/// Includes child processes that have been waited for, such as the transport of a closed camera.
double processorSecondsWithChildren()
{
    rusage children{};
    ::getrusage(RUSAGE_CHILDREN, &children);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return process::processorSeconds() + seconds(children.ru_utime) + seconds(children.ru_stime);
}

double millisecondsOf(const std::function<void()>& step)
{
    const auto begin = Clock::now();
    step();
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

/// Prints both medians and what the first is more than the second.
void compare(const std::string& what, std::vector<double> ours, std::vector<double> peers, const char* unit,
             double mostMore)
{
    const report::Figure own = report::figureOf(std::move(ours));
    const report::Figure peer = report::figureOf(std::move(peers));
    report::print(what, own, unit);
    report::print(what + ", bare Aravis", peer, unit);
    report::print(what + ": more than bare Aravis", report::single(own.median - peer.median), unit,
                  mostMore > 0 ? report::atMost(mostMore) : report::Goal{});
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

struct Streamed {
    double rate;         ///< images per second
    double lost;         ///< images lost or incomplete
    double microseconds; ///< processor time per image, in both processes
};

Streamed stream(const Row& row)
{
    Seen seen;
    const CAM_HANDLE camera = open();
    require(Nd_SetIntValue(camera, nodeOf(camera, "Width"), row.images.width), "Width");
    require(Nd_SetIntValue(camera, nodeOf(camera, "Height"), row.images.height), "Height");
    require(Nd_SetEnumStrValue(camera, nodeOf(camera, "PixelFormat"), row.images.format), "PixelFormat");
    require(Nd_SetFloatValue(camera, nodeOf(camera, "AcquisitionFrameRate"), row.images.rate), "AcquisitionFrameRate");
    CAM_STRM_HANDLE handle = 0;
    require(Strm_OpenSimple(camera, &handle, nullptr, nullptr, 8, nullptr), "Strm_OpenSimple");
    (void)Strm_SetCallbackImageAcquired(
        handle, &seen, [](CAM_HANDLE, CAM_STRM_HANDLE, CAM_IMAGE_INFO* info, std::uint32_t, void* context) {
            auto& told = *static_cast<Seen*>(context);
            if (told.images++ == 0)
                told.first = info->frameNumber;
            told.last = info->frameNumber;
        });
    (void)Strm_SetCallbackImageError(handle, &seen,
                                     [](CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void* context) {
                                         ++static_cast<Seen*>(context)->failed;
                                     });
    (void)Strm_SetCallbackBufferBusy(handle, &seen, [](CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t, void* context) {
        ++static_cast<Seen*>(context)->dropped;
    });
    const double before = processorSecondsWithChildren();
    require(Strm_Start(handle, 8), "Strm_Start");
    std::this_thread::sleep_for(kStreaming);
    require(Strm_Stop(handle), "Strm_Stop");
    require(Cam_Close(camera), "Cam_Close");
    const double spent = processorSecondsWithChildren() - before;
    const std::uint64_t sent = seen.last - seen.first + 1;
    const auto images = static_cast<double>(seen.images);
    return {images / std::chrono::duration<double>(kStreaming).count(),
            static_cast<double>(sent - seen.images + seen.dropped + seen.failed), spent * 1e6 / std::max(images, 1.0)};
}

/// Alternately with bare Aravis. Rounds that lost images are repeated, because other programs may have used the
/// processors.
void measureAndPrint(const Row& row)
{
    std::vector<double> rates;
    std::vector<double> lost;
    std::vector<double> ours;
    std::vector<double> peers;
    double peerImages = 0;
    double peerFailed = 0;
    const auto lostSome = [&] { return !row.mayLose && *std::min_element(lost.begin(), lost.end()) > 0; };
    for (int i = 0; i < kStreamingRounds || (i < 2 * kStreamingRounds && lostSome()); ++i) {
        const Streamed own = stream(row);
        rates.push_back(own.rate);
        lost.push_back(own.lost);
        ours.push_back(own.microseconds);
        const aravis::Streamed peer = aravis::stream(row.images, kStreaming);
        peers.push_back(peer.processorSeconds * 1e6 / std::max(peer.images, 1.0));
        peerImages += peer.images;
        peerFailed += peer.failed;
    }
    const std::string name =
        std::to_string(row.images.width) + " x " + std::to_string(row.images.height) + " " + row.images.format + ": ";
    const double fewestLost = *std::min_element(lost.begin(), lost.end());
    const double peerSeconds = std::chrono::duration<double>(kStreaming).count() * static_cast<double>(peers.size());
    report::print(name + "images a second, of " + std::to_string(std::lround(row.images.rate)),
                  report::figureOf(std::move(rates)), "", report::atLeast(row.leastRate));
    report::print(name + "images a second, bare Aravis", report::single(peerImages / peerSeconds));
    report::print(name + "images lost or incomplete in the best round", report::single(fewestLost), "",
                  row.mayLose ? report::Goal{} : report::atMost(0));
    report::print(name + "images incomplete in a round, bare Aravis",
                  report::single(peerFailed / static_cast<double>(peers.size())));
    // Losses distort the comparison of the larger images.
    compare(name + "processor time for an image", std::move(ours), std::move(peers), "us",
            row.mayLose ? 0 : kMostMoreMicroseconds);
}

} // namespace

int main()
{
    // It exits when its input is closed.
    const auto end = [](std::FILE* input) { ::pclose(input); };
    const std::unique_ptr<std::FILE, decltype(end)> device(::popen(GIGE_CAMERA " >/dev/null", "w"), end);
    require(Sys_Initialize(CAM_LAYER_GIGE_VISION), "Sys_Initialize");
    std::uint32_t count = 0;
    for (int i = 0; i < kRounds && count == 0; ++i)
        require(Sys_GetNumOfCameras(&count), "Sys_GetNumOfCameras");
    require(aravis::search() ? CAM_API_STS_SUCCESS : CAM_API_STS_NOT_FOUND, "arv_update_device_list");
    std::vector<double> searches;
    std::vector<double> peerSearches;
    for (int i = 0; i < kSearches; ++i) {
        searches.push_back(millisecondsOf([&] { require(Sys_GetNumOfCameras(&count), "Sys_GetNumOfCameras"); }));
        peerSearches.push_back(millisecondsOf([] { (void)aravis::search(); }));
    }
    compare("discovery", std::move(searches), std::move(peerSearches), "ms", kMostMoreMilliseconds);
    std::vector<double> opening;
    std::vector<double> peerOpening;
    std::vector<double> closing;
    for (int i = 0; i < kRounds; ++i) {
        CAM_HANDLE camera = 0;
        opening.push_back(millisecondsOf([&] { camera = open(); }));
        closing.push_back(millisecondsOf([&] { require(Cam_Close(camera), "Cam_Close"); }));
        peerOpening.push_back(aravis::open());
        require(peerOpening.back() < 0 ? CAM_API_STS_CAMERA_NOT_RESPONDING : CAM_API_STS_SUCCESS, "arv_open_device");
    }
    compare("Cam_Open", std::move(opening), std::move(peerOpening), "ms", kMostMoreMilliseconds);
    report::print("Cam_Close", report::figureOf(std::move(closing)), "ms", report::atMost(1000));
    for (const Row& row : kRows)
        measureAndPrint(row);
    require(Sys_Terminate(), "Sys_Terminate");
    return failures == 0 ? report::exitStatus() : EXIT_FAILURE;
}
