// The display thread in the real main window: its pace, the hand-over of images to the GUI thread, and the rates.

#include "tests/display/RunningStream.h"
#include "tests/support/ShownImages.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <optional>

using namespace std::chrono_literals;

namespace {

const std::string kPoll = "Sys_WaitForSignal"; // the first call of a round, after its sleep of 2 ms

class DispThreadPaceTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void roundsAreAtLeast2MillisecondsApart();
    void atMostOneAttemptIn26Milliseconds_data();
    void atMostOneAttemptIn26Milliseconds();
    void everyAttemptEndsInAPauseOf5Milliseconds_data();
    void everyAttemptEndsInAPauseOf5Milliseconds();
    void pausesBeforeTheFirstImageToo();
    void imagesAndReportsArriveInTime();

    void lentImageBlocksTheNext();
    void ratesAreReportedWhileAnImageIsLent();
    void shownImagesAreComplete();
    void laterImagesDoNotChangeShownOnes();
    void staleImageAfterRestartIsHarmless_data();
    void staleImageAfterRestartIsHarmless();
    void staleImageAfterExitIsHarmless();
    void imageHandledAfterStopKeepsTheLoanOfTheNextStart();

    void pausedThreadTakesNoImagesButReportsRates();
    void fastCameraShowsFewerImagesThanItDelivers();
    void stoppedCameraShowsZeroAndKeepsTheImage();
    void nothingIsReportedWhileNotAcquiring();
};

// --- Pace ------------------------------------------------------------------------------------------------------------

void DispThreadPaceTest::roundsAreAtLeast2MillisecondsApart()
{
    const CallTimes times({kPoll});
    RunningStream running;
    QVERIFY(recorded::waitRounds(100));
    const auto calls = times.entries();
    for (std::size_t i = 1; i < calls.size(); ++i)
        QVERIFY2(calls[i].at - calls[i - 1].at >= 2ms, qPrintable(QString::number(i)));
}

void DispThreadPaceTest::atMostOneAttemptIn26Milliseconds_data()
{
    QTest::addColumn<QString>("tried");
    QTest::addColumn<QString>("failing");
    QTest::newRow("image taken") << "ConvImage"
                                 << "";
    QTest::newRow("no buffer") << "Strm_GetCurrentBufferIndex"
                               << "Strm_GetCurrentBufferIndex";
    QTest::newRow("no lock") << "Strm_LockBuffer"
                             << "Strm_LockBuffer";
}

void DispThreadPaceTest::atMostOneAttemptIn26Milliseconds()
{
    QFETCH(QString, tried);
    QFETCH(QString, failing);
    const std::string operation = tried.toStdString();
    const CallTimes times({kPoll, operation});
    RunningStream running;
    if (!failing.isEmpty())
        scripted::failAlways(failing.toStdString(), Orvo::CAM_API_STS_BUSY);
    {
        const Feeder feeder(3);
        QTRY_VERIFY_WITH_TIMEOUT(times.count(operation) >= 30, kPatienceMs);
    }
    // The frame timer restarts between the poll of a round and the attempt in it.
    std::optional<CallTimes::Clock::time_point> roundBegan;
    const auto calls = times.entries();
    for (std::size_t i = 1; i < calls.size(); ++i) {
        if (calls[i].operation != operation)
            continue;
        QCOMPARE(calls[i - 1].operation, kPoll);
        if (roundBegan)
            QVERIFY2(calls[i].at - *roundBegan >= 26ms, qPrintable(QString::number(i)));
        roundBegan = calls[i - 1].at;
    }
}

void DispThreadPaceTest::everyAttemptEndsInAPauseOf5Milliseconds_data()
{
    QTest::addColumn<QString>("last"); // operation of the round
    QTest::addColumn<QString>("failing");
    QTest::addColumn<uint>("imageStatus");
    QTest::newRow("image taken") << "Strm_UnlockBuffer"
                                 << "" << 0U;
    QTest::newRow("image incomplete") << "Strm_UnlockBuffer"
                                      << "" << Orvo::CAM_API_STS_MISSING_PACKETS;
    QTest::newRow("no buffer") << "Strm_GetCurrentBufferIndex"
                               << "Strm_GetCurrentBufferIndex" << 0U;
    QTest::newRow("no lock") << "Strm_UnlockBuffer"
                             << "Strm_LockBuffer" << 0U;
}

