// Snapshots: the file dialog, the names that come of it, the files, and what happens where they cannot be written.

#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QBuffer>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QImageReader>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>
#include <cstring>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kPollMs = 5;
constexpr uid_t kNobody = 65534;
const QString kPng = "PNG (*.png)";
const QString kBmp = "BMP (*.bmp)";
const QString kJpeg = "JPEG (*.jpg *.jpeg)";

using User = std::function<void(QWidget& modal)>;

/// Takes the rights of root for as long as it lives, where the test has them.
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

/// A disk of 64 KiB, where the test may mount one.
class SmallDisk {
public:
    explicit SmallDisk(QString folder)
        : m_folder(std::move(folder))
        , m_mounted(QDir().mkpath(m_folder) &&
                    mount("tmpfs", m_folder.toLocal8Bit().constData(), "tmpfs", 0, "size=64k") == 0)
    {
    }
    ~SmallDisk()
    {
        if (m_mounted)
            umount(m_folder.toLocal8Bit().constData());
    }
    Q_DISABLE_COPY_MOVE(SmallDisk)

    [[nodiscard]] bool mounted() const { return m_mounted; }

private:
    QString m_folder;
    bool m_mounted;
};

class SnapshotTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void nothingWithoutImage();
    void dialog();
    void menuDoesTheSame();
    void names_data();
    void names();
    void existingFileIsReplaced();
    void pixels_data();
    void pixels();
    void jpegPixels();
    void quietOnSuccess();

    void cancelKeepsThePath();
    void nextDialogProposesTheChosenPath();
    void pathIsKeptAfterAFailure();
    void pathIsForgottenWithTheWindow();
    void filterIsNotRemembered();

    void imageAtTheEndOfTheDialogIsSaved();
    void imageOfAStoppedStreamIsSaved();
    void streamRunsOnMeanwhile();

    void failureBox();
    void unwritableFolder();
    void unwritableFile();
    void unknownSuffix();
    void tooLongName();
    void fullDisk_data();
    void fullDisk();

private:
    [[nodiscard]] QString path(const QString& name) const { return m_folder->filePath(name); }
    [[nodiscard]] QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden); }

    /// Delivers an image that is converted to `pixels`, and waits until the window shows it.
    void show(const QImage& pixels);
    /// Triggers the command; each modal window that comes up is handed to the next of `users`, who ends it.
    void snapshot(const std::vector<User>& users, const char* action = "actionSnapshot");
    /// The whole way with a name and a filter, without anything else coming up.
    void save(const QString& name, const QString& filter);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<WindowDriver> m_driver;
    QImage m_shown;
    QImage m_last;
    std::uint64_t m_frame = 0;
};

QImage noise(int width, int height, quint32 seed)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            image.setPixel(x, y, 0xff000000u | (seed >> 8));
        }
    }
    return image;
}

/// As the test's own images are kept, whatever the window and the files keep theirs as.
QImage argb(const QImage& image)
{
    return image.convertToFormat(QImage::Format_ARGB32);
}

/// Smooth, as JPEG likes it.
QImage gradient(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(255 * x / width, 255 * y / height, 128));
    }
    return image;
}

// --- A user's hand on the dialogs -----------------------------------------------------------------------------------

QFileDialog& fileDialog(QWidget& modal)
{
    auto* const dialog = qobject_cast<QFileDialog*>(&modal);
    if (!dialog)
        qFatal("this is no file dialog: %s", modal.metaObject()->className());
    return *dialog;
}

void chooseFilter(QFileDialog& dialog, const QString& filter)
{
    auto* const combo = dialog.findChild<QComboBox*>("fileTypeCombo");
    combo->setFocus();
    while (combo->currentText() != filter) {
        const int before = combo->currentIndex();
        QTest::keyClick(combo, Qt::Key_Down);
        if (combo->currentIndex() == before)
            qFatal("there is no filter %s", qPrintable(filter));
    }
}

void pressSave(QFileDialog& dialog)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Save), Qt::LeftButton);
}

QString proposed(QFileDialog& dialog)
{
    return dialog.directory().filePath(dialog.findChild<QLineEdit*>("fileNameEdit")->text());
}

