// Snapshots that cannot be saved.

#include "tests/app/SnapshotUser.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QMessageBox>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t kNobody = 65534;

/// Drops root privileges for its lifetime, if the test runs as root.
class OrdinaryUser {
public:
    OrdinaryUser()
    {
        if (m_root && seteuid(kNobody) != 0)
            qFatal("cannot become an ordinary user");
    }
    ~OrdinaryUser()
    {
        if (m_root && seteuid(0) != 0)
            qFatal("cannot become root again");
    }
    Q_DISABLE_COPY_MOVE(OrdinaryUser)

private:
    const bool m_root = geteuid() == 0;
};

class SnapshotFailureTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void init();
    void cleanup() { m_user.reset(); }

    void failureBox();
    void unwritableFolder();
    void unwritableFile();
    void unknownSuffix();
    void fileNameTooLong();

private:
    std::unique_ptr<SnapshotUser> m_user;
};

void SnapshotFailureTest::init()
{
    scripted::reset();
    m_user = std::make_unique<SnapshotUser>();
}

void SnapshotFailureTest::failureBox()
{
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({choosing(m_user->path("shot.xpng")), [this](QWidget& modal) {
                          auto* const box = qobject_cast<QMessageBox*>(&modal);
                          QVERIFY(box);
                          QCOMPARE(box->parentWidget(), static_cast<QWidget*>(&m_user->driver().window()));
                          QCOMPARE(box->windowTitle(), QString("Save failed"));
                          QCOMPARE(box->text(), QString("Cannot save a file."));
                          QCOMPARE(box->icon(), QMessageBox::Warning);
                          QCOMPARE(box->standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
                          QCOMPARE(m_user->driver().log(), QStringList());
                          pressOk(modal);
                      }});
    QCOMPARE(m_user->driver().log(), QStringList("Cannot save a file."));
}

void SnapshotFailureTest::unwritableFolder()
{
    m_user->show(noise(64, 48, 1));
    const QString folder = m_user->path("locked");
    QVERIFY(QDir().mkdir(folder));
    QCOMPARE(chmod(m_user->folder().toLocal8Bit().constData(), 0755), 0);
    QCOMPARE(chmod(folder.toLocal8Bit().constData(), 0555), 0);
    {
        const OrdinaryUser user;
        m_user->snapshot({choosing(folder + "/shot"), pressOk});
    }
    QCOMPARE(m_user->driver().log(), QStringList("Cannot save a file."));
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());
}

void SnapshotFailureTest::unwritableFile()
{
    m_user->show(noise(64, 48, 1));
    QFile old(m_user->path("shot.png"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("precious");
    old.close();
    QCOMPARE(chmod(m_user->folder().toLocal8Bit().constData(), 0755), 0);
    QVERIFY(old.setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    {
        const OrdinaryUser user;
        m_user->snapshot({choosing(m_user->path("shot")), pressOk});
    }
    QCOMPARE(m_user->driver().log(), QStringList("Cannot save a file."));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("precious"));
}

void SnapshotFailureTest::unknownSuffix()
{
    // The name ends with "png", so no suffix is appended; but there is no format "notpng".
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({choosing(m_user->path("shot.notpng")), pressOk});
    QCOMPARE(m_user->files(), QStringList());
    QCOMPARE(m_user->driver().log(), QStringList("Cannot save a file."));
}

void SnapshotFailureTest::fileNameTooLong()
{
    // 252 bytes and the suffix exceed the length limit of file names by one.
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({choosing(m_user->path(QString(252, 'n'))), pressOk});
    QCOMPARE(m_user->files(), QStringList());
    QCOMPARE(m_user->driver().log(), QStringList("Cannot save a file."));

    m_user->save(QString(251, 'n'), kPng);
    QCOMPARE(m_user->files(), QStringList(QString(251, 'n') + ".png"));
}

} // namespace

ORVO_TEST_CLASS(SnapshotFailureTest)
#include "SnapshotFailureTest.moc"
