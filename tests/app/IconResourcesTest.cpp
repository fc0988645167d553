// The compiled-in images: the complete list, and the exact format of each, read from its bytes.

#include "tests/support/TestProgram.h"
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QResource>
#include <QSet>
#include <QSize>
#include <QtEndian>

#include <QtTest>

#include <algorithm>
#include <iterator>

namespace {

enum class Format { PngRgba, PngRgb, Bmp24, Ico24 };

struct Icon {
    const char* path;
    Format format;
    int side;
};

constexpr Icon kIcons[] = {
    {":/images/Icon/Open.png", Format::PngRgba, 24},
    {":/images/Icon/Close.png", Format::PngRgba, 24},
    {":/images/Icon/Play.png", Format::PngRgba, 24},
    {":/images/Icon/Pause.png", Format::PngRgba, 24},
    {":/images/Icon/Stop.png", Format::PngRgba, 24},
    {":/images/Icon/OneShot.png", Format::PngRgba, 24},
    {":/images/Icon/ZoomIn.png", Format::PngRgba, 24},
    {":/images/Icon/ZoomX1.png", Format::PngRgba, 24},
    {":/images/Icon/ZoomOut.png", Format::PngRgba, 24},
    {":/images/Icon/SnapShot.png", Format::PngRgba, 32},
    {":/images/Icon/info.bmp", Format::Bmp24, 20},
    {":/images/Icon/Viewer_Main_icon_2.ico", Format::Ico24, 32},
    {":/images/FeatureView/images/RefreshArrow_Blue.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/Categorized.png", Format::PngRgb, 32},
    {":/images/FeatureView/images/CategorizedOff.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/AZSorted.png", Format::PngRgb, 32},
    {":/images/FeatureView/images/AZSortedOff.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/Beginner.png", Format::PngRgb, 32},
    {":/images/FeatureView/images/BeginnerOff.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/Expert.png", Format::PngRgb, 32},
    {":/images/FeatureView/images/ExpertOff.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/Guru.png", Format::PngRgb, 32},
    {":/images/FeatureView/images/GuruOff.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/Invisible.png", Format::PngRgba, 32},
    {":/images/FeatureView/images/Folded.png", Format::PngRgba, 16},
    {":/images/FeatureView/images/Collapsed.png", Format::PngRgba, 16},
};

constexpr const char* kFoldersOfTheToolkit[] = {":/qt-project.org/", ":/qgradient/", ":/qpdf/"};

// Image properties read from the bytes of a file. Null size: not a file of that kind.
struct Header {
    QSize size;
    int bitsPerPixel = 0;
    bool alpha = false;
};

template <typename Integer> int little(const QByteArray& bytes, int offset)
{
    return static_cast<int>(qFromLittleEndian<Integer>(bytes.constData() + offset));
}

// Signature, then the IHDR chunk: width, height, bits per channel, colour type (2 is RGB, 6 is RGBA).
Header pngHeader(const QByteArray& bytes)
{
    if (bytes.size() < 33 || !bytes.startsWith("\x89PNG\r\n\x1a\n") || bytes.mid(12, 4) != "IHDR")
        return {};
    const int channels = bytes[25] == 6 ? 4 : bytes[25] == 2 ? 3 : 0;
    return {QSize(qFromBigEndian<qint32>(bytes.constData() + 16), qFromBigEndian<qint32>(bytes.constData() + 20)),
            bytes[24] * channels, channels == 4};
}

// The 40-byte bitmap header, which follows the 14-byte file header in a BMP and starts each image in an ICO.
Header bitmapHeader(const QByteArray& bytes, int offset)
{
    if (bytes.size() < offset + 40 || little<quint32>(bytes, offset) < 40)
        return {};
    return {QSize(little<qint32>(bytes, offset + 4), little<qint32>(bytes, offset + 8)),
            little<quint16>(bytes, offset + 14)};
}

Header bmpHeader(const QByteArray& bytes)
{
    return bytes.startsWith("BM") ? bitmapHeader(bytes, 14) : Header{};
}

// Type 1, one image, its directory entry, and its bitmap, whose height includes the rows of the mask.
Header icoHeader(const QByteArray& bytes)
{
    if (bytes.size() < 22 || little<quint32>(bytes, 0) != 0x10000 || little<quint16>(bytes, 4) != 1)
        return {};
    const Header entry{QSize(little<quint8>(bytes, 6), little<quint8>(bytes, 7)), little<quint16>(bytes, 12)};
    const Header image = bitmapHeader(bytes, little<qint32>(bytes, 18));
    const bool agree =
        image.size == QSize(entry.size.width(), 2 * entry.size.height()) && image.bitsPerPixel == entry.bitsPerPixel;
    return agree ? entry : Header{};
}

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class IconResourcesTest : public QObject {
    Q_OBJECT

private slots:
    void formatOfEveryIcon_data();
    void formatOfEveryIcon();
    void noOtherEntries();
    void noTwoIconsAreIdentical();
    void everyPngHasATransparentBackground();
    void nameOfTheCollection();
};

void IconResourcesTest::formatOfEveryIcon_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < static_cast<int>(std::size(kIcons)); ++i)
        QTest::newRow(kIcons[i].path) << i;
}

void IconResourcesTest::formatOfEveryIcon()
{
    QFETCH(int, index);
    const Icon& icon = kIcons[index];
    const QByteArray bytes = content(icon.path);
    QVERIFY(!bytes.isEmpty());

    const Header header = icon.format == Format::Bmp24   ? bmpHeader(bytes)
                          : icon.format == Format::Ico24 ? icoHeader(bytes)
                                                         : pngHeader(bytes);
    QCOMPARE(header.size, QSize(icon.side, icon.side));
    QCOMPARE(header.bitsPerPixel, icon.format == Format::PngRgba ? 32 : 24);
    QCOMPARE(header.alpha, icon.format == Format::PngRgba);

    QCOMPARE(QResource(icon.path).compressionAlgorithm(), QResource::NoCompression);
    QCOMPARE(QImage(icon.path).size(), QSize(icon.side, icon.side));
}

void IconResourcesTest::noOtherEntries()
{
    QStringList expected;
    for (const Icon& icon : kIcons)
        expected << icon.path;
    QStringList found;
    QDirIterator files(":/", QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!std::any_of(std::begin(kFoldersOfTheToolkit), std::end(kFoldersOfTheToolkit),
                         [&path](const char* folder) { return path.startsWith(folder); }))
            found << path;
    }
    expected.sort();
    found.sort();
    QCOMPARE(found, expected);
}

void IconResourcesTest::noTwoIconsAreIdentical()
{
    QSet<QByteArray> seen;
    for (const Icon& icon : kIcons) {
        const QByteArray bytes = content(icon.path);
        QVERIFY2(!seen.contains(bytes), icon.path);
        seen.insert(bytes);
    }
}

// The background may be light or dark, depending on the style.
void IconResourcesTest::everyPngHasATransparentBackground()
{
    for (const Icon& icon : kIcons) {
        if (icon.format == Format::PngRgba || icon.format == Format::PngRgb)
            QVERIFY2(qAlpha(QImage(icon.path).pixel(0, 0)) == 0, icon.path);
    }
}

void IconResourcesTest::nameOfTheCollection()
{
    Q_CLEANUP_RESOURCE(IconResources);
    QVERIFY(!QFile::exists(kIcons[0].path));
    Q_INIT_RESOURCE(IconResources);
    QVERIFY(QFile::exists(kIcons[0].path));
}

ORVO_TEST_CLASS(IconResourcesTest)
#include "IconResourcesTest.moc"
