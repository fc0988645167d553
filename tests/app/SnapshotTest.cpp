// Snapshots: the file dialog, the resulting names, and the files.

#include "tests/app/SnapshotUser.h"
#include "tests/support/MarkingTranslator.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QBuffer>
#include <QFileDialog>
#include <QImageReader>
#include <QLineEdit>

#include <algorithm>

namespace {

class SnapshotTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void nothingWithoutImage();
    void dialog();
    void dialogIsTranslatable();
    void menuActionTakesASnapshot();
    void suffixesFollowTheFilter_data();
    void suffixesFollowTheFilter();
    void folderWithADot();
    void existingFileIsReplaced();
    void pixels_data();
    void pixels();
    void jpegPixels();
    void logsNothingOnSuccess();

    void cancellingKeepsThePath();
    void nextDialogProposesTheChosenPath();
    void pathIsKeptAfterAFailure();
    void pathIsForgottenWithTheWindow();
    void filterIsNotRemembered();

    void imageAtTheTimeTheDialogClosesIsSaved();
    void imageOfAStoppedStreamIsSaved();
    void imageIsSavedWhenTheCameraIsRemovedMeanwhile();
    void streamContinuesDuringTheDialog();

private:
    std::unique_ptr<SnapshotUser> m_user;
};

/// A smooth image, which JPEG hardly changes.
QImage gradient(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(255 * x / width, 255 * y / height, 128));
    }
    return image;
}

void SnapshotTest::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void SnapshotTest::init()
{
    scripted::reset();
    m_user = std::make_unique<SnapshotUser>();
}

void SnapshotTest::cleanup()
{
    m_user.reset();
}

// --- The dialog and the names ---------------------------------------------------------------------------------------

void SnapshotTest::nothingWithoutImage()
{
    m_user->snapshotDisabled();
    m_user->snapshotDisabled("action_Menu_Snapshot");
    m_user->driver().open();
    m_user->snapshotDisabled();
    m_user->driver().start();
    m_user->snapshot({});
    QCOMPARE(m_user->driver().log(), QStringList());
}

void SnapshotTest::dialog()
{
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({[this](QWidget& modal) {
        QFileDialog& dialog = fileDialog(modal);
        QCOMPARE(dialog.windowTitle(), QString("Save image File"));
        QCOMPARE(dialog.parentWidget(), static_cast<QWidget*>(&m_user->driver().window()));
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(dialog.nameFilters(), (QStringList{kPng, kBmp, kJpeg}));
        QCOMPARE(dialog.selectedNameFilter(), kPng);
        QCOMPARE(dialog.defaultSuffix(), QString());
        QCOMPARE(dialog.options(), QFileDialog::Options());
        QCOMPARE(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), QString());
        dialog.reject();
    }});
    QCOMPARE(m_user->driver().log(), QStringList());
}

void SnapshotTest::dialogIsTranslatable()
{
    const MarkingTranslator translator("MainWindow");
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({[](QWidget& modal) {
        QFileDialog& dialog = fileDialog(modal);
        QCOMPARE(dialog.windowTitle(), MarkingTranslator::marked("Save image File"));
        QCOMPARE(dialog.nameFilters().join(";;"), MarkingTranslator::marked(QStringList{kPng, kBmp, kJpeg}.join(";;")));
        dialog.reject();
    }});
}

void SnapshotTest::menuActionTakesASnapshot()
{
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({choosing(m_user->path("shot"))}, "action_Menu_Snapshot");
    QCOMPARE(m_user->files(), QStringList("shot.png"));
}

void SnapshotTest::suffixesFollowTheFilter_data()
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

void SnapshotTest::suffixesFollowTheFilter()
{
    QFETCH(QString, typed);
    QFETCH(QString, filter);
    QFETCH(QString, written);

    m_user->show(noise(64, 48, 1));
    m_user->save(typed, filter);
    QCOMPARE(m_user->files(), QStringList(written));
    QCOMPARE(m_user->driver().log(), QStringList());
    QCOMPARE(QImageReader::imageFormat(m_user->path(written)), filter.section(' ', 0, 0).toLower().toLatin1());
}

