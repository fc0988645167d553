// The buffer that the display thread lends to the GUI: its sizes, the loan, and the lifetime of its memory.

#include "display/ConversionBuffer.h"
#include "display/ImageLoan.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

class ConversionBufferTest : public QObject {
    Q_OBJECT

private slots:
    void sizesWithoutABuffer_data();
    void sizesWithoutABuffer();
    void lendsPixelsWithoutCopying();
    void loanEndsWhenTheGuiIsDone();
    void sharedCopyEndsTheLoan();
    void otherImagesDoNotAffectTheLoan();
    void imageOutlivesTheBuffer();
    void bufferIsInitiallyBlack();
    void pixelsStartAtACacheLine();
};

void ConversionBufferTest::sizesWithoutABuffer_data()
{
    QTest::addColumn<uint>("width");
    QTest::addColumn<uint>("height");
    QTest::newRow("no width") << 0U << 48U;
    QTest::newRow("no height") << 64U << 0U;
    QTest::newRow("no size") << 0U << 0U;
    QTest::newRow("product wraps to 0") << 65536U << 16384U;
    QTest::newRow("product wraps to a small size") << 65537U << 16384U;
    QTest::newRow("pixels wrap") << 0x80000001U << 2U;
    QTest::newRow("largest numbers") << 0xFFFFFFFFU << 0xFFFFFFFFU;
}

void ConversionBufferTest::sizesWithoutABuffer()
{
    QFETCH(uint, width);
    QFETCH(uint, height);
    QVERIFY(!ConversionBuffer::create(width, height));
}

void ConversionBufferTest::lendsPixelsWithoutCopying()
{
    const auto buffer = ConversionBuffer::create(3, 2);
    QVERIFY(buffer);
    const QImage image = buffer->lend();
    QCOMPARE(image.size(), QSize(3, 2));
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    QCOMPARE(image.bytesPerLine(), 12);
    QCOMPARE(image.constBits(), buffer->pixels());
}

void ConversionBufferTest::loanEndsWhenTheGuiIsDone()
{
    const auto buffer = ConversionBuffer::create(4, 4);
    QVERIFY(!buffer->isLent());
    for (int round = 0; round < 2; ++round) {
        const QImage image = buffer->lend();
        QVERIFY(buffer->isLent());
        {
            const ImageLoan loan(buffer.get(), image);
            QVERIFY(buffer->isLent());
        }
        QVERIFY(!buffer->isLent());
    }
}

void ConversionBufferTest::sharedCopyEndsTheLoan()
{
    const auto buffer = ConversionBuffer::create(4, 4);
    const QImage image = buffer->lend();
    const auto carried = QVariant(image).value<QImage>(); // as a queued signal does
    {
        const ImageLoan loan(buffer.get(), carried);
    }
    QVERIFY(!buffer->isLent());
}

void ConversionBufferTest::otherImagesDoNotAffectTheLoan()
{
    const auto earlier = ConversionBuffer::create(4, 4);
    const QImage stale = earlier->lend();
    const auto buffer = ConversionBuffer::create(4, 4);
    const QImage image = buffer->lend();
    for (const QImage& other : {stale, image.copy(), QImage()}) {
        {
            const ImageLoan loan(buffer.get(), other);
        }
        QVERIFY(buffer->isLent());
    }
    const ImageLoan withoutBuffer(nullptr, image);
    QVERIFY(earlier->isLent());
}

void ConversionBufferTest::imageOutlivesTheBuffer()
{
    auto buffer = ConversionBuffer::create(2, 2);
    std::fill_n(buffer->pixels(), 2 * 2 * 4, uchar(0x7F));
    const QImage first = buffer->lend();
    QImage second = buffer->lend();
    buffer.reset();
    QCOMPARE(second.pixel(1, 1), 0x7F7F7F7FU);
    second = QImage();
    QCOMPARE(first.pixel(1, 1), 0x7F7F7F7FU);
}

void ConversionBufferTest::bufferIsInitiallyBlack()
{
    QCOMPARE(ConversionBuffer::create(2, 2)->lend().pixel(1, 1), qRgb(0, 0, 0));
}

// Small buffers do not start at a cache line by chance alone.
void ConversionBufferTest::pixelsStartAtACacheLine()
{
    std::vector<std::shared_ptr<ConversionBuffer>> buffers;
    for (std::uint32_t width = 1; width <= 40; ++width) {
        buffers.push_back(ConversionBuffer::create(width, 3));
        QCOMPARE(reinterpret_cast<std::uintptr_t>(buffers.back()->pixels()) % 64, std::uintptr_t{0});
    }
}

} // namespace

ORVO_TEST_CLASS(ConversionBufferTest)
#include "ConversionBufferTest.moc"
