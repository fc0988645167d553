// How well does the viewer keep up with a camera of 1920 x 1200 pixels at 60 images a second, and does it stay as it
// is?
//
// The real window with the real camera libraries and the first simulated colour camera. Prints each figure beside its
// limit and ends with status 1 where one is missed. Needs a screen:
//
//     tests/support/with-xvfb build/release/bin/live_view

#include "benchmarks/Process.h"
#include "camera/OrvoCamApi.h"
#include "camera/OrvoCamUtl.h"
#include "tests/support/Desktop.h"
#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include <dlfcn.h>

namespace {

// --- Lost images, seen at the callback ------------------------------------------------------------------------------

struct Callback {
    void* context = nullptr;
    Orvo::CAM_IMAGE_ACQUIRED_CALLBACK function = nullptr;
};
Callback viewerCallback;
std::atomic<std::uint64_t> lastFrame{0};
std::atomic<std::uint64_t> lostImages{0};

void countLost(Orvo::CAM_HANDLE camera, Orvo::CAM_STRM_HANDLE stream, Orvo::CAM_IMAGE_INFO* info, std::uint32_t index,
               void*)
{
    const std::uint64_t previous = lastFrame.exchange(info->frameNumber);
    if (info->frameNumber > previous + 1)
        lostImages += info->frameNumber - previous - 1;
    viewerCallback.function(camera, stream, info, index, viewerCallback.context);
}

} // namespace

// Stands before the camera library's own, which it calls.
extern "C" Orvo::CAM_API_STATUS Strm_SetCallbackImageAcquired(Orvo::CAM_STRM_HANDLE stream, void* context,
                                                              Orvo::CAM_IMAGE_ACQUIRED_CALLBACK callback)
{
    static const auto next = reinterpret_cast<decltype(&Orvo::Strm_SetCallbackImageAcquired)>(
        dlsym(RTLD_NEXT, "Strm_SetCallbackImageAcquired"));
    viewerCallback = {context, callback};
    lastFrame = 0;
    return next(stream, nullptr, &countLost);
}

namespace {

bool allMet = true;

[[noreturn]] void giveUp(const QString& why)
{
    std::fprintf(stderr, "live_view: %s\n", qPrintable(why));
    std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): nobody else ends the program
}

enum class Limit { AtLeast, AtMost, Within };

/// One line of the result: the figure, its limit, and their ratio.
void report(const char* what, double measured, const char* unit, Limit limit, double bound, double around = 0)
{
    bool met = false;
    QString limitText;
    switch (limit) {
    case Limit::AtLeast:
        met = measured >= bound;
        limitText = QString(">= %1").arg(bound);
        break;
    case Limit::AtMost:
        met = measured <= bound;
        limitText = QString("<= %1").arg(bound);
        break;
    case Limit::Within:
        met = std::abs(measured - around) <= bound;
        limitText = QString("%1 +- %2").arg(around).arg(bound);
        break;
    }
    const double reference = limit == Limit::Within ? around : bound;
    std::printf("%-44s %9.2f %-6s limit %-10s ratio %-6s %s\n", what, measured, unit, qPrintable(limitText),
                reference != 0 ? qPrintable(QString::number(measured / reference, 'f', 2)) : "-",
                met ? "met" : "MISSED");
    allMet = allMet && met;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

// --- Start of the program ------------------------------------------------------------------------------------------

void startToWindow()
{
    constexpr int rounds = 5;
    const Desktop desktop;
    std::vector<double> seconds;
    for (int round = 0; round < rounds; ++round) {
        QProcess viewer;
        QElapsedTimer timer;
        timer.start();
        viewer.start(VIEWER_PROGRAM, QStringList());
        if (!viewer.waitForStarted())
            giveUp(QString(VIEWER_PROGRAM) + " does not start: " + viewer.errorString());
        if (!QTest::qWaitFor([&] { return desktop.window("OrvoCamLinuxViewer").has_value(); }))
            giveUp(QString("no window of ") + VIEWER_PROGRAM);
        seconds.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e9);
        viewer.terminate();
        viewer.waitForFinished();
    }
    report("start to window on screen, median of 5", median(seconds), "s", Limit::AtMost, 0.5);
}

// --- The colour camera at 60 images a second -----------------------------------------------------------------------

constexpr std::uint32_t kWidth = 1920;
constexpr std::uint32_t kHeight = 1200;

