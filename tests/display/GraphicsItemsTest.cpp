// What the two items of the image view paint, as paint engine calls and as pixels.

#include "display/ImageGraphicsItem.h"
#include "display/LineGraphicsItem.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QGraphicsScene>
#include <QPaintEngine>
#include <QPainter>

#include <cmath>

namespace {

/// Records lines with their pens, and pixmaps with their targets.
class NotingEngine : public QPaintEngine {
public:
    struct Stroke {
        QPen pen;
        QLineF line;
    };

    NotingEngine()
        : QPaintEngine(AllFeatures)
    {
    }
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    [[nodiscard]] Type type() const override { return User; }
    void updateState(const QPaintEngineState& newState) override
    {
        if (newState.state() & DirtyPen)
            m_pen = newState.pen();
    }
    void drawLines(const QLineF* lines, int count) override
    {
        for (int i = 0; i < count; ++i)
            strokes.append({m_pen, lines[i]});
    }
    void drawPixmap(const QRectF& target, const QPixmap& pixmap, const QRectF& source) override
    {
        targets.append(target);
        sources.append(source);
        pixmapSizes.append(pixmap.size());
    }

    QVector<Stroke> strokes;
    QVector<QRectF> targets;
    QVector<QRectF> sources;
    QVector<QSize> pixmapSizes;

private:
    QPen m_pen;
};

class NotingDevice : public QPaintDevice {
public:
    QPaintEngine* paintEngine() const override { return &engine; }
    mutable NotingEngine engine;

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
        case PdmWidthMM:
        case PdmHeightMM:
            return 1000;
        case PdmDepth:
            return 32;
        case PdmNumColors:
            return 0;
        default:
            return metric == PdmDevicePixelRatioScaled ? 0x10000 : metric == PdmDevicePixelRatio ? 1 : 96;
        }
    }
};

void paintOn(QPaintDevice& device, QGraphicsItem& item)
{
    QPainter painter(&device);
    item.paint(&painter, nullptr, nullptr);
}

QImage paper(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

QImage painted(QGraphicsItem& item, QSize size)
{
    QImage image = paper(size);
    paintOn(image, item);
    return image;
}

QColor at(const QImage& image, double x, double y)
{
    return image.pixelColor(int(std::floor(x)), int(std::floor(y)));
}

/// Four colours, one in each quarter.
QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int x = size.width() / 2;
    const int y = size.height() / 2;
    painter.fillRect(0, 0, x, y, Qt::red);
    painter.fillRect(x, 0, x, y, Qt::green);
    painter.fillRect(0, y, x, y, Qt::blue);
    painter.fillRect(x, y, x, y, Qt::cyan);
    return image;
}

class GraphicsItemsTest : public QObject {
    Q_OBJECT

private slots:
    void imageItemPaintsNothingWithoutAnImage();
    void imageItemCoversTheGivenSize();
    void imageItemStretchesASmallerImage();
    void imageItemShrinksALargerImage();
    void imageItemRequestsARepaintOnlyWithAnImage();
    void imageItemSharesAnOpaqueImage_data();
    void imageItemSharesAnOpaqueImage();
    void imageItemIgnoresTheAlphaOfACameraImage();
    void imageItemKeepsTheTransparencyOfOtherImages();
    void imageItemKeepsItsOwnPixmap();
    void clearedImageItemPaintsNothing();

    void lineItemBounds();
    void lineItemRequestsARepaint();
    void lineItemDrawsOutlineThenFill();
    void lineItemHeadStrokes_data();
    void lineItemHeadStrokes();
    void lineItemPixels();
    void lineItemOfZeroLength();
};

// --- Image ----------------------------------------------------------------------------------------------------------

void GraphicsItemsTest::imageItemPaintsNothingWithoutAnImage()
{
    ImageGraphicsItem item;
    QCOMPARE(item.boundingRect(), QRectF(0, 0, 1, 1));
    item.set_image_size(20, 10);
    QCOMPARE(item.boundingRect(), QRectF(0, 0, 20, 10));
    QCOMPARE(painted(item, {20, 10}), paper({20, 10}));
}

void GraphicsItemsTest::imageItemCoversTheGivenSize()
{
    ImageGraphicsItem item;
    item.set_image_size(20, 10);
    item.update_image(quarters({20, 10}));
    const QImage result = painted(item, {30, 20});
    QCOMPARE(result.copy(0, 0, 20, 10), quarters({20, 10}));
    QCOMPARE(at(result, 20, 5), QColor(Qt::white));
    QCOMPARE(at(result, 5, 10), QColor(Qt::white));
}

