// The viewer in use for as long as one likes, with the camera libraries and a simulated camera of 200 images a second:
//
//     tests/support/with-xvfb --windows long_run MINUTES FILE.csv
//
// A value is edited every second; the image is zoomed every 10 seconds and saved every 30; the stream is stopped and
// started every minute. Evenly over the time the camera is closed and opened ten times, and pulled once. Incomplete
// images write to the message log. Every second one line goes into the file: memory, descriptors, threads, the longest
// time that an event waited, images shown and captured, lines of the log. Ends with status 1 where one of the first
// three grows.

#include "tests/attack/Process.h"
#include "tests/attack/Snapshot.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/OpenedCamera.h"
#include "tests/support/Patience.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr const char* kModel = "SIM-M1280";
constexpr double kImagesPerSecond = 200;
constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kIncompleteEvery = 1000;
constexpr int kReplugSeconds = 2;

constexpr int kZoomPeriod = 10; // seconds
constexpr int kSnapshotPeriod = 30;
constexpr int kRestartPeriod = 60;
constexpr int kOpenings = 10;

constexpr long kMemoryNoiseKib = 8L * 1024; // the allocator's own ups and downs

[[noreturn]] void giveUp(const char* why)
{
    std::fprintf(stderr, "long_run: %s\n", why);
    std::exit(EXIT_FAILURE); // NOLINT(concurrency-mt-unsafe): nobody else ends the program
}

/// The longest delay of a window event since the last query.
class Latency {
public:
    Latency()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_longest = std::max(m_longest, static_cast<double>(m_since.nsecsElapsed()) / 1e6 - kPeriodMs);
            m_since.restart();
        });
        m_since.start();
        m_timer.start(kPeriodMs);
    }

    [[nodiscard]] double takeLongestMs()
    {
        const double longest = m_longest;
        m_longest = 0;
        return longest;
    }

private:
    static constexpr int kPeriodMs = 10;
    QTimer m_timer;
    QElapsedTimer m_since;
    double m_longest = 0;
};

struct Sample {
    long memoryKib = 0;
    process::Held held;
};

class LongRun {
public:
    LongRun(int seconds, std::FILE* table);

    [[nodiscard]] bool run();

private:
    void openAndStart();
    void setCamera() const;
    void act(int second);
    void unplugAndOpen();
    void saveImage();
    void record(int second);
    [[nodiscard]] bool isFlat() const;

    int m_seconds;
    std::FILE* m_table;
    WindowDriver m_driver;
    Latency m_latency;
    QTemporaryDir m_folder;
    int m_shown = 0;
    int m_opened = 0;
    bool m_zoomed = false;
    std::vector<Sample> m_samples;
};

LongRun::LongRun(int seconds, std::FILE* table)
    : m_seconds(seconds)
    , m_table(table)
{
    QObject::connect(&m_driver.window(), &MainWindow::Update_Image, &m_driver.window(), [this] { ++m_shown; });
    std::fprintf(m_table,
                 "second,memory KiB,descriptors,threads,longest wait ms,images shown,images captured,log lines,"
                 "openings\n");
}

void LongRun::setCamera() const
{
    Orvo::CAM_NODE_HANDLE rate = 0;
    Orvo::CAM_NODE_HANDLE exposure = 0;
    const Orvo::CAM_HANDLE camera = opened::camera();
    const bool done = opened::set("Width", kWidth) == 0 && opened::set("Height", kHeight) == 0 &&
                      opened::set("SimulationIncompleteEvery", kIncompleteEvery) == 0 &&
                      Orvo::Nd_GetNode(camera, "ExposureTime", &exposure) == 0 &&
                      Orvo::Nd_SetFloatValue(camera, exposure, 1000) == 0 &&
                      Orvo::Nd_GetNode(camera, "AcquisitionFrameRate", &rate) == 0 &&
                      Orvo::Nd_SetFloatValue(camera, rate, kImagesPerSecond) == 0;
    if (!done)
        giveUp("the camera does not take its settings");
}

void LongRun::openAndStart()
{
    if (!m_driver.openModel(kModel))
        giveUp("the camera does not open");
    ++m_opened;
    setCamera();
    m_driver.start();
    const int before = m_shown;
    if (!QTest::qWaitFor([&] { return m_shown > before; }, kPatienceMs))
        giveUp("no image");
}

