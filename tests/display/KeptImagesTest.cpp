// Copies of images into pooled memory: their pixels, and when their memory is reused.

#include "display/KeptImages.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

namespace {

/// Every pixel differs from its neighbours, and from those of a pattern with another `first`.
QImage pattern(QSize size, quint32 first, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xFF000000U | (first + quint32(y * size.width() + x)) * 7919);
    }
    return image.convertToFormat(format);
}

constexpr QSize kSize(13, 7);

class KeptImagesTest : public QObject {
    Q_OBJECT

private slots:
    void copyHasTheSamePixelsInOtherMemory();
    void thirdCopyReusesTheMemoryOfTheFirst();
    void memoryInUseIsNotReused();
    void imageOfAnotherFormatOrSizeIsCopied_data();
    void imageOfAnotherFormatOrSizeIsCopied();
    void linePaddingIsNotCopied();
    void copyOfANullImageIsNull();
};

void KeptImagesTest::copyHasTheSamePixelsInOtherMemory()
{
    KeptImages kept;
    for (quint32 i = 0; i < 4; ++i) { // the third and the fourth reuse memory
        QImage image = pattern(kSize, i * 1000);
        const QImage copy = kept.copyOf(image);
        QCOMPARE(copy, image);
        QVERIFY(copy.constBits() != image.constBits());
        QVERIFY(image.isDetached());
        image.fill(Qt::black);
        QCOMPARE(copy, pattern(kSize, i * 1000));
    }
}

void KeptImagesTest::thirdCopyReusesTheMemoryOfTheFirst()
{
    KeptImages kept;
    const auto memoryOfCopy = [&kept](quint32 first) {
        return static_cast<const void*>(kept.copyOf(pattern(kSize, first)).constBits());
    };
    const void* const first = memoryOfCopy(0);
    const void* const second = memoryOfCopy(1000);
    QVERIFY(first != second);
    for (quint32 i = 2; i < 8; ++i)
        QCOMPARE(memoryOfCopy(i * 1000), i % 2 == 0 ? first : second);
}

void KeptImagesTest::memoryInUseIsNotReused()
{
    KeptImages kept;
    const QImage held = kept.copyOf(pattern(kSize, 0));
    static_cast<void>(kept.copyOf(pattern(kSize, 1000)));
    const QImage third = kept.copyOf(pattern(kSize, 2000));
    QVERIFY(third.constBits() != held.constBits());
    QCOMPARE(third, pattern(kSize, 2000));
    QCOMPARE(held, pattern(kSize, 0));
}

void KeptImagesTest::imageOfAnotherFormatOrSizeIsCopied_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("smaller") << QSize(5, 3) << QImage::Format_ARGB32;
    QTest::newRow("larger") << QSize(130, 70) << QImage::Format_ARGB32;
    QTest::newRow("same number of lines, shorter") << QSize(12, 7) << QImage::Format_ARGB32;
    QTest::newRow("fewer lines, same length") << QSize(13, 6) << QImage::Format_ARGB32;
    QTest::newRow("other format, same pixel size") << kSize << QImage::Format_RGB32;
    QTest::newRow("other pixel size") << kSize << QImage::Format_RGB888;
}

void KeptImagesTest::imageOfAnotherFormatOrSizeIsCopied()
{
    QFETCH(QSize, size);
    QFETCH(QImage::Format, format);
    KeptImages kept;
    static_cast<void>(kept.copyOf(pattern(kSize, 0)));
    static_cast<void>(kept.copyOf(pattern(kSize, 1000)));
    for (quint32 i = 2; i < 6; ++i) {
        const QImage image = pattern(size, i * 1000, format);
        const QImage copy = kept.copyOf(image);
        QCOMPARE(copy.size(), size);
        QCOMPARE(copy.format(), format);
        QCOMPARE(copy, image);
    }
}

void KeptImagesTest::linePaddingIsNotCopied()
{
    constexpr int kLeft = 2;
    const QImage whole = pattern({kSize.width() + 5, kSize.height()}, 0);
    const QImage part(whole.constBits() + kLeft * sizeof(QRgb), kSize.width(), kSize.height(), whole.bytesPerLine(),
                      whole.format());
    KeptImages kept;
    for (int i = 0; i < 4; ++i)
        QCOMPARE(kept.copyOf(part), whole.copy(QRect(QPoint(kLeft, 0), kSize)));
}

void KeptImagesTest::copyOfANullImageIsNull()
{
    KeptImages kept;
    QVERIFY(kept.copyOf(QImage()).isNull());
    static_cast<void>(kept.copyOf(pattern(kSize, 0)));
    static_cast<void>(kept.copyOf(pattern(kSize, 1000)));
    for (int i = 0; i < 3; ++i)
        QVERIFY(kept.copyOf(QImage()).isNull());
    QCOMPARE(kept.copyOf(pattern(kSize, 0)), pattern(kSize, 0));
}

} // namespace

ORVO_TEST_CLASS(KeptImagesTest)
#include "KeptImagesTest.moc"