User choosing(const QString& name, const QString& filter = kPng)
{
    return [=](QWidget& modal) {
        QFileDialog& dialog = fileDialog(modal);
        chooseFilter(dialog, filter);
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
        pressSave(dialog);
    };
}

User cancelling()
{
    return [](QWidget& modal) {
        auto* const buttons = fileDialog(modal).findChild<QDialogButtonBox*>("buttonBox");
        QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    };
}

void press(QWidget& modal, QMessageBox::StandardButton button)
{
    auto* const box = qobject_cast<QMessageBox*>(&modal);
    if (!box || !box->button(button))
        qFatal("this is not the message box that was waited for: %s", modal.metaObject()->className());
    QTest::mouseClick(box->button(button), Qt::LeftButton);
}

void pressOk(QWidget& modal)
{
    press(modal, QMessageBox::Ok);
}

// --- The test's own ways --------------------------------------------------------------------------------------------

void SnapshotTest::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void SnapshotTest::init()
{
    scripted::reset();
    m_frame = 0;
    m_shown = QImage();
    m_folder = std::make_unique<QTemporaryDir>();
    m_driver = std::make_unique<WindowDriver>();
    connect(&m_driver->window(), &MainWindow::Update_Image, this, [this](const QImage& image) { m_last = image; });
}

void SnapshotTest::cleanup()
{
    m_driver.reset();
    m_folder.reset();
}

void SnapshotTest::show(const QImage& pixels)
{
    scripted::onConvImage([pixels](void* dst, const void*, std::uint32_t, std::uint32_t) {
        std::memcpy(dst, pixels.constBits(), static_cast<std::size_t>(pixels.sizeInBytes()));
    });
    if (!scripted::streaming()) {
        scripted::setImageFormat(static_cast<std::uint32_t>(pixels.width()),
                                 static_cast<std::uint32_t>(pixels.height()), 0x01080001);
        m_driver->open();
        m_driver->start();
    }
    m_last = QImage();
    QVERIFY(scripted::deliverImage(++m_frame));
    QTRY_COMPARE(argb(m_last), pixels);
    m_shown = pixels;
}

void SnapshotTest::snapshot(const std::vector<User>& users, const char* action)
{
    std::size_t next = 0;
    QPointer<QWidget> handled;
    const QObject scope;
    // Scheduled anew before it acts, because a dialog can bring up another one before it ends.
    std::function<void()> poll = [&] {
        QTimer::singleShot(kPollMs, &scope, poll);
        QWidget* const modal = QApplication::activeModalWidget();
        if (!modal || modal == handled)
            return;
        handled = modal;
        if (next == users.size()) {
            QTest::qFail(qPrintable(QString("a window too many: ") + modal->metaObject()->className()), __FILE__,
                         __LINE__);
            qobject_cast<QDialog*>(modal)->reject();
            return;
        }
        users[next++](*modal);
        // A user who gave up half-way leaves the dialog open.
        if (handled && handled->isVisible() && QTest::currentTestFailed())
            qobject_cast<QDialog*>(handled.data())->reject();
    };
    QTimer::singleShot(kPollMs, &scope, poll);
    m_driver->trigger(action);
    QCOMPARE(next, users.size());
}

void SnapshotTest::save(const QString& name, const QString& filter)
{
    snapshot({choosing(path(name), filter)});
}

// --- The dialog and the names ---------------------------------------------------------------------------------------

void SnapshotTest::nothingWithoutImage()
{
    snapshot({});
    snapshot({}, "action_Menu_Snapshot");
    m_driver->open();
    snapshot({});
    m_driver->start();
    snapshot({});
    QCOMPARE(m_driver->log(), QStringList());
}

void SnapshotTest::dialog()
{
    show(noise(64, 48, 1));
    snapshot({[this](QWidget& modal) {
        QFileDialog& dialog = fileDialog(modal);
        QCOMPARE(dialog.windowTitle(), QString("Save image File"));
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget*>(&m_driver->window()));
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(dialog.nameFilters(), (QStringList{kPng, kBmp, kJpeg}));
        QCOMPARE(dialog.selectedNameFilter(), kPng);
        QCOMPARE(dialog.defaultSuffix(), QString());
        QVERIFY(!dialog.testOption(QFileDialog::DontConfirmOverwrite));
        QCOMPARE(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), QString());
        dialog.reject();
    }});
    QCOMPARE(m_driver->log(), QStringList());
}

