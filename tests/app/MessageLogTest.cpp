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
    constexpr int lines = 20000;
    constexpr int muchFewer = 500;
    constexpr int largestPortion = 1000;
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
    writeNumbers(driver, 0, lines);
    QVERIFY(waitForLine(driver, QString::number(lines - 1)));
    QVERIFY2(changes < muchFewer, qPrintable(QString::number(changes)));
    QVERIFY2(most <= largestPortion, qPrintable(QString::number(most)));
    QVERIFY2(documentOf(driver).blockCount() == lines, "the log keeps every line");
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
    constexpr int lines = 100000;
    WindowDriver driver;
    writeNumbers(driver, 0, lines);
    // A user's event has its turn whenever this timer has.
    int turns = 0;
    QTimer events;
    connect(&events, &QTimer::timeout, this, [&turns] { ++turns; });
    events.start(0);
    const int shownAtFirst = documentOf(driver).blockCount();
    QVERIFY(QTest::qWaitFor([&] { return documentOf(driver).blockCount() > shownAtFirst; }, kPatienceMs));
    QVERIFY2(documentOf(driver).blockCount() < lines, "the first turn wrote it all");
    turns = 0;
    QVERIFY(waitForLine(driver, QString::number(lines - 1)));
    QVERIFY2(turns >= 3, qPrintable(QString::number(turns)));
}

void MessageLogTest::floodKeepsItsOrder()
{
    constexpr int lines = 10000;
    WindowDriver driver;
    writeNumbers(driver, 0, lines);
    QVERIFY(waitForLine(driver, QString::number(lines - 1)));
    const QStringList log = driver.log();
    QCOMPARE(log.size(), lines);
    for (int number = 0; number < lines; ++number)
        QCOMPARE(log.at(number), QString::number(number));
}

void MessageLogTest::floodOfCallbacksIsCompleteForEveryOpening()
{
    constexpr int errors = 1000;
    WindowDriver driver;
    driver.open();
    driver.close();
    driver.open();
    driver.start();
    for (std::uint32_t status = 1; status <= errors; ++status)
        QVERIFY(scripted::deliverError(status));
    QTRY_COMPARE_WITH_TIMEOUT(driver.log().size(), 2 * errors, kPatienceMs);
    const QStringList log = driver.log();
    for (int i = 0; i < 2 * errors; ++i) {
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

constexpr int kept = 100000;

void MessageLogTest::newestLinesAreKept()
{
    WindowDriver driver;
    const auto oldest = [&] { return documentOf(driver).firstBlock().text(); };
    writeNumbers(driver, 0, kept);
    QVERIFY(waitForLine(driver, QString::number(kept - 1)));
    QCOMPARE(documentOf(driver).blockCount(), kept);
    QCOMPARE(oldest(), QString("0"));

    writeNumbers(driver, kept, kept + 50);
    QVERIFY(waitForLine(driver, QString::number(kept + 49)));
    QTRY_COMPARE_WITH_TIMEOUT(documentOf(driver).blockCount(), kept, kPatienceMs);
    QCOMPARE(oldest(), QString("50"));
    QCOMPARE(documentOf(driver).lastBlock().text(), QString::number(kept + 49));
    QVERIFY(showsItsEnd(driver));
}

void MessageLogTest::linesBeyondTheLimitAreNeverWritten()
{
    WindowDriver driver;
    const QTextDocument& log = documentOf(driver);
    int most = 0;
    connect(&log, &QTextDocument::contentsChanged, this, [&] { most = std::max(most, log.blockCount()); });
    writeNumbers(driver, 0, 2 * kept);
    QVERIFY(waitForLine(driver, QString::number(2 * kept - 1)));
    QVERIFY2(most < kept + kept / 10, qPrintable(QString::number(most)));
    QTRY_COMPARE_WITH_TIMEOUT(log.blockCount(), kept, kPatienceMs);
    QCOMPARE(log.firstBlock().text(), QString::number(kept));
}

void MessageLogTest::longLineIsTruncated()
{
    constexpr int longest = 4096;
    const QString whole(longest, 'x');
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
