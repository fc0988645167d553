// The message log: what it keeps, and how it takes a flood of lines.

#include "tests/support/Patience.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>

#include <algorithm>

namespace {

class MessageLogTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void singleLinesAreWrittenImmediately();
    void floodIsWrittenInBatches();
    void batchesHaveFewerLinesWhenTheyAreLong();
    void windowAnswersDuringAFlood();
    void floodKeepsItsOrder();
    void floodOfCallbacksIsCompleteForEveryOpening();
    void logScrollsToTheLastLineOfAFlood();
    void clearDiscardsPendingLines();
    void newestLinesAreKept();
    void linesBeyondTheLimitAreNeverWritten();
    void longLineIsTruncated();
    void markupOfAFloodIsShownVerbatim();
};

void write(WindowDriver& driver, const QString& line)
{
    QVERIFY(QMetaObject::invokeMethod(&driver.window(), "write_log", Q_ARG(QString, line)));
}

/// Writes the numbers of a range, one per line.
void writeNumbers(WindowDriver& driver, int begin, int end)
{
    for (int number = begin; number < end; ++number)
        write(driver, QString::number(number));
}

QTextDocument& documentOf(const WindowDriver& driver)
{
    return *driver.child<QTextEdit>("messageLogEdit")->document();
}

/// Waits until the newest line is `line`.
bool waitForLine(const WindowDriver& driver, const QString& line)
{
    return QTest::qWaitFor([&] { return documentOf(driver).lastBlock().text() == line; }, kPatienceMs);
}

bool showsItsEnd(const WindowDriver& driver)
{
    const auto* const edit = driver.child<QTextEdit>("messageLogEdit");
    return edit->textCursor().atEnd() && edit->viewport()->rect().contains(edit->cursorRect());
}

void MessageLogTest::singleLinesAreWrittenImmediately()
{
    WindowDriver driver;
    for (int i = 0; i < 3; ++i) {
        writeNumbers(driver, 10 * i, 10 * i + 10);
        QCOMPARE(driver.log().size(), 10 * i + 10);
    }
    // The same after a flood.
    writeNumbers(driver, 30, 10000);
    QVERIFY(waitForLine(driver, "9999"));
    QVERIFY(QTest::qWaitFor(
        [&] {
            write(driver, "single");
            return documentOf(driver).lastBlock().text() == "single";
        },
        kPatienceMs));
}

void MessageLogTest::floodIsWrittenInBatches()
{
    constexpr int kLines = 20000;
    constexpr int kMuchFewer = 500;
    constexpr int kLargestPortion = 1000;
    WindowDriver driver;
    const QTextDocument& log = documentOf(driver);
    int changes = 0;
    int before = 0;
    int most = 0;
    connect(&log, &QTextDocument::contentsChanged, this, [&] {
        ++changes;
        most = std::max(most, log.blockCount() - before);
        before = log.blockCount();
    });
    writeNumbers(driver, 0, kLines);
    QVERIFY(waitForLine(driver, QString::number(kLines - 1)));
    QVERIFY2(changes < kMuchFewer, qPrintable(QString::number(changes)));
    QVERIFY2(most <= kLargestPortion, qPrintable(QString::number(most)));
    QVERIFY2(documentOf(driver).blockCount() == kLines, "the log keeps every line");
}

void MessageLogTest::batchesHaveFewerLinesWhenTheyAreLong()
{
    WindowDriver driver;
    const QTextDocument& log = documentOf(driver);
    int lines = 0;
    int most = 0;
    connect(&log, &QTextDocument::contentsChanged, this, [&] {
        most = std::max(most, log.blockCount() - lines);
        lines = log.blockCount();
    });
    for (int i = 0; i < 200; ++i)
        write(driver, QString("word ").repeated(800));
    write(driver, "end");
    QVERIFY(waitForLine(driver, "end"));
    QVERIFY2(most < 10, qPrintable(QString::number(most)));
}

void MessageLogTest::windowAnswersDuringAFlood()
{
    constexpr int kLines = 100000;
    WindowDriver driver;
    writeNumbers(driver, 0, kLines);
    // A user's event has its turn whenever this timer has.
    int turns = 0;
    QTimer events;
    connect(&events, &QTimer::timeout, this, [&turns] { ++turns; });
    events.start(0);
    const int shownAtFirst = documentOf(driver).blockCount();
    QVERIFY(QTest::qWaitFor([&] { return documentOf(driver).blockCount() > shownAtFirst; }, kPatienceMs));
    QVERIFY2(documentOf(driver).blockCount() < kLines, "the first turn wrote it all");
    turns = 0;
    QVERIFY(waitForLine(driver, QString::number(kLines - 1)));
    QVERIFY2(turns >= 3, qPrintable(QString::number(turns)));
}

