// The display thread in the real main window: which images it takes and when, what it reports, and how it ends.

#include "display/DispThread.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr std::uint32_t kBayerRG8 = 0x01080009;
constexpr int kPatienceMs = 30000;

// Rounds of the display thread take 2 ms or more, so that the pace of 26 ms has passed after these.
constexpr int kRoundsOfAFewPeriods = 60;

/// Waits without letting the GUI thread handle its events.
[[nodiscard]] bool waitBlocked(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kPatienceMs)
            return false;
        QThread::msleep(1);
    }
    return true;
}

/// Lets the display thread go on for that many rounds; it asks for the removal signal once in each.
[[nodiscard]] bool waitRoundsBlocked(int rounds)
{
    const int until = scripted::count("Sys_WaitForSignal") + rounds;
    return waitBlocked([until] { return scripted::count("Sys_WaitForSignal") >= until; });
}

[[nodiscard]] bool waitRounds(int rounds)
{
    const int until = scripted::count("Sys_WaitForSignal") + rounds;
    return QTest::qWaitFor([until] { return scripted::count("Sys_WaitForSignal") >= until; }, kPatienceMs);
}

int conversions()
{
    return scripted::count("ConvImage");
}

/// A started stream, and what its display thread emits, noted on that thread.
class Running {
public:
    struct Rates {
        double capture;
        double display;
        int imagesBefore; // emitted since the report before
    };

    Running()
    {
        m_driver.open();
        start();
    }

    void start()
    {
        m_driver.start();
        QObject::connect(
            thread(), &DispThread::dispImage, thread(), [this] { ++m_images; }, Qt::DirectConnection);
        QObject::connect(
            thread(), &DispThread::dispFps, thread(),
            [this](double capture, double display) {
                const std::lock_guard lock(m_mutex);
                m_rates.push_back({capture, display, m_images - m_imagesReported});
                m_imagesReported = m_images;
            },
            Qt::DirectConnection);
    }

    [[nodiscard]] WindowDriver& driver() { return m_driver; }
    [[nodiscard]] DispThread* thread() { return m_driver.window().findChild<DispThread*>(); }
    [[nodiscard]] int images() const { return m_images; }
    [[nodiscard]] std::vector<Rates> rates() const
    {
        const std::lock_guard lock(m_mutex);
        return m_rates;
    }
    [[nodiscard]] bool waitForReports(std::size_t count) const
    {
        return QTest::qWaitFor([&] { return rates().size() >= count; }, kPatienceMs);
    }

private:
    mutable std::mutex m_mutex; // the members below outlive the thread that writes them
    std::vector<Rates> m_rates;
    int m_imagesReported = 0;
    std::atomic<int> m_images{0};
    WindowDriver m_driver;
};

/// A camera that delivers an image every few milliseconds until it goes out of scope.
class Feeder {
public:
    explicit Feeder(int periodMs)
        : m_thread([this, periodMs] {
            while (!m_stop) {
                scripted::deliverImage(++m_frameNumber);
                QThread::msleep(static_cast<unsigned long>(periodMs));
            }
        })
    {
    }
    ~Feeder()
    {
        m_stop = true;
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(Feeder)

    [[nodiscard]] int delivered() const { return m_frameNumber; }

private:
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_frameNumber{0};
    std::thread m_thread;
};

QStringList texts(const std::vector<scripted::Call>& calls)
{
    QStringList lines;
    for (const scripted::Call& call : calls)
        lines << QString::fromStdString(call.text());
    return lines;
}

class DispThreadTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void signalsAreKnownByName();
    void livesWhileTheStreamIsOpen();

    void imageIsLockedConvertedAndUnlocked();
    void imageIsEmittedAsAViewOfTheBuffer();
    void nothingIsAskedBeforeTheFirstImage();
    void failedIndexQueryIsSkipped();
    void failedLockIsUnlockedAllTheSame();
    void incompleteImageIsSkippedAndUnlocked();
    void sameFrameNumberIsNotConvertedAgain();
    void wholeFrameNumberIsCompared();
    void firstImageNumbered21845IsNotShown();
    void failedConversionIsShownAllTheSame();