void SnapshotTest::menuDoesTheSame()
{
    show(noise(64, 48, 1));
    snapshot({choosing(path("shot"))}, "action_Menu_Snapshot");
    QCOMPARE(files(), QStringList("shot.png"));
}

void SnapshotTest::names_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("written");
    const auto row = [](const char* typed, const QString& filter, const char* written) {
        QTest::newRow(qPrintable(QString(typed) + " as " + filter.left(3)))
            << QString::fromUtf8(typed) << filter << QString::fromUtf8(written);
    };
    row("shot", kPng, "shot.png");
    row("shot.png", kPng, "shot.png");
    row("shot.bmp", kPng, "shot..png");
    row("shot.jpg", kJpeg, "shot..jpeg");
    row("shot.jpeg", kJpeg, "shot.jpeg");
    row("shot", kJpeg, "shot.jpeg");
    row("frame", kBmp, "frame.bmp");
    row("frame.bmp", kBmp, "frame.bmp");
    row("frame.png", kBmp, "frame..bmp");
    row("frame.PNG", kPng, "frame.PNG");
    row("frame.JpEg", kJpeg, "frame.JpEg");
    row("frame.jpg", kJpeg, "frame..jpeg");
    row("frame.png.bmp", kPng, "frame.png..png");
    row("frame.bmp.png", kPng, "frame.bmp.png");
    row("frame.", kPng, "frame..png");
    row("a.b.c", kBmp, "a.b..bmp");
    row(".hidden", kPng, "..png");
    row(".png", kPng, ".png");
    row("png", kPng, "png.png");
    row("two words", kPng, "two words.png");
    row("PNG (1)", kBmp, "PNG (1).bmp");
    row("Bild für Jürgen 画像", kJpeg, "Bild für Jürgen 画像.jpeg");
    row("100%1 & <b>'$HOME\\;*?", kPng, "100%1 & <b>'$HOME\\;*?.png");
    row("-rf", kPng, "-rf.png");
}

void SnapshotTest::names()
{
    QFETCH(QString, typed);
    QFETCH(QString, filter);
    QFETCH(QString, written);

    show(noise(64, 48, 1));
    save(typed, filter);
    QCOMPARE(files(), QStringList(written));
    QCOMPARE(m_driver->log(), QStringList());
    QCOMPARE(QImageReader::imageFormat(path(written)), filter.section(' ', 0, 0).toLower().toLatin1());
}

void SnapshotTest::existingFileIsReplaced()
{
    QFile old(path("shot.png"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();

    show(noise(64, 48, 1));
    // The dialog asks, because the typed name exists; the message box is its own.
    snapshot({choosing(path("shot.png")), [](QWidget& modal) { press(modal, QMessageBox::Yes); }});
    QCOMPARE(argb(QImage(path("shot.png"))), m_shown);

    // It does not ask for a name that the suffix only makes.
    show(noise(64, 48, 2));
    save("shot", kPng);
    QCOMPARE(argb(QImage(path("shot.png"))), m_shown);
}

// --- What the files hold --------------------------------------------------------------------------------------------

void SnapshotTest::pixels_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(64, 48), QSize(1, 1), QSize(33, 7), QSize(640, 480)}) {
        const QString text = QString("%1x%2").arg(size.width()).arg(size.height());
        QTest::newRow(qPrintable("PNG " + text)) << kPng << "image.png" << size;
        QTest::newRow(qPrintable("BMP " + text)) << kBmp << "image.bmp" << size;
    }
}

void SnapshotTest::pixels()
{
    QFETCH(QString, filter);
    QFETCH(QString, file);
    QFETCH(QSize, size);
    show(noise(size.width(), size.height(), 7));
    save("image", filter);
    const QImage read(path(file));
    QVERIFY(!read.isNull());
    QCOMPARE(argb(read), m_shown);
}