void DispThreadPaceTest::everyAttemptEndsInAPauseOf5Milliseconds()
{
    QFETCH(QString, last);
    QFETCH(QString, failing);
    QFETCH(uint, imageStatus);
    const std::string operation = last.toStdString();
    const CallTimes times({kPoll, operation});
    RunningStream running;
    if (!failing.isEmpty())
        scripted::failAlways(failing.toStdString(), Orvo::CAM_API_STS_BUSY);
    for (int tries = 1; tries <= 10; ++tries) {
        QVERIFY(scripted::deliverImage(std::uint64_t(tries), 0, imageStatus));
        QTRY_VERIFY_WITH_TIMEOUT(times.count(operation) >= tries, kPatienceMs);
    }
    QVERIFY(recorded::waitRounds(2));
    const auto calls = times.entries();
    for (std::size_t i = 1; i < calls.size(); ++i) {
        // The pause plus the 2 ms at the start of every round.
        if (calls[i - 1].operation == operation)
            QVERIFY2(calls[i].at - calls[i - 1].at >= 7ms, qPrintable(QString::number(i)));
    }
}

void DispThreadPaceTest::pausesBeforeTheFirstImageToo()
{
    const CallTimes times({kPoll});
    RunningStream running;
    const auto acquiring = CallTimes::Clock::now();
    QVERIFY(recorded::waitRounds(150));
    // A round that begins 26 ms after the start of the frame timer finds it elapsed, and pauses. This holds only once
    // the stream has started, which happens while the thread already runs.
    const auto calls = times.entries();
    auto timerStartedBefore = calls[0].at;
    for (std::size_t i = 1; i < calls.size(); ++i) {
        const auto round = calls[i].at - calls[i - 1].at;
        if (calls[i - 1].at >= acquiring && calls[i - 1].at - timerStartedBefore >= 26ms)
            QVERIFY2(round >= 7ms, qPrintable(QString::number(i)));
        if (round >= 7ms)
            timerStartedBefore = calls[i].at - 7ms;
    }
    QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), 0);
}

void DispThreadPaceTest::imagesAndReportsArriveInTime()
{
    constexpr std::size_t kMostReports = 20;
    constexpr double kEnough = 30; // 1000 / 26 at best
    constexpr auto kSoon = 2300ms;
    double fastest = 0;
    CallTimes::Clock::duration shortest = 1h;
    RunningStream running;
    const Feeder feeder(5);
    // Repeated, because the machine may be busy for a while.
    for (std::size_t last = 1; last < kMostReports && (fastest < kEnough || shortest >= kSoon); ++last) {
        QVERIFY(running.waitForReports(last + 1));
        const auto rates = running.rates();
        fastest = std::max(fastest, rates[last].display);
        shortest = std::min(shortest, rates[last].at - rates[last - 1].at);
    }
    QVERIFY2(fastest >= kEnough, qPrintable(QString::number(fastest)));
    QVERIFY2(shortest < kSoon, qPrintable(QString::number(std::chrono::duration<double>(shortest).count())));
}

// --- Hand-over ------------------------------------------------------------------------------------------------------

void DispThreadPaceTest::lentImageBlocksTheNext()
{
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([] { return conversions() == 1; }));
    const int asked = scripted::count("Strm_GetCurrentBufferIndex");
    QVERIFY(scripted::deliverImage(2));
    QVERIFY(waitRoundsBlocked());
    QCOMPARE(conversions(), 1);
    QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), asked);
    QVERIFY(scripted::deliverImage(3));

    // The newest image follows as soon as the GUI has handled the first.
    QTRY_COMPARE(conversions(), 2);
    QCOMPARE(recorded::texts({"Strm_LockBuffer"}).at(1), QString("Strm_LockBuffer(3001, 2, out)"));
    QTRY_COMPARE(running.images(), 2);
}