    void atMostOneConversionIn26Milliseconds();
    void lentImageBlocksTheNext();
    void ratesGoOnWhileAnImageIsLent();
    void shownImagesAreWhole();
    void windowHandsOnTheImageThatItKeeps();
    void staleImageAfterRestartIsHarmless_data();
    void staleImageAfterRestartIsHarmless();
    void staleImageAfterExitIsHarmless();
    void imageHandledAfterStopFreesNothingOfTheNextStart();

    void pausedTakesNoImagesButReportsRates();
    void fastCameraShowsFewerImagesThanItDelivers();
    void stoppedCameraShowsZeroAndKeepsTheImage();
    void nothingIsReportedWhileNotAcquiring();

    void removalEndsTheThread();
    void removalIsPolledBeforeTheStreamRuns();
    void withoutSignalNothingIsPolled();
    void stopEndsTheThreadAfterEveryStep_data();
    void stopEndsTheThreadAfterEveryStep();
};

void DispThreadTest::signalsAreKnownByName()
{
    const QMetaObject& meta = DispThread::staticMetaObject;
    QStringList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        own << meta.method(i).methodSignature();
    QCOMPARE(own, (QStringList{"dispFps(double,double)", "dispImage(QImage)", "removedCamera()"}));
    QCOMPARE(meta.method(meta.methodOffset()).parameterNames(), (QList<QByteArray>{"capFps", "dispFps"}));
}

void DispThreadTest::livesWhileTheStreamIsOpen()
{
    Running running;
    QVERIFY(running.thread()->isRunning());
    running.driver().stop();
    QVERIFY(!running.thread());
    running.start();
    QVERIFY(running.thread()->isRunning());
    running.driver().close();
    QVERIFY(!running.thread());
}

// --- Which images ---------------------------------------------------------------------------------------------------

void DispThreadTest::imageIsLockedConvertedAndUnlocked()
{
    Running running;
    scripted::setImageFormat(64, 48, kBayerRG8);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
    QTRY_COMPARE(scripted::lockedBuffers(), 0);
    running.driver().stop();
    const QStringList made =
        texts(scripted::calls({"Strm_GetCurrentBufferIndex", "Strm_LockBuffer", "Strm_UnlockBuffer", "ConvImage"}));
    QCOMPARE(made.mid(0, 4),
             (QStringList{"Strm_GetCurrentBufferIndex(3001, out)", "Strm_LockBuffer(3001, 0, out)",
                          "ConvImage(0, 17301513, 1, out, ptr, 64, 48)", "Strm_UnlockBuffer(3001, 0)"}));
    QCOMPARE(running.images(), 1);
}

void DispThreadTest::imageIsEmittedAsAViewOfTheBuffer()
{
    std::atomic<const void*> converted{nullptr};
    scripted::onConvImage([&](void* dst, const void*, std::uint32_t width, std::uint32_t height) {
        std::fill_n(static_cast<std::uint32_t*>(dst), width * height, 0xFF204060U);
        converted = dst;
    });
    QImage emitted;
    Running running;
    const QObject receiver; // goes before what it writes: images may be queued still
    connect(running.thread(), &DispThread::dispImage, &receiver, [&](const QImage& image) {
        emitted = image.copy();
        QCOMPARE(static_cast<const void*>(image.constBits()), converted.load());
    });
    QVERIFY(scripted::deliverImage(1));
    QTRY_VERIFY(!emitted.isNull());
    QCOMPARE(emitted.format(), QImage::Format_ARGB32);
    QCOMPARE(emitted.size(), QSize(64, 48));
    QCOMPARE(emitted.pixel(63, 47), 0xFF204060U);
}

void DispThreadTest::nothingIsAskedBeforeTheFirstImage()
{
    Running running;
    QVERIFY(waitRounds(kRoundsOfAFewPeriods));
    QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), 0);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
}

