// Measures whether the window responds while a camera floods the message log.
//
// Uses the real window with the real camera libraries and the first simulated colour camera, which sends 10,000 errors
// per second for 10 s: in bursts of 10,000, in bursts of 1,000, and again with a full log. Prints the most processor
// time that the GUI thread takes without returning to its event loop, the longest stall of the event loop, and the
// longest time from a callback to its line in the log, each with its goal. Exits with 1 if a goal is missed. On a busy
// machine only the first figure is compared with its goal. Needs a screen:
//
//     tests/support/with-xvfb build/release/bin/message_log

#include "benchmarks/Process.h"
#include "benchmarks/Report.h"
#include "camera/OrvoCamApi.h"
#include "tests/support/OpenedCamera.h"
#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <dlfcn.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLinesPerSecond = 10000;
constexpr int kSeconds = 10;
constexpr int kLines = kLinesPerSecond * kSeconds;
constexpr double kQuiet = 0.25; // cores that other programs may use while wall-clock times count

// --- Lines, numbered by the status in them -------------------------------------------------------------------

struct Callback {
    void* context = nullptr;
    Orvo::CAM_IMAGE_ERROR_CALLBACK function = nullptr;
};
Callback viewerCallback;
std::vector<Clock::time_point> sent(kLines);
std::atomic<std::uint32_t> sentCount{0};

void sendNumbered(Orvo::CAM_HANDLE camera, Orvo::CAM_STRM_HANDLE stream, std::uint32_t, std::uint32_t index, void*)
{
    const std::uint32_t number = sentCount.load();
    sent.at(number) = Clock::now();
    sentCount = number + 1;
    viewerCallback.function(camera, stream, number + 1, index, viewerCallback.context);
}

} // namespace

// Overrides the camera library's function and calls it.
extern "C" Orvo::CAM_API_STATUS Strm_SetCallbackImageError(Orvo::CAM_STRM_HANDLE stream, void* context,
                                                           Orvo::CAM_IMAGE_ERROR_CALLBACK callback)
{
    static const auto next =
        reinterpret_cast<decltype(&Orvo::Strm_SetCallbackImageError)>(dlsym(RTLD_NEXT, "Strm_SetCallbackImageError"));
    viewerCallback = {context, callback};
    return next(stream, nullptr, &sendNumbered);
}

namespace {

[[noreturn]] void giveUp(const char* why)
{
    std::fprintf(stderr, "message_log: %s\n", why);
    std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): nobody else ends the program
}

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

/// The number in the newest line, or 0 if there is none.
std::uint32_t newestNumber(const QTextDocument& log)
{
    const QString line = log.lastBlock().text();
    const int begin = line.indexOf("0x") + 2;
    return begin < 2 ? 0 : line.mid(begin, line.size() - begin - 1).toUInt(nullptr, 16);
}

void flood(const char* what, int burst, const QTextDocument& log)
{
    constexpr int kBeatMs = 5;
    sentCount = 0;
    double latest = 0;
    std::uint32_t arrived = 0;
    const auto noteLines = [&] {
        const Clock::time_point now = Clock::now();
        for (const std::uint32_t newest = std::max(newestNumber(log), arrived); arrived < newest; ++arrived)
            latest = std::max(latest, milliseconds(now - sent.at(arrived)));
    };

    double stall = 0;
    double work = 0;
    Clock::time_point lastBeat = Clock::now();
    double lastWork = process::threadSeconds();
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, &beat, [&] {
        const Clock::time_point now = Clock::now();
        const double nowWork = process::threadSeconds();
        stall = std::max(stall, milliseconds(now - lastBeat) - kBeatMs);
        work = std::max(work, 1000 * (nowWork - lastWork));
        lastBeat = now;
        lastWork = nowWork;
    });
    const auto noting = QObject::connect(&log, &QTextDocument::contentsChanged, &beat, noteLines);
    const double processorBefore = process::processorSeconds();
    const double machineBefore = process::machineSeconds();
    QElapsedTimer wall;
    wall.start();
    beat.start(kBeatMs);

    std::thread sender([burst] {
        const Clock::time_point begin = Clock::now();
        for (int count = 0; count < kLines; count += burst) {
            std::this_thread::sleep_until(begin + std::chrono::microseconds(1000000LL * count / kLinesPerSecond));
            if (opened::set("SimulationErrorBurst", burst) != Orvo::CAM_API_STS_SUCCESS)
                giveUp("no burst");
        }
    });
    const bool all = QTest::qWaitFor([&] { return arrived == kLines; }, 20 * 1000 * kSeconds);
    const double seconds = static_cast<double>(wall.elapsed()) / 1000;
    const double processor = process::processorSeconds() - processorBefore;
    const double share = 100 * processor / seconds;
    const double others = (process::machineSeconds() - machineBefore - processor) / seconds;
    sender.join();
    QObject::disconnect(noting);
    if (!all)
        giveUp("lines are missing");
    const auto print = [what](const char* name, double value, const char* unit, report::Goal goal = {}) {
        report::print(std::string(what) + ": " + name, report::single(value), unit, goal);
    };
    constexpr double kLimit = 200;
    print("most work in one go", work, "ms", report::atMost(kLimit));
    report::setMachineBusy(others > kQuiet);
    print("longest stall", stall, "ms", report::atMost(kLimit));
    print("longest time to a line", latest, "ms", report::atMost(kLimit));
    report::setMachineBusy(false);
    print("processor share, camera and drawing included", share, "%");
    print("what other programs had of a core meanwhile", 100 * others, "%");
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    WindowDriver driver;
    const ShownImages images(driver.window());
    if (!driver.openModel("SIM-C1920"))
        giveUp("no camera");
    driver.start();
    if (!images.waitForMore(1))
        giveUp("no images");

    const QTextDocument& log = *driver.child<QTextEdit>("messageLogEdit")->document();
    flood("bursts of 10,000", 10000, log);
    flood("bursts of 1,000, full log", 1000, log);
    flood("bursts of 10,000, full log", 10000, log);
    return report::exitStatus();
}