void SnapshotTest::jpegPixels()
{
    show(gradient(320, 240));
    save("image", kJpeg);
    const QImage read(path("image.jpeg"));
    QCOMPARE(read.size(), m_shown.size());
    int worst = 0;
    for (int y = 0; y < read.height(); ++y) {
        for (int x = 0; x < read.width(); ++x) {
            const QRgb is = read.pixel(x, y);
            const QRgb was = m_shown.pixel(x, y);
            worst = std::max({worst, std::abs(qRed(is) - qRed(was)), std::abs(qGreen(is) - qGreen(was)),
                              std::abs(qBlue(is) - qBlue(was))});
        }
    }
    QVERIFY2(worst <= 6, qPrintable(QString::number(worst)));

    // The default quality: the very bytes that it gives.
    QByteArray expected;
    QBuffer buffer(&expected);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(m_shown.save(&buffer, "jpeg", -1));
    QFile file(path("image.jpeg"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll() == expected);
}

void SnapshotTest::quietOnSuccess()
{
    show(noise(64, 48, 1));
    m_driver->clearLog();
    save("shot", kPng);
    QCOMPARE(m_driver->log(), QStringList());
}

// --- The remembered path --------------------------------------------------------------------------------------------

void SnapshotTest::cancelKeepsThePath()
{
    show(noise(64, 48, 1));
    const auto expecting = [](const QString& file) {
        return [file](QWidget& modal) {
            QCOMPARE(proposed(fileDialog(modal)), file);
            cancelling()(modal);
        };
    };
    // Where nothing was chosen yet, no name is proposed; the folder is the toolkit's choice.
    for (int i = 0; i < 2; ++i) {
        snapshot({[](QWidget& modal) {
            QCOMPARE(fileDialog(modal).findChild<QLineEdit*>("fileNameEdit")->text(), QString());
            cancelling()(modal);
        }});
    }
    save("first", kPng);

    // Neither leaving the dialog nor having typed another name before changes what is proposed.
    snapshot({[&](QWidget& modal) {
        fileDialog(modal).findChild<QLineEdit*>("fileNameEdit")->setText("second");
        cancelling()(modal);
    }});
    snapshot({expecting(path("first"))});
    QCOMPARE(files(), QStringList("first.png"));
    QCOMPARE(m_driver->log(), QStringList());
}

void SnapshotTest::nextDialogProposesTheChosenPath()
{
    show(noise(64, 48, 1));
    // The name as it was chosen, not as it was written.
    for (const char* name : {"shot", "other.bmp", "third.jpeg"}) {
        save(name, kPng);
        snapshot({[&](QWidget& modal) {
            QCOMPARE(fileDialog(modal).directory(), QDir(m_folder->path()));
            QCOMPARE(proposed(fileDialog(modal)), path(name));
            cancelling()(modal);
        }});
    }
}

void SnapshotTest::pathIsKeptAfterAFailure()
{
    show(noise(64, 48, 1));
    snapshot({choosing(path("shot.xpng")), pressOk});
    snapshot({[&](QWidget& modal) {
        QCOMPARE(proposed(fileDialog(modal)), path("shot.xpng"));
        cancelling()(modal);
    }});
}

void SnapshotTest::pathIsForgottenWithTheWindow()
{
    show(noise(64, 48, 1));
    save("shot", kPng);
    cleanup();
    init();
    show(noise(64, 48, 1));
    snapshot({[](QWidget& modal) {
        QCOMPARE(fileDialog(modal).findChild<QLineEdit*>("fileNameEdit")->text(), QString());
        cancelling()(modal);
    }});
}

void SnapshotTest::filterIsNotRemembered()
{
    show(noise(64, 48, 1));
    save("shot", kJpeg);
    snapshot({[](QWidget& modal) {
        QCOMPARE(fileDialog(modal).selectedNameFilter(), kPng);
        cancelling()(modal);
    }});
}

// --- While the stream runs ------------------------------------------------------------------------------------------

void SnapshotTest::imageAtTheEndOfTheDialogIsSaved()
{
    show(noise(64, 48, 1));
    snapshot({[this](QWidget& modal) {
        show(noise(64, 48, 2));
        choosing(path("shot"))(modal);
    }});
    QCOMPARE(argb(QImage(path("shot.png"))), noise(64, 48, 2));
}

void SnapshotTest::imageOfAStoppedStreamIsSaved()
{
    show(noise(64, 48, 1));
    m_driver->stop();
    save("shot", kPng);
    QCOMPARE(argb(QImage(path("shot.png"))), noise(64, 48, 1));
}

void SnapshotTest::streamRunsOnMeanwhile()
{
    show(noise(64, 48, 1));
    scripted::clearCalls();
    snapshot({[this](QWidget& modal) {
        QVERIFY(scripted::streaming());
        show(noise(64, 48, 2));
        show(noise(64, 48, 3));
        cancelling()(modal);
    }});
    QVERIFY(scripted::streaming());
    QCOMPARE(scripted::count("Strm_Stop"), 0);
    show(noise(64, 48, 4));
}

// --- Failures -------------------------------------------------------------------------------------------------------

void SnapshotTest::failureBox()
{
    show(noise(64, 48, 1));
    snapshot({choosing(path("shot.xpng")), [this](QWidget& modal) {
                  auto* const box = qobject_cast<QMessageBox*>(&modal);
                  QVERIFY(box);
                  QCOMPARE(box->parentWidget(), static_cast<QWidget*>(&m_driver->window()));
                  QCOMPARE(box->windowTitle(), QString("Save failed"));
                  QCOMPARE(box->text(), QString("Cannot save a file."));
                  QCOMPARE(box->icon(), QMessageBox::Warning);
                  QCOMPARE(box->standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
                  QCOMPARE(m_driver->log(), QStringList());
                  pressOk(modal);
              }});
    QCOMPARE(m_driver->log(), QStringList("Cannot save a file."));
}

void SnapshotTest::unwritableFolder()
{
    show(noise(64, 48, 1));
    const QString folder = path("locked");
    QVERIFY(QDir().mkdir(folder));
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0755), 0);
    QCOMPARE(chmod(folder.toLocal8Bit().constData(), 0555), 0);
    {
        const OrdinaryUser user;
        snapshot({choosing(folder + "/shot"), pressOk});
    }
    QCOMPARE(m_driver->log(), QStringList("Cannot save a file."));
    QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());
}