void DispThreadPaceTest::ratesAreReportedWhileAnImageIsLent()
{
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([] { return conversions() == 1; }));
    QVERIFY(waitBlocked([&] { return running.rates().size() == 2; }));
    QCOMPARE(conversions(), 1);
    QCOMPARE(running.rates().at(1).display, 0.0);
}

void DispThreadPaceTest::shownImagesAreComplete()
{
    constexpr int kEnough = 40;
    scripted::setImageFormat(640, 480, scripted::kBayerRG8);
    std::atomic<std::uint32_t> converted{0};
    scripted::onConvImage([&](void* dst, const void*, std::uint32_t width, std::uint32_t height) {
        std::fill_n(static_cast<std::uint32_t*>(dst), std::size_t{width} * height, 0xFF000000U | ++converted);
    });
    int whole = 0;
    int torn = 0;
    RunningStream running;
    connect(&running.driver().window(), &MainWindow::Update_Image, this, [&](const QImage& image) {
        QImage expected(image.size(), image.format());
        expected.fill(image.pixel(0, 0));
        ++(image == expected ? whole : torn);
    });
    const Feeder feeder(3);
    QElapsedTimer timer;
    timer.start();
    // The GUI thread busy-waits, so that only the hand-over synchronises the two threads.
    while (whole + torn < kEnough && timer.elapsed() < kPatienceMs)
        QCoreApplication::processEvents();
    QCOMPARE(torn, 0);
    QCOMPARE(whole, kEnough);
}

void DispThreadPaceTest::laterImagesDoNotChangeShownOnes()
{
    constexpr int kFrames = 6;
    const auto greyOf = [](int frame) { return static_cast<std::uint8_t>(0x20 * frame); };
    RunningStream running;
    const ShownImages shown(running.driver().window(), ShownImages::Keep::All);
    for (int frame = 1; frame <= kFrames; ++frame) {
        QVERIFY(scripted::deliverImage(std::uint64_t(frame), greyOf(frame)));
        QTRY_COMPARE(shown.count(), frame);
    }
    running.driver().trigger("actionZoomIn"); // shows the last image again
    QCOMPARE(shown.count(), kFrames + 1);
    for (int i = 0; i <= kFrames; ++i) {
        const QImage image = shown.images().at(i);
        const std::uint8_t grey = greyOf(std::min(i + 1, kFrames));
        QImage expected(image.size(), QImage::Format_ARGB32); // as the display thread converts it
        expected.fill(QColor(grey, grey, grey));
        QCOMPARE(image, expected);
    }
}

void DispThreadPaceTest::staleImageAfterRestartIsHarmless_data()
{
    QTest::addColumn<uint>("width");
    QTest::addColumn<uint>("height");
    QTest::newRow("same size") << 64U << 48U;
    QTest::newRow("smaller") << 16U << 16U;
    QTest::newRow("larger") << 640U << 480U;
}

void DispThreadPaceTest::staleImageAfterRestartIsHarmless()
{
    QFETCH(uint, width);
    QFETCH(uint, height);
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return running.images() == 1; }));
    running.driver().stop();
    scripted::setImageFormat(width, height, scripted::kBayerRG8);
    running.start();
    QVERIFY(scripted::deliverImage(1)); // the new thread has no previous frame number
    QVERIFY(waitBlocked([&] { return running.images() == 2; }));

    // Both images are queued now: handling the stale one must not end the loan of the other too early, and that loan
    // must still end.
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(running.images(), 3);
    QVERIFY(scripted::deliverImage(3));
    QTRY_COMPARE(running.images(), 4);
}

void DispThreadPaceTest::staleImageAfterExitIsHarmless()
{
    auto running = std::make_unique<RunningStream>();
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return running->images() == 1; }));
    running->driver().exit();
    QCoreApplication::processEvents();
    running.reset();
    QCOMPARE(scripted::lockedBuffers(), 0);
}

void DispThreadPaceTest::imageHandledAfterStopKeepsTheLoanOfTheNextStart()
{
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return running.images() == 1; }));
    running.driver().stop();
    QCoreApplication::processEvents();
    running.start();
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(running.images(), 2);
}

// --- Rates ----------------------------------------------------------------------------------------------------------