void GraphicsItemsTest::imageItemStretchesASmallerImage()
{
    ImageGraphicsItem item;
    item.set_image_size(1280, 960);
    item.update_image(quarters({640, 480}));
    QCOMPARE(painted(item, {1280, 960}), quarters({1280, 960}));

    NotingDevice device;
    paintOn(device, item);
    QCOMPARE(device.engine.targets, QVector<QRectF>{QRectF(0, 0, 1280, 960)});
    QCOMPARE(device.engine.sources, QVector<QRectF>{QRectF(0, 0, 640, 480)});
}

void GraphicsItemsTest::imageItemShrinksALargerImage()
{
    ImageGraphicsItem item;
    item.set_image_size(20, 10);
    item.update_image(quarters({200, 100}));
    QCOMPARE(painted(item, {20, 10}), quarters({20, 10}));
}

void GraphicsItemsTest::imageItemRequestsARepaintOnlyWithAnImage()
{
    QGraphicsScene scene;
    auto* const item = new ImageGraphicsItem;
    scene.addItem(item);
    item->set_image_size(20, 10);
    QCoreApplication::processEvents();
    QList<QRectF> repaints;
    connect(&scene, &QGraphicsScene::changed, &scene, [&](const QList<QRectF>& region) { repaints << region; });
    item->update_image(quarters({20, 10}));
    QTRY_COMPARE(repaints, (QList<QRectF>{QRectF(0, 0, 20, 10)}));

    item->clear_image();
    QCoreApplication::processEvents();
    QCOMPARE(repaints.size(), 1);
}

void GraphicsItemsTest::imageItemSharesAnOpaqueImage_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("RGB32") << QImage::Format_RGB32;
    QTest::newRow("ARGB32") << QImage::Format_ARGB32;
}

void GraphicsItemsTest::imageItemSharesAnOpaqueImage()
{
    QFETCH(QImage::Format, format);
    ImageGraphicsItem item;
    item.set_image_size(20, 10);
    const QImage image = quarters({20, 10}).convertToFormat(format);
    QVERIFY(image.isDetached());
    item.update_image(image);
    QVERIFY2(!image.isDetached(), "the pixmap uses the image's memory");
    QCOMPARE(painted(item, {20, 10}), quarters({20, 10}));
    item.update_image(quarters({20, 10}));
    QVERIFY2(image.isDetached(), "an image that is no longer shown is released");
}

void GraphicsItemsTest::imageItemIgnoresTheAlphaOfACameraImage()
{
    QImage image(20, 10, QImage::Format_ARGB32);
    image.fill(qRgba(0x20, 0x40, 0x60, 0));
    ImageGraphicsItem item;
    item.set_image_size(20, 10);
    item.update_image(image);
    QCOMPARE(painted(item, {20, 10}).pixelColor(19, 9), QColor(0x20, 0x40, 0x60));
}

void GraphicsItemsTest::imageItemKeepsTheTransparencyOfOtherImages()
{
    QImage image(20, 10, QImage::Format_RGBA8888);
    image.fill(Qt::transparent);
    ImageGraphicsItem item;
    item.set_image_size(20, 10);
    item.update_image(image);
    QCOMPARE(painted(item, {20, 10}), paper({20, 10}));
}

void GraphicsItemsTest::imageItemKeepsItsOwnPixmap()
{
    ImageGraphicsItem item;
    item.update_image(quarters({20, 10}));
    QVERIFY(item.pixmap().isNull());
}

void GraphicsItemsTest::clearedImageItemPaintsNothing()
{
    ImageGraphicsItem item;
    item.set_image_size(20, 10);
    item.update_image(quarters({20, 10}));
    item.clear_image();
    QCOMPARE(item.boundingRect(), QRectF(0, 0, 1, 1));
    QCOMPARE(painted(item, {20, 10}), paper({20, 10}));
    item.set_image_size(20, 10);
    QCOMPARE(painted(item, {20, 10}), paper({20, 10}));
    item.update_image(quarters({20, 10}));
    QCOMPARE(painted(item, {20, 10}), quarters({20, 10}));
}

// --- Line -----------------------------------------------------------------------------------------------------------

void GraphicsItemsTest::lineItemBounds()
{
    LineGraphicsItem item;
    item.setLine(5, 5, 50, 50);
    QCOMPARE(item.boundingRect(), QRectF(0, 0, 1, 1));
    item.set_image_size(64, 48);
    QCOMPARE(item.boundingRect(), QRectF(0, 0, 64, 48));
    item.clear_image();
    QCOMPARE(item.boundingRect(), QRectF(0, 0, 1, 1));
}