void DispThreadTest::failedIndexQueryIsSkipped()
{
    Running running;
    scripted::failAlways("Strm_GetCurrentBufferIndex", Orvo::CAM_API_STS_NOT_READY);
    QVERIFY(scripted::deliverImage(1));
    QTRY_VERIFY(scripted::count("Strm_GetCurrentBufferIndex") >= 2);
    QCOMPARE(scripted::count("Strm_LockBuffer"), 0);
    QCOMPARE(scripted::count("Strm_UnlockBuffer"), 0);
    QCOMPARE(running.driver().log(), QStringList());
    scripted::heal("Strm_GetCurrentBufferIndex");
    QTRY_COMPARE(conversions(), 1);
}

void DispThreadTest::failedLockIsUnlockedAllTheSame()
{
    Running running;
    scripted::failAlways("Strm_LockBuffer", Orvo::CAM_API_STS_BUSY);
    QVERIFY(scripted::deliverImage(1));
    QTRY_VERIFY(scripted::count("Strm_UnlockBuffer") >= 2);
    QCOMPARE(conversions(), 0);
    QCOMPARE(running.driver().log(), QStringList());
    scripted::heal("Strm_LockBuffer");
    QTRY_COMPARE(conversions(), 1);
    running.driver().stop();
    QCOMPARE(scripted::count("Strm_UnlockBuffer"), scripted::count("Strm_LockBuffer"));
}

void DispThreadTest::incompleteImageIsSkippedAndUnlocked()
{
    Running running;
    QVERIFY(scripted::deliverImage(1, 0, Orvo::CAM_API_STS_MISSING_PACKETS));
    QTRY_VERIFY(scripted::count("Strm_LockBuffer") >= 2);
    QCOMPARE(conversions(), 0);
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(conversions(), 1);
    running.driver().stop();
    QCOMPARE(scripted::lockedBuffers(), 0);
    QCOMPARE(scripted::count("Strm_UnlockBuffer"), scripted::count("Strm_LockBuffer"));
    QCOMPARE(running.driver().log(), QStringList());
}

void DispThreadTest::sameFrameNumberIsNotConvertedAgain()
{
    Running running;
    QVERIFY(scripted::deliverImage(7));
    QTRY_COMPARE(conversions(), 1);
    const int locks = scripted::count("Strm_LockBuffer");
    QTRY_VERIFY(scripted::count("Strm_LockBuffer") >= locks + 3);
    QVERIFY(scripted::deliverImage(7)); // in another slot
    QTRY_VERIFY(scripted::count("Strm_LockBuffer") >= locks + 6);
    QCOMPARE(conversions(), 1);
    QCOMPARE(running.images(), 1);
    QVERIFY(scripted::deliverImage(6)); // any other number will do
    QTRY_COMPARE(conversions(), 2);
    running.driver().stop();
    QCOMPARE(scripted::lockedBuffers(), 0);
}

void DispThreadTest::wholeFrameNumberIsCompared()
{
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
    QVERIFY(scripted::deliverImage(0x100000001));
    QTRY_COMPARE(conversions(), 2);
}

void DispThreadTest::firstImageNumbered21845IsNotShown()
{
    Running running;
    QVERIFY(scripted::deliverImage(0x5555));
    QTRY_VERIFY(scripted::count("Strm_UnlockBuffer") >= 2);
    QCOMPARE(conversions(), 0);
    QVERIFY(scripted::deliverImage(0x5556));
    QTRY_COMPARE(conversions(), 1);
    QVERIFY(scripted::deliverImage(0x5555));
    QTRY_COMPARE(conversions(), 2);
}

