// Snapshots that do not fit on the disk.

#include "tests/app/SnapshotUser.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <sys/mount.h>

namespace {

/// A disk of 64 KiB.
class SmallDisk {
public:
    explicit SmallDisk(const QString& folder)
        : m_folder(folder.toLocal8Bit())
    {
        if (!QDir().mkpath(folder) || mount("tmpfs", m_folder.constData(), "tmpfs", 0, "size=64k") != 0)
            qFatal("cannot mount a disk: start this with tests/support/own-mounts");
    }
    ~SmallDisk() { umount(m_folder.constData()); }
    Q_DISABLE_COPY_MOVE(SmallDisk)

private:
    QByteArray m_folder;
};

class SnapshotFullDiskTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void init() { scripted::reset(); }

    void fullDisk_data();
    void fullDisk();
};

void SnapshotFullDiskTest::fullDisk_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<int>("used");
    QTest::newRow("PNG") << kPng << 0;
    QTest::newRow("BMP") << kBmp << 0;
    QTest::newRow("JPEG") << kJpeg << 0;
    // The free space holds all but the last bytes of the file.
    QTest::newRow("BMP, last bytes") << kBmp << 1;
}

void SnapshotFullDiskTest::fullDisk()
{
    QFETCH(QString, filter);
    QFETCH(int, used);
    SnapshotUser user;
    const SmallDisk disk(user.path("disk"));

    // None of the images fits into 64 KiB; the smallest BMP only exceeds it once another file takes a page.
    user.show(used == 0 ? noise(400, 300, 1) : noise(144, 146, 1));
    if (used != 0) {
        QFile other(user.path("disk/other"));
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.write("x");
        other.close();
    }
    user.snapshot({choosing(user.path("disk/shot"), filter), pressOk});
    QCOMPARE(user.driver().log(), QStringList("Cannot save a file."));
}

} // namespace

ORVO_TEST_CLASS(SnapshotFullDiskTest)
#include "SnapshotFullDiskTest.moc"
