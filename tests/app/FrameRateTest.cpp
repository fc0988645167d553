// Which images count as captured, and which frame rates are shown.

#include "display/DispThread.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/ShownImages.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <functional>

namespace {

/// A window with an open camera, and the first report after the last start.
class Running {
public:
    Running() { m_driver.open(); }

    [[nodiscard]] WindowDriver& driver() { return m_driver; }

    void start()
    {
        m_driver.start();
        m_capturedPerShown.clear();
        QObject::connect(m_driver.window().findChild<DispThread*>(), &DispThread::dispFps, &m_driver.window(),
                         [this](double capFps, double dispFps) { m_capturedPerShown << capFps / dispFps; });
    }

    /// Delivers an image and waits until the window shows it.
    void show(std::uint64_t frameNumber)
    {
        const int before = m_shown.count();
        QVERIFY(scripted::deliverImage(frameNumber));
        QTRY_COMPARE_WITH_TIMEOUT(m_shown.count(), before + 1, kPatienceMs);
        m_interrupted = !m_capturedPerShown.isEmpty();
    }

    /// Whether a report arrived before the last image was shown, which splits the images between two reports.
    [[nodiscard]] bool interrupted() const { return m_interrupted; }

    /// Captured images per shown image in the first report after the start.
    [[nodiscard]] double capturedPerShown()
    {
        static_cast<void>(QTest::qWaitFor([this] { return !m_capturedPerShown.isEmpty(); }, kPatienceMs));
        return m_capturedPerShown.value(0);
    }

private:
    QVector<double> m_capturedPerShown;
    bool m_interrupted = false;
    WindowDriver m_driver; // emits reports until it is destroyed
    ShownImages m_shown{m_driver.window()};
};

struct Report {
    double capturedPerShown = 0;
    QString text; ///< as the window shows it
};

/// The first report after the last start in `scene`; repeats the scene when a report interrupts it on a busy machine.
Report reportOf(const std::function<void(Running&)>& scene)
{
    constexpr int kAttempts = 20;
    for (int attempt = 0; attempt < kAttempts && !QTest::currentTestFailed(); ++attempt) {
        scripted::reset();
        Running running;
        scene(running);
        if (!running.interrupted())
            return {running.capturedPerShown(), running.driver().rates()};
    }
    return {};
}

class FrameRateTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void firstReportIsNotShown();
    void firstReportOfEveryStartIsNotShown();
    void areShownOnlyWhileAcquiring();

    void lostImagesCountAsCaptured();
    void frameNumbersWrap();
    void imageOfALostCameraDoesNotCount();
    void laterStreamCountsFromTheLastNumber();
    void openingCountsFromZero();
    void countRestartsWithTheStream();
    void countRestartsWithTheCamera();
};

// --- Shown ----------------------------------------------------------------------------------------------------------

void FrameRateTest::firstReportIsNotShown()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    const auto report = [&](double capFps, double dispFps) {
        QVERIFY(QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, capFps), Q_ARG(double, dispFps)));
    };
    report(4000000000.0, 12.0);
    QCOMPARE(driver.rates(), WindowDriver::noRates());
    report(60.004, 36.996);
    QCOMPARE(driver.rates(), QString("[Disp =  37.00 fps] , [Cap =  60.00 fps]"));
    report(0, 0);
    QCOMPARE(driver.rates(), QString("[Disp =   0.00 fps] , [Cap =   0.00 fps]"));
    report(1234.5, 100);
    QCOMPARE(driver.rates(), QString("[Disp = 100.00 fps] , [Cap = 1234.50 fps]"));
}

void FrameRateTest::firstReportOfEveryStartIsNotShown()
{
    WindowDriver driver;
    driver.open();
    for (int round = 0; round < 2; ++round) {
        driver.start();
        const QString before = driver.rates();
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 1.0), Q_ARG(double, 1.0));
        QCOMPARE(driver.rates(), before);
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 2.0 + round), Q_ARG(double, 1.0));
        QVERIFY(driver.rates() != before);
        driver.stop();
    }
}

void FrameRateTest::areShownOnlyWhileAcquiring()
{
    WindowDriver driver;
    driver.open();
    for (int report = 0; report < 3; ++report)
        QMetaObject::invokeMethod(&driver.window(), "disp_fps", Q_ARG(double, 60.0), Q_ARG(double, 30.0));
    QCOMPARE(driver.rates(), WindowDriver::noRates());
}

// --- Counted --------------------------------------------------------------------------------------------------------

void FrameRateTest::lostImagesCountAsCaptured()
{
    const Report report = reportOf([](Running& running) {
        running.start();
        running.show(10); // the first image counts as 1, regardless of its number
        running.show(11);
        running.show(111); // 99 images lost in between
    });
    QCOMPARE(report.capturedPerShown, 102 / 3.0);
}

void FrameRateTest::frameNumbersWrap()
{
    const Report report = reportOf([](Running& running) {
        running.start();
        running.show(0xFFFFFFFF);
        running.show(0x100000001);
    });
    QCOMPARE(report.capturedPerShown, 3 / 2.0);
}

void FrameRateTest::imageOfALostCameraDoesNotCount()
{
    constexpr int kRounds = 15; // of at least 2 ms each, so longer than the frame period of 26 ms
    const Report report = reportOf([](Running& running) {
        running.start();
        scripted::failAlways("GetCamIndexFromCamHandle", Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING);
        QVERIFY(scripted::deliverImage(500));
        QVERIFY(recorded::waitRounds(kRounds));
        QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), 0); // no image has been taken yet
        scripted::heal("GetCamIndexFromCamHandle");
        running.show(510);
    });
    QCOMPARE(report.capturedPerShown, 1.0);
}

void FrameRateTest::laterStreamCountsFromTheLastNumber()
{
    const Report report = reportOf([](Running& running) {
        running.start();
        running.show(100);
        running.driver().stop();
        running.start();
        running.show(1);
    });
    QCOMPARE(report.capturedPerShown, 4294967296.0 - 99);
    QCOMPARE(report.text, WindowDriver::noRates()); // the window never shows it
}

void FrameRateTest::openingCountsFromZero()
{
    const Report report = reportOf([](Running& running) {
        running.start();
        running.show(100);
        running.driver().close();
        running.driver().open();
        running.start();
        running.show(7);
    });
    QCOMPARE(report.capturedPerShown, 7.0);
}

void FrameRateTest::countRestartsWithTheStream()
{
    const Report report = reportOf([](Running& running) {
        running.start();
        running.show(1);
        running.show(50);
        running.driver().stop();
        running.start();
        running.show(51);
    });
    QCOMPARE(report.capturedPerShown, 1.0);
}

void FrameRateTest::countRestartsWithTheCamera()
{
    const Report report = reportOf([](Running& running) {
        running.start();
        running.show(1);
        running.driver().stop();
        // An image that arrives after the stream was closed.
        scripted::onCall("Cam_Close", [] {
            scripted::onCall("Cam_Close", nullptr);
            scripted::lateImage(1000);
        });
        running.driver().close();
        QCOMPARE(scripted::count("GetCamIndexFromCamHandle"), 2);
        running.driver().open();
        running.start();
        running.show(1);
    });
    QCOMPARE(report.capturedPerShown, 1.0);
}

} // namespace

ORVO_TEST_CLASS(FrameRateTest)
#include "FrameRateTest.moc"