void DispThreadTest::failedConversionIsShownAllTheSame()
{
    Running running;
    scripted::failAlways("ConvImage", Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(running.images(), 1);
    QVERIFY(waitRounds(kRoundsOfAFewPeriods));
    QCOMPARE(conversions(), 1);
    QCOMPARE(running.driver().log(), QStringList());
}

// --- Pace and hand-over ---------------------------------------------------------------------------------------------

void DispThreadTest::atMostOneConversionIn26Milliseconds()
{
    constexpr int enough = 30;
    constexpr qint64 delayOfTheFirstMs = 100; // by which a busy machine may shorten the whole
    std::atomic<qint64> firstAtMs{-1};
    std::atomic<qint64> lastAtMs{0};
    std::atomic<int> made{0};
    QElapsedTimer clock;
    clock.start();
    Running running;
    scripted::onCall("ConvImage", [&] {
        if (made == enough)
            return;
        if (firstAtMs < 0)
            firstAtMs = clock.elapsed();
        lastAtMs = clock.elapsed();
        ++made;
    });
    {
        const Feeder feeder(3);
        QTRY_VERIFY_WITH_TIMEOUT(made == enough, kPatienceMs);
    }
    const qint64 span = lastAtMs - firstAtMs;
    QVERIFY2(span >= (enough - 1) * 26 - delayOfTheFirstMs, qPrintable(QString::number(span)));
}

void DispThreadTest::lentImageBlocksTheNext()
{
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([] { return conversions() == 1; }));
    const int asked = scripted::count("Strm_GetCurrentBufferIndex");
    QVERIFY(scripted::deliverImage(2));
    QVERIFY(waitRoundsBlocked(kRoundsOfAFewPeriods));
    QCOMPARE(conversions(), 1);
    QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), asked);
    QVERIFY(scripted::deliverImage(3));

    // The newest one comes when the GUI has handled the first.
    QTRY_COMPARE(conversions(), 2);
    QCOMPARE(texts(scripted::calls({"Strm_LockBuffer"})).at(1), QString("Strm_LockBuffer(3001, 2, out)"));
    QTRY_COMPARE(running.images(), 2);
}

void DispThreadTest::ratesGoOnWhileAnImageIsLent()
{
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([] { return conversions() == 1; }));
    QVERIFY(waitBlocked([&] { return running.rates().size() == 2; }));
    QCOMPARE(conversions(), 1);
    QCOMPARE(running.rates().at(1).display, 0.0);
}

void DispThreadTest::shownImagesAreWhole()
{
    constexpr int enough = 40;
    scripted::setImageFormat(640, 480, kBayerRG8);
    std::atomic<std::uint32_t> converted{0};
    scripted::onConvImage([&](void* dst, const void*, std::uint32_t width, std::uint32_t height) {
        std::fill_n(static_cast<std::uint32_t*>(dst), std::size_t{width} * height, 0xFF000000U | ++converted);
    });
    int whole = 0;
    int torn = 0;
    Running running;
    connect(&running.driver().window(), &MainWindow::Update_Image, this, [&](const QImage& image) {
        QImage expected(image.size(), image.format());
        expected.fill(image.pixel(0, 0));
        ++(image == expected ? whole : torn);
    });
    const Feeder feeder(3);
    QElapsedTimer timer;
    timer.start();
    // A GUI thread that never sleeps is not woken by anything either: the hand-over alone orders the two threads.
    while (whole + torn < enough && timer.elapsed() < kPatienceMs)
        QCoreApplication::processEvents();
    QCOMPARE(torn, 0);
    QCOMPARE(whole, enough);
}

void DispThreadTest::windowHandsOnTheImageThatItKeeps()
{
    QVector<const void*> memories;
    Running running;
    connect(&running.driver().window(), &MainWindow::Update_Image, this, [&](const QImage& image) {
        QCOMPARE(image.format(), QImage::Format_ARGB32); // as the display thread gave it
        memories << image.constBits();
    });
    for (int frame = 1; frame <= 6; ++frame) {
        QVERIFY(scripted::deliverImage(std::uint64_t(frame)));
        QTRY_COMPARE(memories.size(), frame);
    }
    QVERIFY(memories[0] != memories[1]);
    for (int i = 2; i < memories.size(); ++i)
        QVERIFY2(memories[i] == memories[i - 2],
                 "one is on screen while the other is written to, and no third is needed");
    // The same image again, not a copy of it.
    running.driver().trigger("actionZoomIn");
    QCOMPARE(memories.size(), 7);
    QCOMPARE(memories[6], memories[5]);
}

void DispThreadTest::staleImageAfterRestartIsHarmless_data()
{
    QTest::addColumn<uint>("width");
    QTest::addColumn<uint>("height");
    QTest::newRow("same size") << 64U << 48U;
    QTest::newRow("smaller") << 16U << 16U;
    QTest::newRow("larger") << 640U << 480U;
}