void GraphicsItemsTest::lineItemRequestsARepaint()
{
    QGraphicsScene scene;
    auto* const item = new LineGraphicsItem;
    item->set_image_size(64, 48);
    scene.addItem(item);
    QCoreApplication::processEvents();
    QList<QRectF> repaints;
    connect(&scene, &QGraphicsScene::changed, &scene, [&](const QList<QRectF>& region) { repaints << region; });
    item->update_line();
    QTRY_COMPARE(repaints, (QList<QRectF>{QRectF(0, 0, 64, 48)}));
}

void GraphicsItemsTest::lineItemDrawsOutlineThenFill()
{
    LineGraphicsItem item;
    item.setLine(20, 50, 100, 50);
    NotingDevice device;
    paintOn(device, item);
    const auto& strokes = device.engine.strokes;
    QCOMPARE(strokes.size(), 6);
    for (int i = 0; i < strokes.size(); ++i) {
        const QPen& pen = strokes[i].pen;
        QCOMPARE(pen.color(), QColor(i < 3 ? Qt::black : Qt::yellow));
        QCOMPARE(pen.brush().style(), Qt::SolidPattern);
        QCOMPARE(pen.widthF(), i < 3 ? 6.0 : 2.0);
        QCOMPARE(pen.style(), Qt::SolidLine);
        QCOMPARE(pen.capStyle(), Qt::SquareCap);
        QCOMPARE(pen.joinStyle(), Qt::BevelJoin);
        QCOMPARE(strokes[i].line, strokes[i % 3].line);
    }
    QCOMPARE(strokes[0].line, QLineF(20, 50, 100, 50));
}

void GraphicsItemsTest::lineItemHeadStrokes_data()
{
    QTest::addColumn<QLineF>("line");
    QTest::newRow("to the right") << QLineF(20, 50, 100, 50);
    QTest::newRow("upward") << QLineF(50, 90, 50, 10);
    QTest::newRow("askew") << QLineF(80, 70, 13, 31);
    QTest::newRow("shorter than its head") << QLineF(50, 50, 53, 50);
}

void GraphicsItemsTest::lineItemHeadStrokes()
{
    QFETCH(QLineF, line);
    constexpr double kDegree = M_PI / 180;
    LineGraphicsItem item;
    item.setLine(line);
    NotingDevice device;
    paintOn(device, item);
    for (const int arm : {1, 2}) {
        const QLineF stroke = device.engine.strokes.at(arm).line;
        // Counter-clockwise on a screen whose y grows downward.
        const double angle = std::atan2(-line.dy(), line.dx()) + (arm == 1 ? 32 : -32) * kDegree;
        QCOMPARE(stroke.p1(), line.p1());
        QVERIFY(std::abs(stroke.x2() - (line.x1() + 12 * std::cos(angle))) < 1e-6);
        QVERIFY(std::abs(stroke.y2() - (line.y1() - 12 * std::sin(angle))) < 1e-6);
    }
}

void GraphicsItemsTest::lineItemPixels()
{
    LineGraphicsItem item;
    item.setLine(20, 50, 100, 50);
    const QImage result = painted(item, {120, 100});
    const QColor black(Qt::black);
    const QColor yellow(Qt::yellow);
    const QColor white(Qt::white);
    QCOMPARE(at(result, 70, 50), yellow);
    QCOMPARE(at(result, 70, 52), black);
    QCOMPARE(at(result, 70, 47.5), black);
    QCOMPARE(at(result, 70, 55), white);
    QCOMPARE(at(result, 70, 44), white);
    // In the middle of both head strokes, and beyond their ends.
    const double x = std::cos(32 * M_PI / 180);
    const double y = std::sin(32 * M_PI / 180);
    for (const int side : {-1, 1}) {
        QCOMPARE(at(result, 20 + 9 * x, 50 + side * 9 * y), yellow);
        QCOMPARE(at(result, 20 + 17 * x, 50 + side * 17 * y), white);
    }
    QCOMPARE(at(result, 101.5, 50), black);
    QCOMPARE(at(result, 104, 50), white);
}

void GraphicsItemsTest::lineItemOfZeroLength()
{
    LineGraphicsItem item;
    item.setLine(50, 50, 50, 50);
    NotingDevice device;
    paintOn(device, item);
    for (const auto& stroke : device.engine.strokes)
        QVERIFY(stroke.line.p1() == stroke.line.p2());

    QImage result = painted(item, {100, 100});
    QPainter(&result).fillRect(QRect(46, 46, 8, 8), Qt::white);
    QCOMPARE(result, paper({100, 100}));
}

} // namespace

ORVO_TEST_CLASS(GraphicsItemsTest)
#include "GraphicsItemsTest.moc"
