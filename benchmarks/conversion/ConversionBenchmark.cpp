#include "benchmarks/conversion/OpenCvRoutes.h"
#include "camera/OrvoCamUtl.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

// ConvImage next to OpenCV on one thread, in turn within one run, the median of all rounds. Times differ between
// machines and hours; the ratio is what counts. Usage: benchmark_conversion [width height [rounds]]

namespace {

constexpr double slowestRatio = 0.25;

double milliseconds(const std::function<void()>& work)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool compare(const OpenCvRoute& route, int width, int height, int rounds)
{
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<std::uint8_t> source(pixels * route.bitsPerPixel / 8 + 8);
    std::minstd_rand random;
    std::generate(source.begin(), source.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });
    cv::Mat theirs(height, width, CV_8UC4);
    std::vector<std::uint8_t> ours(pixels * 4);

    Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;
    const auto convertOurs = [&] {
        status = Orvo::ConvImage(0, route.pfnc, 1, ours.data(), source.data(), static_cast<std::uint32_t>(width),
                                 static_cast<std::uint32_t>(height));
    };
    const auto convertTheirs = [&] { route.convert(source.data(), width, height, theirs); };
    std::vector<double> ourTimes;
    std::vector<double> theirTimes;
    convertOurs();
    convertTheirs();
    for (int round = 0; round < rounds; ++round) {
        ourTimes.push_back(milliseconds(convertOurs));
        theirTimes.push_back(milliseconds(convertTheirs));
    }
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        std::printf("%-30s status %u\n", route.format.c_str(), status);
        return false;
    }
    const double ratio = median(theirTimes) / median(ourTimes);
    const bool passed = ratio >= slowestRatio;
    std::printf("%-30s %9.3f %9.3f %7.2f %7.2f  %s\n", route.format.c_str(), median(ourTimes), median(theirTimes),
                ratio, slowestRatio, passed ? "" : "too slow");
    return passed;
}

} // namespace

int main(int argc, char** argv)
{
    const int width = argc > 2 ? std::atoi(argv[1]) : 2448;
    const int height = argc > 2 ? std::atoi(argv[2]) : 2048;
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 21;
    if (width < 2 || height < 2 || rounds < 1 || width % 2 != 0 || height % 2 != 0) {
        std::fprintf(stderr, "usage: benchmark_conversion [width height [rounds]], sizes even\n");
        return 2;
    }
    cv::setNumThreads(1);
    std::printf("%d x %d, one thread, median of %d rounds; ratio = OpenCV's time / ours\n", width, height, rounds);
    std::printf("%-30s %9s %9s %7s %7s\n", "format", "ours ms", "OpenCV ms", "ratio", "limit");
    bool passed = true;
    for (const OpenCvRoute& route : openCvRoutes()) {
        passed = compare(route, width, height, rounds) && passed;
    }
    return passed ? EXIT_SUCCESS : EXIT_FAILURE;
}