void DispThreadTest::staleImageAfterRestartIsHarmless()
{
    QFETCH(uint, width);
    QFETCH(uint, height);
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return running.images() == 1; }));
    running.driver().stop();
    scripted::setImageFormat(width, height, kBayerRG8);
    running.start();
    QVERIFY(scripted::deliverImage(1)); // the thread is a new one and knows no number
    QVERIFY(waitBlocked([&] { return running.images() == 2; }));

    // Both wait in the queue now: handling the stale one must not end the loan of the other too early, nor the other's
    // loan be forgotten.
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(running.images(), 3);
    QVERIFY(scripted::deliverImage(3));
    QTRY_COMPARE(running.images(), 4);
}

void DispThreadTest::staleImageAfterExitIsHarmless()
{
    auto running = std::make_unique<Running>();
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return running->images() == 1; }));
    running->driver().exit();
    QCoreApplication::processEvents();
    running.reset();
    QCOMPARE(scripted::lockedBuffers(), 0);
}

void DispThreadTest::imageHandledAfterStopFreesNothingOfTheNextStart()
{
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return running.images() == 1; }));
    running.driver().stop();
    QCoreApplication::processEvents();
    running.start();
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(running.images(), 2);
}

// --- Rates ----------------------------------------------------------------------------------------------------------