void LongRun::unplugAndOpen()
{
    if (opened::set("SimulationReplugAfter", kReplugSeconds) != 0 || opened::execute("SimulationUnplug") != 0)
        giveUp("the camera cannot be pulled");
    if (!QTest::qWaitFor([this] { return m_driver.enabled("actionOpen"); }, kPatienceMs))
        giveUp("the window does not notice the removal");
    QTest::qWait(1000 * (kReplugSeconds + 1));
    openAndStart();
}

void LongRun::saveImage()
{
    if (!takeSnapshot(m_driver, m_folder.filePath("shot.png")))
        giveUp("no snapshot");
}

void LongRun::act(int second)
{
    const int period = std::max(1, m_seconds / (kOpenings + 1));
    if (second == m_seconds / 2) {
        unplugAndOpen();
    } else if (second % period == 0 && second > 0 && m_opened < kOpenings + 1) {
        m_driver.stop();
        m_driver.close();
        openAndStart();
        m_zoomed = false;
    }
    if (second % kRestartPeriod == kRestartPeriod - 1) {
        m_driver.stop();
        m_driver.start();
    }
    if (second % kZoomPeriod == kZoomPeriod - 1) {
        m_driver.trigger(m_zoomed && m_driver.enabled("actionZoomOut") ? "actionZoomOut" : "actionZoomIn");
        m_zoomed = !m_zoomed;
    }
    if (second % kSnapshotPeriod == kSnapshotPeriod - 1)
        saveImage();
    FeatureHand hand(m_driver.window());
    if (second % 2 == 0) {
        hand.type("ExposureTime", second % 4 == 0 ? "1500" : "1000");
    } else {
        hand.type("Gain", second % 4 == 1 ? "3" : "0");
    }
}

void LongRun::record(int second)
{
    const Sample sample{process::residentKib(), process::held()};
    m_samples.push_back(sample);
    const int lines = m_driver.child<QTextEdit>("messageLogEdit")->document()->blockCount();
    static const QRegularExpression captured(R"(Cap = *([\d.]+) fps)");
    const double rate = captured.match(m_driver.rates()).captured(1).toDouble();
    std::fprintf(m_table, "%d,%ld,%d,%d,%.1f,%d,%.0f,%d,%d\n", second, sample.memoryKib, sample.held.descriptors,
                 sample.held.threads, m_latency.takeLongestMs(), m_shown, rate, lines, m_opened);
    std::fflush(m_table);
    m_shown = 0;
}

bool LongRun::isFlat() const
{
    // The second quarter against the last: the first one loads what is loaded once.
    const auto highest = [this](std::size_t quarter) {
        Sample most;
        for (std::size_t i = m_samples.size() * (quarter - 1) / 4; i < m_samples.size() * quarter / 4; ++i) {
            most.memoryKib = std::max(most.memoryKib, m_samples[i].memoryKib);
            most.held.threads = std::max(most.held.threads, m_samples[i].held.threads);
            most.held.descriptors = std::max(most.held.descriptors, m_samples[i].held.descriptors);
        }
        return most;
    };
    const Sample early = highest(2);
    const Sample late = highest(4);
    std::printf("long run: %d s, %d openings; second and last quarter: %ld and %ld KiB, %d and %d descriptors, "
                "%d and %d threads\n",
                m_seconds, m_opened, early.memoryKib, late.memoryKib, early.held.descriptors, late.held.descriptors,
                early.held.threads, late.held.threads);
    return late.memoryKib <= early.memoryKib + kMemoryNoiseKib && late.held.descriptors <= early.held.descriptors &&
           late.held.threads <= early.held.threads;
}

bool LongRun::run()
{
    openAndStart();
    saveImage(); // loads what the dialog needs, which a short run must not take for growth
    QElapsedTimer clock;
    clock.start();
    int second = 0;
    while (!clock.hasExpired(1000LL * m_seconds)) {
        act(second);
        record(second);
        // Seconds that pass during an action are skipped.
        second = std::max(second + 1, static_cast<int>(clock.elapsed() / 1000));
        while (clock.elapsed() < 1000LL * second)
            QTest::qWait(static_cast<int>(1000LL * second - clock.elapsed()));
    }
    return isFlat();
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const double minutes = argc == 3 ? std::atof(argv[1]) : 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> table(argc == 3 ? std::fopen(argv[2], "w") : nullptr,
                                                                &std::fclose);
    if (minutes <= 0 || !table) {
        std::fprintf(stderr, "Usage: %s MINUTES FILE.csv\n", argv[0]);
        return EXIT_FAILURE;
    }
    LongRun run(static_cast<int>(minutes * 60), table.get());
    return run.run() ? EXIT_SUCCESS : EXIT_FAILURE;
}
