// The display thread in the real main window: which images it takes, and how it terminates.

#include "tests/display/RunningStream.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <algorithm>
#include <atomic>

namespace {

class DispThreadTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void signalsAreKnownByName();
    void livesWhileTheStreamIsOpen();

    void imageIsLockedConvertedAndUnlocked();
    void imageIsEmittedAsAViewOfTheBuffer();
    void bufferIndexIsNotQueriedBeforeTheFirstImage();
    void failedIndexQueryIsSkipped();
    void failedLockIsStillUnlocked();
    void incompleteImageIsSkippedAndUnlocked();
    void sameFrameNumberIsNotConvertedAgain();
    void all64BitsOfTheFrameNumberAreCompared();
    void firstImageNumbered21845IsNotShown();
    void failedConversionIsStillShown();

    void removalIsPolledWithoutWaiting();
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
    RunningStream running;
    QVERIFY(running.thread()->isRunning());
    running.driver().stop();
    QVERIFY(!running.thread());
    running.start();
    QVERIFY(running.thread()->isRunning());
    running.driver().close();
    QVERIFY(!running.thread());
}

// --- Images ---------------------------------------------------------------------------------------------------------

void DispThreadTest::imageIsLockedConvertedAndUnlocked()
{
    RunningStream running;
    scripted::setImageFormat(64, 48, scripted::kBayerRG8);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
    QTRY_COMPARE(scripted::lockedBuffers(), 0);
    running.driver().stop();
    const QStringList made =
        recorded::texts({"Strm_GetCurrentBufferIndex", "Strm_LockBuffer", "Strm_UnlockBuffer", "ConvImage"});
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
    RunningStream running;
    const QObject receiver; // destroyed before the variables it writes to: images may still be queued
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

void DispThreadTest::bufferIndexIsNotQueriedBeforeTheFirstImage()
{
    RunningStream running;
    QVERIFY(recorded::waitRounds());
    QCOMPARE(scripted::count("Strm_GetCurrentBufferIndex"), 0);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
}

void DispThreadTest::failedIndexQueryIsSkipped()
{
    RunningStream running;
    scripted::failAlways("Strm_GetCurrentBufferIndex", Orvo::CAM_API_STS_NOT_READY);
    QVERIFY(scripted::deliverImage(1));
    QTRY_VERIFY(scripted::count("Strm_GetCurrentBufferIndex") >= 2);
    QCOMPARE(scripted::count("Strm_LockBuffer"), 0);
    QCOMPARE(scripted::count("Strm_UnlockBuffer"), 0);
    QCOMPARE(running.driver().log(), QStringList());
    scripted::heal("Strm_GetCurrentBufferIndex");
    QTRY_COMPARE(conversions(), 1);
}

void DispThreadTest::failedLockIsStillUnlocked()
{
    RunningStream running;
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
    RunningStream running;
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
    RunningStream running;
    QVERIFY(scripted::deliverImage(7));
    QTRY_COMPARE(conversions(), 1);
    const int locks = scripted::count("Strm_LockBuffer");
    QTRY_VERIFY(scripted::count("Strm_LockBuffer") >= locks + 3);
    QVERIFY(scripted::deliverImage(7)); // in another buffer
    QTRY_VERIFY(scripted::count("Strm_LockBuffer") >= locks + 6);
    QCOMPARE(conversions(), 1);
    QCOMPARE(running.images(), 1);
    QVERIFY(scripted::deliverImage(6)); // any other number counts as new
    QTRY_COMPARE(conversions(), 2);
    running.driver().stop();
    QCOMPARE(scripted::lockedBuffers(), 0);
}

void DispThreadTest::all64BitsOfTheFrameNumberAreCompared()
{
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
    QVERIFY(scripted::deliverImage(0x100000001));
    QTRY_COMPARE(conversions(), 2);
}

void DispThreadTest::firstImageNumbered21845IsNotShown()
{
    RunningStream running;
    QVERIFY(scripted::deliverImage(0x5555));
    QTRY_VERIFY(scripted::count("Strm_UnlockBuffer") >= 2);
    QCOMPARE(conversions(), 0);
    QVERIFY(scripted::deliverImage(0x5556));
    QTRY_COMPARE(conversions(), 1);
    QVERIFY(scripted::deliverImage(0x5555));
    QTRY_COMPARE(conversions(), 2);
}

void DispThreadTest::failedConversionIsStillShown()
{
    RunningStream running;
    scripted::failAlways("ConvImage", Orvo::CAM_API_STS_NOT_IMPLEMENTED);
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(running.images(), 1);
    QVERIFY(recorded::waitRounds());
    QCOMPARE(conversions(), 1);
    QCOMPARE(running.driver().log(), QStringList());
}

// --- Termination ----------------------------------------------------------------------------------------------------

void DispThreadTest::removalIsPolledWithoutWaiting()
{
    // Each opening creates a new signal.
    for (const char* asked : {"Sys_WaitForSignal(1001, 0)", "Sys_WaitForSignal(1002, 0)"}) {
        scripted::clearCalls();
        RunningStream running;
        QVERIFY(recorded::waitRounds(5));
        for (const QString& text : recorded::texts({"Sys_WaitForSignal"}))
            QCOMPARE(text, QString(asked));
    }
}

void DispThreadTest::removalEndsTheThread()
{
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(conversions(), 1);
    QSignalSpy removed(running.thread(), &DispThread::removedCamera);
    scripted::unplug();
    QVERIFY2(running.thread()->wait(kPatienceMs),
             "the thread terminates on its own, before the GUI handles the removal");
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
    RunningStream running;
    QVERIFY(scripted::deliverImage(1));
    QTRY_COMPARE(running.images(), 1);
    QVERIFY(scripted::deliverImage(2));
    QTRY_COMPARE(running.images(), 2);
    QCOMPARE(scripted::count("Sys_WaitForSignal"), 0);
}

void DispThreadTest::stopEndsTheThreadAfterEveryStep_data()
{
    // The stop is requested during the first operation; none of those listed may follow.
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
    RunningStream running;
    std::atomic<bool> entered{false};
    scripted::onCall(operation, [&] {
        // Stopping requests the end of the thread before it stops the stream.
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

ORVO_TEST_CLASS(DispThreadTest)
#include "DispThreadTest.moc"
