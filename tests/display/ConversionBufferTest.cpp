// The buffer that the display thread lends to the GUI: its sizes, the loan, and how long the memory lives.

#include "display/ConversionBuffer.h"

#include <QtTest>

namespace {

class ConversionBufferTest : public QObject {
    Q_OBJECT

private slots:
    void sizesWithoutABuffer_data();
    void sizesWithoutABuffer();
    void lendsItsPixelsWithoutACopy();
    void loanEndsWithTheImageGivenBack();
    void copyOfTheImageEndsTheLoanToo();
    void otherImagesLeaveTheLoanAlone();
    void imageOutlivesTheBuffer();
    void memoryGoesWithTheLastUser();
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

void ConversionBufferTest::lendsItsPixelsWithoutACopy()
{
    const auto buffer = ConversionBuffer::create(3, 2);
    QVERIFY(buffer);
    const QImage image = buffer->lend();
    QCOMPARE(image.size(), QSize(3, 2));
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    QCOMPARE(image.bytesPerLine(), 12);
    QCOMPARE(image.constBits(), buffer->pixels());
}

void ConversionBufferTest::loanEndsWithTheImageGivenBack()
{
    const auto buffer = ConversionBuffer::create(4, 4);
    QVERIFY(!buffer->isLent());
    for (int round = 0; round < 2; ++round) {
        QImage image = buffer->lend();
        QVERIFY(buffer->isLent());
        buffer->giveBack(image);
        QVERIFY(!buffer->isLent());
    }
}

void ConversionBufferTest::copyOfTheImageEndsTheLoanToo()
{
    const auto buffer = ConversionBuffer::create(4, 4);
    const QImage image = buffer->lend();
    const QImage& sameImage = QImage(image); // what a queued signal carries
    buffer->giveBack(sameImage);
    QVERIFY(!buffer->isLent());
}

void ConversionBufferTest::otherImagesLeaveTheLoanAlone()
{
    const auto earlier = ConversionBuffer::create(4, 4);
    const QImage stale = earlier->lend();
    const auto buffer = ConversionBuffer::create(4, 4);
    const QImage image = buffer->lend();
    buffer->giveBack(stale);
    QVERIFY(buffer->isLent());
    buffer->giveBack(image.copy());
    QVERIFY(buffer->isLent());
    buffer->giveBack(QImage());
    QVERIFY(buffer->isLent());
}

void ConversionBufferTest::imageOutlivesTheBuffer()
{
    auto buffer = ConversionBuffer::create(2, 2);
    std::fill_n(buffer->pixels(), 2 * 2 * 4, uchar(0x7F));
    const QImage image = buffer->lend();
    buffer.reset();
    QCOMPARE(image.pixel(1, 1), 0x7F7F7F7FU);
}

void ConversionBufferTest::memoryGoesWithTheLastUser()
{
    auto buffer = ConversionBuffer::create(2, 2);
    const std::weak_ptr<ConversionBuffer> watched = buffer;
    QImage image = buffer->lend();
    QImage second = image;
    buffer.reset();
    image = QImage();
    QVERIFY(!watched.expired());
    second = QImage();
    QVERIFY(watched.expired());
}

} // namespace

QTEST_APPLESS_MAIN(ConversionBufferTest)
#include "ConversionBufferTest.moc"
