// Measures the processor time of an image of a simulated camera. The goal is 3 ms for 1920 x 1200 pixels and
// proportional for other sizes.

#include "benchmarks/Report.h"
#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/devices/simulated/images/ImageMaker.h"
#include "cameralibs/devices/simulated/registers/CameraModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace cameralibs::simulated;

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
    double first;         ///< after new settings, ms
    report::Figure image; ///< the following ones, ms
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
    return {first, report::figureOf(costs)};
}

ImageSettings settingsOf(const CameraModel& model, std::string_view format)
{
    ImageSettings settings;
    settings.sensorWidth = settings.width = model.width;
    settings.sensorHeight = settings.height = model.height;
    settings.colour = model.colour;
    settings.format = cameralibs::findPixelFormat(format)->value;
    settings.packing = findPacking(settings.format);
    return settings;
}

/// The contents of an image. The first one is measured in every format, the others in a camera's first format.
struct Variant {
    const char* name;
    bool everyFormat;
    void (*apply)(ImageSettings& settings);
};

template <TestPattern Pattern> void show(ImageSettings& settings)
{
    settings.pattern = Pattern;
}

void joinPixels(ImageSettings& settings)
{
    settings.binningX = settings.binningY = 2;
    settings.width /= 2;
    settings.height /= 2;
}

void useTable(ImageSettings& settings)
{
    settings.useTable = true;
    for (std::size_t i = 0; i < settings.table.size(); ++i)
        settings.table[i] = static_cast<std::uint8_t>(255 - i);
}

void mirror(ImageSettings& settings)
{
    settings.reverseX = settings.reverseY = true;
}

constexpr Variant kVariants[] = {
    {"scene", true, show<TestPattern::Off>},
    {"GreyVerticalRampMoving", true, show<TestPattern::GreyVerticalRampMoving>},
    {"Black", false, show<TestPattern::Black>},
    {"White", false, show<TestPattern::White>},
    {"GreyHorizontalRamp", false, show<TestPattern::GreyHorizontalRamp>},
    {"GreyVerticalRamp", false, show<TestPattern::GreyVerticalRamp>},
    {"GreyHorizontalRampMoving", false, show<TestPattern::GreyHorizontalRampMoving>},
    {"HorizontalLineMoving", false, show<TestPattern::HorizontalLineMoving>},
    {"VerticalLineMoving", false, show<TestPattern::VerticalLineMoving>},
    {"ColorBar", false, show<TestPattern::ColorBar>},
    {"scene, 2 x 2 pixels joined", false, joinPixels},
    {"scene, look-up table", false, useTable},
    {"scene, mirrored both ways", false, mirror},
};

/// The number of sensor pixels in an image; binned pixels count separately.
double sensorPixels(const ImageSettings& settings)
{
    return static_cast<double>(settings.width) * settings.height * settings.binningX * settings.binningY;
}

void print(const CameraModel& model, std::string_view format, const Variant& variant)
{
    ImageSettings settings = settingsOf(model, format);
    variant.apply(settings);
    const double limit = kLimitMs * sensorPixels(settings) / kLimitPixels;
    const Cost cost = measure(settings);
    const std::string name =
        std::to_string(model.width) + " x " + std::to_string(model.height) + " " + std::string(format) + ": ";
    report::print(name + variant.name, cost.image, "ms", report::atMost(limit));
    if (format == model.formats.front() && std::string_view(variant.name) == kVariants[0].name)
        report::print(name + "first image after new settings", report::single(cost.first), "ms");
}

} // namespace

int main()
{
    for (const CameraModel& model : kCameraModels) {
        for (const std::string_view format : model.formats) {
            if (format.empty())
                break;
            for (const Variant& variant : kVariants) {
                if (variant.everyFormat || format == model.formats.front())
                    print(model, format, variant);
            }
        }
    }
    return report::exitStatus();
}