void openColourCamera(WindowDriver& driver)
{
    if (!driver.openModel("SIM-C1920") || driver.imageArea().size() != QSizeF(kWidth, kHeight))
        giveUp("no camera");
}

/// Seconds of processor time that ConvImage takes for an image of the camera, when it has the processor for itself.
double conversionSeconds()
{
    constexpr int rounds = 100;
    constexpr std::uint32_t toArgb32 = 0;
    constexpr std::uint32_t bayerRG8 = 0x01080009;
    constexpr std::uint32_t option = 1;
    std::vector<std::uint8_t> source(std::size_t{kWidth} * kHeight);
    std::minstd_rand random;
    std::generate(source.begin(), source.end(), [&] { return static_cast<std::uint8_t>(random() >> 8); });
    std::vector<std::uint8_t> converted(source.size() * 4);
    const auto convert = [&] {
        if (Orvo::ConvImage(toArgb32, bayerRG8, option, converted.data(), source.data(), kWidth, kHeight) !=
            Orvo::CAM_API_STS_SUCCESS) {
            giveUp("no conversion");
        }
    };
    convert(); // into memory that has been touched
    const double before = process::processorSeconds();
    for (int round = 0; round < rounds; ++round)
        convert();
    return (process::processorSeconds() - before) / rounds;
}

void rates(WindowDriver& driver, const ShownImages& images)
{
    constexpr int reports = 5;
    const QRegularExpression numbers(R"(Disp = *([\d.]+) fps\] , \[Cap = *([\d.]+) fps)");
    driver.start();
    const QString none = driver.rates();
    if (!QTest::qWaitFor([&] { return driver.rates() != none; }, 10000))
        giveUp("no frame rates");

    lostImages = 0;
    double display = 1e9;
    double capture = 0;
    const int imagesBefore = images.count();
    const double processorBefore = process::processorSeconds();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < reports; ++i) {
        QTest::qWait(2050);
        const auto match = numbers.match(driver.rates());
        display = std::min(display, match.captured(1).toDouble());
        capture += match.captured(2).toDouble() / reports;
    }
    const double wall = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    const double processor = process::processorSeconds() - processorBefore;
    const int shown = images.count() - imagesBefore;
    report("display rate, lowest of 5 reports", display, "fps", Limit::AtLeast, 34);
    report("capture rate, mean of 5 reports", capture, "fps", Limit::Within, 1, 60);
    report("images lost", static_cast<double>(lostImages), "", Limit::AtMost, 0);
    report("log lines", static_cast<double>(driver.log().size()), "", Limit::AtMost, 0);
    driver.stop();

    const double conversion = conversionSeconds() * shown;
    std::printf("%-44s %9.2f %%      (camera, conversion and drawing; 100 %% = one core)\n", "processor share",
                100 * processor / wall);
    std::printf("%-44s %9.2f %%\n", "of it ConvImage, by itself", 100 * conversion / wall);
    report("processor time, times ConvImage's", processor / conversion, "", Limit::AtMost, 3.8);
}

// --- Flat over time ------------------------------------------------------------------------------------------------

template <typename Cycle> void flat(const char* what, int cycles, const Cycle& cycle)
{
    const int warmUp = cycles / 5;
    for (int i = 0; i < warmUp; ++i)
        cycle();
    const double memory = process::residentMiB();
    const auto threads = static_cast<double>(process::threads());
    for (int i = warmUp; i < cycles; ++i)
        cycle();
    const QString name = QString("%1 x %2").arg(cycles).arg(what);
    constexpr double noise = 1; // MiB: the allocator's own ups and downs
    report(qPrintable(name + ", memory gained"), process::residentMiB() - memory, "MiB", Limit::AtMost, noise);
    report(qPrintable(name + ", threads gained"), static_cast<double>(process::threads()) - threads, "", Limit::AtMost,
           0);
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    startToWindow();

    WindowDriver driver;
    const ShownImages images(driver.window());
    openColourCamera(driver);
    rates(driver, images);
    flat("start/stop", 200, [&] {
        driver.start();
        if (!images.waitForMore(1))
            giveUp("no image");
        driver.stop();
    });
    driver.close();
    flat("open/close", 50, [&] {
        openColourCamera(driver);
        driver.close();
    });
    return allMet ? EXIT_SUCCESS : EXIT_FAILURE;
}