void MessageLogTest::floodKeepsItsOrder()
{
    constexpr int kLines = 10000;
    WindowDriver driver;
    writeNumbers(driver, 0, kLines);
    QVERIFY(waitForLine(driver, QString::number(kLines - 1)));
    const QStringList log = driver.log();
    QCOMPARE(log.size(), kLines);
    for (int number = 0; number < kLines; ++number)
        QCOMPARE(log.at(number), QString::number(number));
}

void MessageLogTest::floodOfCallbacksIsCompleteForEveryOpening()
{
    constexpr int kErrors = 1000;
    WindowDriver driver;
    driver.open();
    driver.close();
    driver.open();
    driver.start();
    for (std::uint32_t status = 1; status <= kErrors; ++status)
        QVERIFY(scripted::deliverError(status));
    QTRY_COMPARE_WITH_TIMEOUT(driver.log().size(), 2 * kErrors, kPatienceMs);
    const QStringList log = driver.log();
    for (int i = 0; i < 2 * kErrors; ++i) {
        const QString status = QString::number(i / 2 + 1, 16).toUpper();
        QCOMPARE(log.at(i), QString("CallBackErrorImage. (status = 0x%1)").arg(status));
    }
}

void MessageLogTest::logScrollsToTheLastLineOfAFlood()
{
    WindowDriver driver;
    writeNumbers(driver, 0, 5000);
    QVERIFY(waitForLine(driver, "4999"));
    QVERIFY(showsItsEnd(driver));
}

void MessageLogTest::clearDiscardsPendingLines()
{
    WindowDriver driver;
    writeNumbers(driver, 0, 10000);
    QVERIFY2(documentOf(driver).blockCount() < 10000, "some lines are pending");
    driver.child<QPushButton>("pushButtonClear")->click();
    write(driver, "next");
    QVERIFY(waitForLine(driver, "next"));
    QCOMPARE(driver.log(), QStringList{"next"});
}

constexpr int kKept = 100000;

void MessageLogTest::newestLinesAreKept()
{
    WindowDriver driver;
    const auto oldest = [&] { return documentOf(driver).firstBlock().text(); };
    writeNumbers(driver, 0, kKept);
    QVERIFY(waitForLine(driver, QString::number(kKept - 1)));
    QCOMPARE(documentOf(driver).blockCount(), kKept);
    QCOMPARE(oldest(), QString("0"));

    writeNumbers(driver, kKept, kKept + 50);
    QVERIFY(waitForLine(driver, QString::number(kKept + 49)));
    QTRY_COMPARE_WITH_TIMEOUT(documentOf(driver).blockCount(), kKept, kPatienceMs);
    QCOMPARE(oldest(), QString("50"));
    QCOMPARE(documentOf(driver).lastBlock().text(), QString::number(kKept + 49));
    QVERIFY(showsItsEnd(driver));
}

void MessageLogTest::linesBeyondTheLimitAreNeverWritten()
{
    WindowDriver driver;
    const QTextDocument& log = documentOf(driver);
    int most = 0;
    connect(&log, &QTextDocument::contentsChanged, this, [&] { most = std::max(most, log.blockCount()); });
    writeNumbers(driver, 0, 2 * kKept);
    QVERIFY(waitForLine(driver, QString::number(2 * kKept - 1)));
    QVERIFY2(most < kKept + kKept / 10, qPrintable(QString::number(most)));
    QTRY_COMPARE_WITH_TIMEOUT(log.blockCount(), kKept, kPatienceMs);
    QCOMPARE(log.firstBlock().text(), QString::number(kKept));
}

void MessageLogTest::longLineIsTruncated()
{
    constexpr int kLongest = 4096;
    const QString whole(kLongest, 'x');
    WindowDriver driver;
    write(driver, whole);
    write(driver, whole + 'y');
    write(driver, QString(1000000, 'x'));
    const QString cut = whole + QChar(0x2026);
    QCOMPARE(driver.log(), (QStringList{whole, cut, cut}));
}

void MessageLogTest::markupOfAFloodIsShownVerbatim()
{
    const QString markup = "<b>bold</b> &amp; %1 <img src='x'>";
    WindowDriver driver;
    for (int i = 0; i < 1000; ++i)
        write(driver, markup);
    write(driver, "end");
    QVERIFY(waitForLine(driver, "end"));
    QCOMPARE(driver.log().count(markup), 1000);
}

} // namespace

ORVO_TEST_CLASS(MessageLogTest)
#include "MessageLogTest.moc"