void SnapshotTest::folderWithADot()
{
    QVERIFY(QDir(m_user->folder()).mkdir("a.bmp"));
    m_user->show(noise(64, 48, 1));
    m_user->save("a.bmp/shot", kPng);
    m_user->save("a.bmp/second", kBmp);
    QCOMPARE(QDir(m_user->path("a.bmp")).entryList(QDir::Files), (QStringList{"second.bmp", "shot.png"}));
    QCOMPARE(m_user->files(), QStringList());
}

void SnapshotTest::existingFileIsReplaced()
{
    QFile old(m_user->path("shot.png"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();

    m_user->show(noise(64, 48, 1));
    // The typed name exists, so the file dialog itself asks for confirmation.
    m_user->snapshot({choosing(m_user->path("shot.png")), pressYes});
    QCOMPARE(argb(QImage(m_user->path("shot.png"))), m_user->shown());

    // It does not ask when the name exists only with the suffix appended.
    m_user->show(noise(64, 48, 2));
    m_user->save("shot", kPng);
    QCOMPARE(argb(QImage(m_user->path("shot.png"))), m_user->shown());
}

// --- Contents of the files ------------------------------------------------------------------------------------------

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
    m_user->show(noise(size.width(), size.height(), 7));
    m_user->save("image", filter);
    const QImage read(m_user->path(file));
    QVERIFY(!read.isNull());
    QCOMPARE(argb(read), m_user->shown());
}

void SnapshotTest::jpegPixels()
{
    m_user->show(gradient(320, 240));
    m_user->save("image", kJpeg);
    const QImage read(m_user->path("image.jpeg"));
    QCOMPARE(read.size(), m_user->shown().size());
    int worst = 0;
    for (int y = 0; y < read.height(); ++y) {
        for (int x = 0; x < read.width(); ++x) {
            const QRgb is = read.pixel(x, y);
            const QRgb was = m_user->shown().pixel(x, y);
            worst = std::max({worst, std::abs(qRed(is) - qRed(was)), std::abs(qGreen(is) - qGreen(was)),
                              std::abs(qBlue(is) - qBlue(was))});
        }
    }
    QVERIFY2(worst <= 6, qPrintable(QString::number(worst)));

    // Byte for byte what the default quality gives.
    QByteArray expected;
    QBuffer buffer(&expected);
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(m_user->shown().save(&buffer, "jpeg", -1));
    QFile file(m_user->path("image.jpeg"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll() == expected);
}

void SnapshotTest::logsNothingOnSuccess()
{
    m_user->show(noise(64, 48, 1));
    m_user->driver().clearLog();
    m_user->save("shot", kPng);
    QCOMPARE(m_user->driver().log(), QStringList());
}

// --- The remembered path --------------------------------------------------------------------------------------------

void SnapshotTest::cancellingKeepsThePath()
{
    m_user->show(noise(64, 48, 1));
    const auto expecting = [](const QString& file) {
        return [file](QWidget& modal) {
            QCOMPARE(proposed(fileDialog(modal)), file);
            cancelling()(modal);
        };
    };
    // Before the first choice no name is proposed; the toolkit chooses the folder.
    for (int i = 0; i < 2; ++i) {
        m_user->snapshot({[](QWidget& modal) {
            QCOMPARE(fileDialog(modal).findChild<QLineEdit*>("fileNameEdit")->text(), QString());
            cancelling()(modal);
        }});
    }
    m_user->save("first", kPng);

    // Cancelling keeps the proposal, even after another name was typed.
    m_user->snapshot({[&](QWidget& modal) {
        fileDialog(modal).findChild<QLineEdit*>("fileNameEdit")->setText("second");
        cancelling()(modal);
    }});
    m_user->snapshot({expecting(m_user->path("first"))});
    QCOMPARE(m_user->files(), QStringList("first.png"));
    QCOMPARE(m_user->driver().log(), QStringList());
}

void SnapshotTest::nextDialogProposesTheChosenPath()
{
    m_user->show(noise(64, 48, 1));
    // Proposes the name as chosen, not the name of the file written.
    for (const char* name : {"shot", "other.bmp", "third.jpeg"}) {
        m_user->save(name, kPng);
        m_user->snapshot({[&](QWidget& modal) {
            QCOMPARE(fileDialog(modal).directory(), QDir(m_user->folder()));
            QCOMPARE(proposed(fileDialog(modal)), m_user->path(name));
            cancelling()(modal);
        }});
    }
}

void SnapshotTest::pathIsKeptAfterAFailure()
{
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({choosing(m_user->path("shot.xpng")), pressOk});
    m_user->snapshot({[&](QWidget& modal) {
        QCOMPARE(proposed(fileDialog(modal)), m_user->path("shot.xpng"));
        cancelling()(modal);
    }});
}

void SnapshotTest::pathIsForgottenWithTheWindow()
{
    m_user->show(noise(64, 48, 1));
    m_user->save("shot", kPng);
    cleanup();
    init();
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({[](QWidget& modal) {
        QCOMPARE(fileDialog(modal).findChild<QLineEdit*>("fileNameEdit")->text(), QString());
        cancelling()(modal);
    }});
}

void SnapshotTest::filterIsNotRemembered()
{
    m_user->show(noise(64, 48, 1));
    m_user->save("shot", kJpeg);
    m_user->snapshot({[](QWidget& modal) {
        QCOMPARE(fileDialog(modal).selectedNameFilter(), kPng);
        cancelling()(modal);
    }});
}

// --- While the stream runs ------------------------------------------------------------------------------------------

void SnapshotTest::imageAtTheTimeTheDialogClosesIsSaved()
{
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({[this](QWidget& modal) {
        m_user->show(noise(64, 48, 2));
        choosing(m_user->path("shot"))(modal);
    }});
    QCOMPARE(argb(QImage(m_user->path("shot.png"))), noise(64, 48, 2));
}

void SnapshotTest::imageOfAStoppedStreamIsSaved()
{
    m_user->show(noise(64, 48, 1));
    m_user->driver().stop();
    m_user->save("shot", kPng);
    QCOMPARE(argb(QImage(m_user->path("shot.png"))), noise(64, 48, 1));
}

void SnapshotTest::imageIsSavedWhenTheCameraIsRemovedMeanwhile()
{
    m_user->show(noise(64, 48, 1));
    m_user->snapshot({[this](QWidget& modal) {
        scripted::unplug();
        QTRY_COMPARE(m_user->driver().log(), QStringList("A camera has been Removed."));
        QVERIFY(m_user->driver().enabled("actionOpen"));
        choosing(m_user->path("shot"))(modal);
    }});
    QCOMPARE(argb(QImage(m_user->path("shot.png"))), noise(64, 48, 1));
    QVERIFY(!m_user->driver().enabled("actionSnapshot"));
}

void SnapshotTest::streamContinuesDuringTheDialog()
{
    m_user->show(noise(64, 48, 1));
    scripted::clearCalls();
    m_user->snapshot({[this](QWidget& modal) {
        QVERIFY(scripted::streaming());
        m_user->show(noise(64, 48, 2));
        m_user->show(noise(64, 48, 3));
        cancelling()(modal);
    }});
    QVERIFY(scripted::streaming());
    QCOMPARE(scripted::count("Strm_Stop"), 0);
    m_user->show(noise(64, 48, 4));
}

} // namespace

ORVO_TEST_CLASS(SnapshotTest)
#include "SnapshotTest.moc"