void DispThreadPaceTest::pausedThreadTakesNoImagesButReportsRates()
{
    RunningStream running;
    running.driver().trigger("actionPause");
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(scripted::deliverImage(2));
    QVERIFY(running.waitForReports(1));
    QCOMPARE(conversions(), 0);
    QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), 0);
    QCOMPARE(running.rates().at(0).display, 0.0);
    QVERIFY(running.rates().at(0).capture > 0.0);
    running.driver().trigger("actionPause");
    QTRY_COMPARE(conversions(), 1);
}

void DispThreadPaceTest::fastCameraShowsFewerImagesThanItDelivers()
{
    constexpr double kHighestDisplayRate = 1000.0 / 26 + 1; // a report may contain one image more
    RunningStream running;
    int deliveredBefore = 0;
    int deliveredAfter = 0;
    {
        const Feeder feeder(10);
        QVERIFY(running.waitForReports(1));
        deliveredBefore = feeder.delivered();
        QVERIFY(running.waitForReports(2));
        deliveredAfter = feeder.delivered();
    }
    const RunningStream::Rates rates = running.rates().at(1);
    QVERIFY2(rates.display <= kHighestDisplayRate, qPrintable(QString::number(rates.display)));
    QVERIFY(rates.display > 0);
    QVERIFY2(rates.capture > rates.display, qPrintable(QString::number(rates.capture)));
    // A report covers slightly more than 2 seconds, and the counts were taken slightly after the reports.
    QVERIFY(rates.capture * 2 <= (deliveredAfter - deliveredBefore) * 1.5);
    QVERIFY(rates.capture * 2 >= (deliveredAfter - deliveredBefore) * 0.5);
}

void DispThreadPaceTest::stoppedCameraShowsZeroAndKeepsTheImage()
{
    constexpr int kDelivered = 10;
    RunningStream running;
    const ShownImages shown(running.driver().window(), ShownImages::Keep::Last);
    for (std::uint64_t number = 1; number <= kDelivered; ++number)
        QVERIFY(scripted::deliverImage(number, 0x40));
    QVERIFY(running.waitForReports(2));

    // The known count gives the period of the report, which is in whole milliseconds.
    const RunningStream::Rates first = running.rates().at(0);
    const double milliseconds = kDelivered * 1000.0 / first.capture;
    QVERIFY(milliseconds > 2000.5);
    QVERIFY(std::abs(milliseconds - std::round(milliseconds)) < 1e-6);
    QVERIFY(first.imagesBefore > 0);
    QCOMPARE(first.display, first.imagesBefore * 1000.0 / std::round(milliseconds));

    // Both counters were reset.
    const RunningStream::Rates second = running.rates().at(1);
    QCOMPARE(second.capture, 0.0);
    QCOMPARE(second.display, 0.0);
    QTRY_COMPARE(running.driver().rates(), QString("[Disp =   0.00 fps] , [Cap =   0.00 fps]"));
    QCOMPARE(running.images(), first.imagesBefore);
    QCOMPARE(shown.last().pixel(0, 0), 0xFF404040U);
}

void DispThreadPaceTest::nothingIsReportedWhileNotAcquiring()
{
    // The thread already runs while the stream is opened. Here opening takes longer than a report period; the absence
    // of a report can only be shown by waiting.
    constexpr int kLongerThanAReportMs = 2300;
    std::atomic<int> reports{0};
    int reportsWhileOpening = -1;
    WindowDriver driver;
    driver.open();
    scripted::onCall("Strm_OpenSimple", [&] {
        auto* const thread = driver.window().findChild<DispThread*>();
        connect(
            thread, &DispThread::dispFps, thread, [&] { ++reports; }, Qt::DirectConnection);
        QTest::qSleep(kLongerThanAReportMs);
        reportsWhileOpening = reports;
    });
    driver.start();
    QCOMPARE(reportsWhileOpening, 0);
    QTRY_COMPARE(reports, 1); // immediately: more than two seconds have passed
}

} // namespace

ORVO_TEST_CLASS(DispThreadPaceTest)
#include "DispThreadPaceTest.moc"
