// What does an image of a simulated camera cost? Processor time of one core, against the limit of 3 ms for 1920 x 1200.

#include "cameralibs/devices/simulated/CameraModel.h"
#include "cameralibs/devices/simulated/ImageMaker.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <string_view>
#include <vector>

namespace {

using namespace orvo::simulated;

constexpr double kLimitMs = 3.0;
constexpr double kLimitPixels = 1920.0 * 1200.0;
constexpr int kRounds = 101;

double threadMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

struct Cost {
    double first;  ///< with new settings, ms
    double median; ///< of the images after it, ms
};

Cost measure(const ImageSettings& settings)
{
    ImageMaker maker;
    std::vector<std::uint8_t> image(ImageMaker::sizeOf(settings));
    std::vector<double> costs;
    for (int round = 0; round <= kRounds; ++round) {
        const double before = threadMs();
        maker.make(settings, static_cast<std::uint64_t>(round), round / 60.0, image.data());
        costs.push_back(threadMs() - before);
    }
    const double first = costs.front();
    costs.erase(costs.begin());
    std::nth_element(costs.begin(), costs.begin() + kRounds / 2, costs.end());
    return {first, costs[kRounds / 2]};
}

ImageSettings settingsOf(const CameraModel& model, std::string_view format)
{
    ImageSettings settings;
    settings.sensorWidth = settings.width = model.width;
    settings.sensorHeight = settings.height = model.height;
    settings.color = model.color;
    settings.format = pixelFormat(format);
    return settings;
}

} // namespace

int main()
{
    bool withinLimit = true;
    std::printf("%-10s %-11s %-8s %12s %10s %22s\n", "camera", "format", "image", "new settings", "image",
                "of the limit");
    for (const CameraModel& model : kCameraModels) {
        const double limit = kLimitMs * model.width * model.height / kLimitPixels;
        for (const std::string_view format : model.formats) {
            if (format.empty())
                break;
            for (const TestPattern pattern : {TestPattern::Off, TestPattern::GreyVerticalRampMoving}) {
                ImageSettings settings = settingsOf(model, format);
                settings.pattern = pattern;
                const Cost cost = measure(settings);
                withinLimit = withinLimit && cost.median <= limit;
                std::printf("%-10s %-11s %-8s %9.2f ms %7.2f ms %15.2f of %.1f ms\n", model.name.data(), format.data(),
                            pattern == TestPattern::Off ? "scene" : "pattern", cost.first, cost.median,
                            cost.median / limit, limit);
            }
        }
    }
    return withinLimit ? 0 : 1;
}