void SnapshotTest::unwritableFile()
{
    show(noise(64, 48, 1));
    QFile old(path("shot.png"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("precious");
    old.close();
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0755), 0);
    QVERIFY(old.setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    {
        const OrdinaryUser user;
        snapshot({choosing(path("shot")), pressOk});
    }
    QCOMPARE(m_driver->log(), QStringList("Cannot save a file."));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("precious"));
}

void SnapshotTest::unknownSuffix()
{
    // Ends with the format's word, so it stays; no format is called so.
    show(noise(64, 48, 1));
    snapshot({choosing(path("shot.notpng")), pressOk});
    QCOMPARE(files(), QStringList());
    QCOMPARE(m_driver->log(), QStringList("Cannot save a file."));
}

void SnapshotTest::tooLongName()
{
    // 252 bytes and the suffix make one more than a name may have.
    show(noise(64, 48, 1));
    snapshot({choosing(path(QString(252, 'n'))), pressOk});
    QCOMPARE(files(), QStringList());
    QCOMPARE(m_driver->log(), QStringList("Cannot save a file."));

    save(QString(251, 'n'), kPng);
    QCOMPARE(files(), QStringList(QString(251, 'n') + ".png"));
}

void SnapshotTest::fullDisk_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<int>("used");
    QTest::newRow("PNG") << kPng << 0;
    QTest::newRow("BMP") << kBmp << 0;
    QTest::newRow("JPEG") << kJpeg << 0;
    // What is left holds all but the last bytes of the file.
    QTest::newRow("BMP, at the end") << kBmp << 1;
}

void SnapshotTest::fullDisk()
{
    QFETCH(QString, filter);
    QFETCH(int, used);
    const SmallDisk disk(path("disk"));
    if (!disk.mounted())
        QSKIP("a small disk can only be mounted by root");

    // 64 KiB hold none of these; with a page taken, not even the smallest of them.
    show(used == 0 ? noise(400, 300, 1) : noise(144, 146, 1));
    if (used != 0) {
        QFile other(path("disk/other"));
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.write("x");
        other.close();
    }
    snapshot({choosing(path("disk/shot"), filter), pressOk});
    QCOMPARE(m_driver->log(), QStringList("Cannot save a file."));
}

} // namespace

QTEST_MAIN(SnapshotTest)
#include "SnapshotTest.moc"