void DispThreadTest::pausedTakesNoImagesButReportsRates()
{
    Running running;
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

void DispThreadTest::fastCameraShowsFewerImagesThanItDelivers()
{
    constexpr double highestDisplayRate = 1000.0 / 26 + 1; // one more may fall into a report
    Running running;
    int deliveredBefore = 0;
    int deliveredAfter = 0;
    {
        const Feeder feeder(10);
        QVERIFY(running.waitForReports(1));
        deliveredBefore = feeder.delivered();
        QVERIFY(running.waitForReports(2));
        deliveredAfter = feeder.delivered();
    }
    const Running::Rates rates = running.rates().at(1);
    QVERIFY2(rates.display <= highestDisplayRate, qPrintable(QString::number(rates.display)));
    QVERIFY(rates.display > 0);
    QVERIFY2(rates.capture > rates.display, qPrintable(QString::number(rates.capture)));
    // A report covers 2 seconds or a little more; the two moments were taken a little after the reports.
    QVERIFY(rates.capture * 2 <= (deliveredAfter - deliveredBefore) * 1.5);
    QVERIFY(rates.capture * 2 >= (deliveredAfter - deliveredBefore) * 0.5);
}

void DispThreadTest::stoppedCameraShowsZeroAndKeepsTheImage()
{
    constexpr int delivered = 10;
    QImage shown;
    Running running;
    connect(&running.driver().window(), &MainWindow::Update_Image, this, [&](const QImage& image) { shown = image; });
    for (std::uint64_t number = 1; number <= delivered; ++number)
        QVERIFY(scripted::deliverImage(number, 0x40));
    QVERIFY(running.waitForReports(2));

    // What was counted tells the time that the report covers, in whole milliseconds.
    const Running::Rates first = running.rates().at(0);
    const double milliseconds = delivered * 1000.0 / first.capture;
    QVERIFY(milliseconds > 2000.5);
    QVERIFY(std::abs(milliseconds - std::round(milliseconds)) < 1e-6);
    QVERIFY(first.imagesBefore > 0);
    QCOMPARE(first.display, first.imagesBefore * 1000.0 / std::round(milliseconds));

    // Both counters began anew.
    const Running::Rates second = running.rates().at(1);
    QCOMPARE(second.capture, 0.0);
    QCOMPARE(second.display, 0.0);
    QTRY_COMPARE(running.driver().rates(), QString("[Disp =   0.00 fps] , [Cap =   0.00 fps]"));
    QCOMPARE(running.images(), first.imagesBefore);
    QCOMPARE(shown.pixel(0, 0), 0xFF404040U);
}

void DispThreadTest::nothingIsReportedWhileNotAcquiring()
{
    // The thread runs already while the stream is opened; here that takes longer than a report does.
    constexpr int longerThanAReportMs = 2300;
    std::atomic<int> reports{0};
    int reportsWhileOpening = -1;
    WindowDriver driver;
    driver.open();
    scripted::onCall("Strm_OpenSimple", [&] {
        auto* const thread = driver.window().findChild<DispThread*>();
        connect(
            thread, &DispThread::dispFps, thread, [&] { ++reports; }, Qt::DirectConnection);
        QTest::qSleep(longerThanAReportMs);
        reportsWhileOpening = reports;
    });
    driver.start();
    QCOMPARE(reportsWhileOpening, 0);
    QTRY_COMPARE(reports, 1); // at once: more than two seconds have passed
}

// --- How it ends ----------------------------------------------------------------------------------------------------

void DispThreadTest::removalEndsTheThread()
{
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
    QSignalSpy removed(running.thread(), &DispThread::removedCamera);
    scripted::unplug();
    QVERIFY2(running.thread()->wait(kPatienceMs), "ends by itself, before the GUI hears of it");
    const int polled = scripted::count("Sys_WaitForSignal");
    QTRY_COMPARE(running.driver().log(), QStringList("A camera has been Removed."));
    QCOMPARE(scripted::count("Sys_WaitForSignal"), polled);
    QVERIFY(!running.thread());
    QVERIFY(running.driver().enabled("actionOpen"));
}

void DispThreadTest::removalIsPolledBeforeTheStreamRuns()
{
    WindowDriver driver;
    driver.open();
    bool polled = false;
    bool finished = false;
    scripted::onCall("Strm_Start", [&] {
        polled = waitRoundsBlocked(5);
        scripted::unplug();
        finished = driver.window().findChild<DispThread*>()->wait(kPatienceMs);
    });
    driver.start();
    QVERIFY(polled);
    QVERIFY(finished);
    QTRY_VERIFY(driver.log().contains("A camera has been Removed."));
}

void DispThreadTest::withoutSignalNothingIsPolled()
{
    scripted::failAlways("Sys_CreateSignal", Orvo::CAM_API_STS_NO_MEMORY);
    Running running;
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(running.images(), 1);
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(running.images(), 2);
    QCOMPARE(scripted::count("Sys_WaitForSignal"), 0);
}

void DispThreadTest::stopEndsTheThreadAfterEveryStep_data()
{
    // The operation during which the stop is requested, and those that must not follow.
    QTest::addColumn<QStringList>("notAfter");
    QTest::newRow("Strm_GetCurrentBufferIndex")
        << QStringList{"Strm_GetCurrentBufferIndex", "Strm_LockBuffer", "ConvImage", "Sys_WaitForSignal"};
    QTest::newRow("Strm_LockBuffer") << QStringList{"Strm_LockBuffer", "Sys_WaitForSignal"};
    QTest::newRow("ConvImage") << QStringList{"ConvImage", "Strm_LockBuffer", "Sys_WaitForSignal"};
    QTest::newRow("Strm_UnlockBuffer") << QStringList{"Strm_UnlockBuffer", "ConvImage", "Sys_WaitForSignal"};
}

void DispThreadTest::stopEndsTheThreadAfterEveryStep()
{
    QFETCH(QStringList, notAfter);
    const std::string operation = QTest::currentDataTag();
    Running running;
    std::atomic<bool> entered{false};
    scripted::onCall(operation, [&] {
        // Closing requests the stop before it stops the stream.
        entered = true;
        static_cast<void>(waitBlocked([] { return scripted::count("Strm_Stop") > 0; }));
    });
    QVERIFY(scripted::deliverImage(1));
    QVERIFY(waitBlocked([&] { return entered.load(); }));
    QStringList before;
    for (const QString& name : notAfter)
        before << name + '=' + QString::number(scripted::count(name.toStdString()));
    running.driver().close();
    QStringList after;
    for (const QString& name : notAfter)
        after << name + '=' + QString::number(scripted::count(name.toStdString()));
    QCOMPARE(after, before);
    QCOMPARE(running.images(), 0);
    QCOMPARE(scripted::lockedBuffers(), 0);
    QCOMPARE(scripted::count("Strm_UnlockBuffer"), scripted::count("Strm_LockBuffer"));
}

} // namespace

QTEST_MAIN(DispThreadTest)
#include "DispThreadTest.moc"
