// The operation log in the file that ORVO_OPERATION_LOG names.

#include "features/view/FeatureView.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QByteArray kPreamble = "Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;\n"
                             "Orvo::CAM_HANDLE hCam = NULL;\n"
                             "status = Orvo::Cam_Open( camIndex, &hCam, .... );\n"
                             "Orvo::CAM_NODE_HANDLE hNode = NULL;\n";

class OperationLogFileTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { qunsetenv("ORVO_OPERATION_LOG"); }

    void sessionIsWrittenAsItIsEmitted();
    void entriesAreWrittenUnchanged();
    void existingFileIsAppendedTo();
    void everyCameraStartsWithThePreamble();
    void nothingIsWrittenWithoutAName_data();
    void nothingIsWrittenWithoutAName();
    void nothingOnScreenChanges();
    void openFailureIsLoggedOnce();
    void writeFailureIsLoggedOnce();
    void closedPipeIsLoggedOnce();
    void pipeWithoutReaderIsLoggedOnce();
    void stalledReaderIsLoggedOnce();

private:
    void name(const QString& file) { qputenv("ORVO_OPERATION_LOG", QFile::encodeName(file)); }
    /// Makes the file a named pipe.
    [[nodiscard]] bool makePipe() const { return mkfifo(QFile::encodeName(m_file).constData(), 0600) == 0; }
    [[nodiscard]] int openReader() const
    {
        return ::open(QFile::encodeName(m_file).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
    [[nodiscard]] QByteArray written() const
    {
        QFile file(m_file);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

void OperationLogFileTest::init()
{
    scripted::reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_file = m_folder->filePath("operations");
}

/// Makes the feature browser emit an entry.
void emitEntry(WindowDriver& driver, QString entry)
{
    emit driver.window().findChild<FeatureView*>()->OpeLogAppended(entry);
}

void OperationLogFileTest::sessionIsWrittenAsItIsEmitted()
{
    name(m_file);
    WindowDriver driver;
    QCOMPARE(written(), QByteArray());
    driver.open();
    QCOMPARE(written(), kPreamble);
    QByteArray emitted;
    connect(driver.window().findChild<FeatureView*>(), &FeatureView::OpeLogAppended, this, [&](const QString& entry) {
        emitted += entry.toUtf8();
        QCOMPARE(written(), kPreamble + emitted); // without delay
    });
    FeatureHand(driver.window()).type("Width", "32");
    QVERIFY2(emitted.startsWith("status = Orvo::Nd_GetNode(hCam, \"Width\", &hNode);\n"
                                "status = Orvo::Nd_SetIntValue(hcam, hNode, 32);\n"),
             emitted.constData());
}

void OperationLogFileTest::entriesAreWrittenUnchanged()
{
    const QString entry = QString::fromUtf8("%1 <b>\xC3\xA9\xE2\x80\xA6</b>\n\n no end");
    name(m_file);
    WindowDriver driver;
    driver.open();
    emitEntry(driver, entry);
    emitEntry(driver, "next");
    QCOMPARE(written(), kPreamble + entry.toUtf8() + "next");
}

void OperationLogFileTest::existingFileIsAppendedTo()
{
    {
        QFile file(m_file);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("// from before\n");
    }
    name(m_file);
    WindowDriver driver;
    driver.open();
    QCOMPARE(written(), "// from before\n" + kPreamble);
}

void OperationLogFileTest::everyCameraStartsWithThePreamble()
{
    name(m_file);
    WindowDriver driver;
    driver.open();
    driver.close();
    driver.open();
    QCOMPARE(written(), kPreamble + kPreamble);
}

void OperationLogFileTest::nothingIsWrittenWithoutAName_data()
{
    QTest::addColumn<bool>("set");
    QTest::newRow("unset") << false;
    QTest::newRow("empty") << true;
}

void OperationLogFileTest::nothingIsWrittenWithoutAName()
{
    QFETCH(const bool, set);
    if (set)
        name(QString());
    WindowDriver driver;
    driver.open();
    emitEntry(driver, "entry");
    QCOMPARE(driver.log(), QStringList());
}

void OperationLogFileTest::nothingOnScreenChanges()
{
    const auto picture = [](const QString& file) {
        if (!file.isEmpty())
            qputenv("ORVO_OPERATION_LOG", QFile::encodeName(file));
        scripted::reset();
        WindowDriver driver;
        driver.open();
        emitEntry(driver, "entry");
        return driver.window().grab().toImage();
    };
    const QImage without = picture(QString());
    const QImage with = picture(m_file);
    QVERIFY(written().endsWith("entry"));
    QCOMPARE(with, without);
}

void OperationLogFileTest::openFailureIsLoggedOnce()
{
    const QString missing = m_folder->filePath("missing/operations");
    name(missing);
    WindowDriver driver;
    driver.open();
    emitEntry(driver, "entry");
    QCOMPARE(driver.log(), QStringList{"ERROR: Operation log " + missing +
                                       ": No such file or directory [CAM_API_STS_FILE_OPEN_ERROR]"});
    QVERIFY(driver.enabled("actionStart"));
}

void OperationLogFileTest::writeFailureIsLoggedOnce()
{
    name("/dev/full");
    WindowDriver driver;
    QCOMPARE(driver.log(), QStringList());
    driver.open();
    emitEntry(driver, "entry");
    QCOMPARE(driver.log(),
             QStringList{"ERROR: Operation log /dev/full: No space left on device [CAM_API_STS_FILE_WRITE_ERROR]"});
    QVERIFY(driver.enabled("actionStart"));
}

void OperationLogFileTest::closedPipeIsLoggedOnce()
{
    QVERIFY(makePipe());
    const int reader = openReader();
    QVERIFY(reader >= 0);
    name(m_file);
    WindowDriver driver;
    ::close(reader);
    driver.open();
    emitEntry(driver, "entry");
    QCOMPARE(driver.log(),
             QStringList{"ERROR: Operation log " + m_file + ": Broken pipe [CAM_API_STS_FILE_WRITE_ERROR]"});
}

void OperationLogFileTest::pipeWithoutReaderIsLoggedOnce()
{
    QVERIFY(makePipe());
    name(m_file);
    WindowDriver driver; // whose window must not wait for a reader
    driver.open();
    emitEntry(driver, "entry");
    QCOMPARE(driver.log(), QStringList{"ERROR: Operation log " + m_file +
                                       ": No such device or address [CAM_API_STS_FILE_OPEN_ERROR]"});
    QVERIFY(driver.enabled("actionStart"));
}

void OperationLogFileTest::stalledReaderIsLoggedOnce()
{
    constexpr int kMoreThanAPipeHolds = 1 << 22;
    QVERIFY(makePipe());
    const int reader = openReader();
    QVERIFY(reader >= 0);
    name(m_file);
    WindowDriver driver;
    driver.open();
    emitEntry(driver, QString(kMoreThanAPipeHolds, 'x'));
    emitEntry(driver, "entry");
    QCOMPARE(driver.log(), QStringList{"ERROR: Operation log " + m_file +
                                       ": Resource temporarily unavailable [CAM_API_STS_FILE_WRITE_ERROR]"});
    QVERIFY(driver.enabled("actionStart"));
    ::close(reader);
}

} // namespace

ORVO_TEST_CLASS(OperationLogFileTest)
#include "OperationLogFileTest.moc"
