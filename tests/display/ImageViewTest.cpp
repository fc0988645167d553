// The image view: its parts, the main window's signals, zoom, pointer modes and the image shown.

#include "display/ImageView.h"
#include "app/MainWindow.h"
#include "display/GraphicsView.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QButtonGroup>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QToolButton>

namespace {

/// A view in a main window without a camera.
struct Fixture {
    Fixture()
    {
        window.setCentralWidget(view);
        window.show();
        QCoreApplication::processEvents();
    }

    [[nodiscard]] double scale() const { return view->view()->transform().m11(); }
    [[nodiscard]] QToolButton* button(const QString& text) const
    {
        for (auto* const candidate : view->findChildren<QToolButton*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
    [[nodiscard]] QImage rendered(QSize size) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        view->view()->scene()->render(&painter, QRectF(QPoint(), size), QRectF(QPoint(), size));
        return image;
    }

    MainWindow window;
    ImageView* view = new ImageView(&window);
};

QImage filled(QSize size, Qt::GlobalColor colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

class ImageViewTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void slotsAreKnownByName();
    void frameAndGraphicsView();
    void modeBar();
    void layoutOfTheParts();
    void sceneHoldsTheImageItem();
    void partsAreDestroyedWithTheView();

    void zoomInDoublesWithoutALimit();
    void zoomOutHalvesWithoutALimit();
    void zoomReplacesTheMatrix();
    void zoomResetShowsTheOrigin();
    void resetViewKeepsTheZoom();
    void openGLDoesNothing();

    void pointerModes();
    void pointerModeButtonsExcludeEachOther();

    void followsTheSignalsOfTheMainWindow();
    void imageIsStretchedToTheSize();
    void imageIsShared();
    void clearedImageStaysOnScreen();
};

// --- Parts ----------------------------------------------------------------------------------------------------------

void ImageViewTest::slotsAreKnownByName()
{
    const QMetaObject& meta = ImageView::staticMetaObject;
    QStringList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        own << meta.method(i).methodSignature();
    QCOMPARE(own, (QStringList{"set_image_size(int,int)", "zoomIn()", "zoomOut()", "zoomReset()", "resetView()",
                               "setupMatrix()", "togglePointerMode()", "toggleOpenGL()", "update_image(QImage)",
                               "clear_image()"}));
}

void ImageViewTest::frameAndGraphicsView()
{
    const Fixture f;
    QCOMPARE(f.view->frameShape(), QFrame::StyledPanel);
    QCOMPARE(f.view->frameShadow(), QFrame::Sunken);
    const GraphicsView& view = *f.view->view();
    QCOMPARE(view.owner(), f.view);
    QVERIFY(!view.renderHints().testFlag(QPainter::Antialiasing));
    QCOMPARE(view.dragMode(), QGraphicsView::RubberBandDrag);
    QVERIFY(view.isInteractive());
    QCOMPARE(view.optimizationFlags(), QGraphicsView::OptimizationFlags(QGraphicsView::DontSavePainterState));
    QCOMPARE(view.viewportUpdateMode(), QGraphicsView::SmartViewportUpdate);
    QCOMPARE(view.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
    QVERIFY(view.transform().isIdentity());
}

void ImageViewTest::modeBar()
{
    const Fixture f;
    const auto labels = f.view->findChildren<QLabel*>();
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels[0]->text(), QString("Pointer Mode : "));
    const QToolButton* select = f.button(" Select ");
    const QToolButton* drag = f.button(" Drag ");
    QVERIFY(select);
    QVERIFY(drag);
    QVERIFY(select->isCheckable() && select->isChecked());
    QVERIFY(drag->isCheckable() && !drag->isChecked());
    QVERIFY(select->group() && select->group() == drag->group());
    QVERIFY(select->group()->exclusive());

    auto* const bar =
        qobject_cast<QHBoxLayout*>(qobject_cast<QGridLayout*>(f.view->layout())->itemAtPosition(0, 0)->layout());
    QVERIFY(bar);
    QCOMPARE(bar->spacing(), 5);
    QCOMPARE(bar->count(), 4);
    QVERIFY(bar->itemAt(0)->spacerItem());
    QCOMPARE(bar->itemAt(1)->widget(), labels[0]);
    QCOMPARE(bar->itemAt(2)->widget(), select);
    QCOMPARE(bar->itemAt(3)->widget(), drag);
}

void ImageViewTest::layoutOfTheParts()
{
    const Fixture f;
    const auto* grid = qobject_cast<QGridLayout*>(f.view->layout());
    QVERIFY(grid);
    QCOMPARE(grid->contentsMargins(), QMargins(8, 2, 4, 4));
    QCOMPARE(grid->horizontalSpacing(), 2);
    QCOMPARE(grid->verticalSpacing(), 2);
    QCOMPARE(grid->itemAtPosition(1, 0)->widget(), f.view->view());
}

void ImageViewTest::sceneHoldsTheImageItem()
{
    const Fixture f;
    const QGraphicsScene* scene = f.view->view()->scene();
    QVERIFY(scene);
    QCOMPARE(scene->items().size(), 1);
    QCOMPARE(scene->items()[0]->zValue(), 0.0);
    QCOMPARE(scene->items()[0]->boundingRect(), QRectF(0, 0, 1, 1));
    f.view->set_image_size(640, 480);
    QCOMPARE(scene->items()[0]->boundingRect(), QRectF(0, 0, 640, 480));
}

void ImageViewTest::partsAreDestroyedWithTheView()
{
    const Fixture f;
    const QPointer<QGraphicsScene> scene = f.view->view()->scene();
    const QPointer<QButtonGroup> group = f.button(" Select ")->group();
    QVERIFY(scene && group);
    delete f.view;
    QVERIFY(!scene);
    QVERIFY(!group);
}

// --- Zoom -----------------------------------------------------------------------------------------------------------

void ImageViewTest::zoomInDoublesWithoutALimit()
{
    const Fixture f;
    for (const double expected : {2.0, 4.0, 8.0, 16.0}) {
        f.view->zoomIn();
        QCOMPARE(f.view->view()->transform(), QTransform::fromScale(expected, expected));
    }
}

void ImageViewTest::zoomOutHalvesWithoutALimit()
{
    const Fixture f;
    for (const double expected : {0.5, 0.25, 0.125}) {
        f.view->zoomOut();
        QCOMPARE(f.view->view()->transform(), QTransform::fromScale(expected, expected));
    }
}

void ImageViewTest::zoomReplacesTheMatrix()
{
    const Fixture f;
    f.view->view()->rotate(30);
    f.view->view()->scale(3, 5);
    f.view->setupMatrix();
    QVERIFY(f.view->view()->transform().isIdentity());
}

void ImageViewTest::zoomResetShowsTheOrigin()
{
    const Fixture f;
    GraphicsView& view = *f.view->view();
    f.view->set_image_size(4000, 3000);
    f.view->update_image(filled({40, 30}, Qt::red));
    QCoreApplication::processEvents(); // updates the scene's rectangle
    QCOMPARE(view.sceneRect(), QRectF(0, 0, 4000, 3000));
    f.view->zoomIn();
    f.view->zoomIn();
    view.centerOn(3900, 2900);
    QVERIFY(!view.viewport()->rect().contains(view.mapFromScene(0, 0)));

    f.view->zoomReset();
    QCOMPARE(f.scale(), 1.0);
    QVERIFY(view.viewport()->rect().contains(view.mapFromScene(0, 0)));
}

void ImageViewTest::resetViewKeepsTheZoom()
{
    const Fixture f;
    GraphicsView& view = *f.view->view();
    view.setSceneRect(-1000, -1000, 5000, 5000);
    f.view->zoomIn();
    view.centerOn(3000, 3000);
    f.view->resetView();
    QCOMPARE(f.scale(), 2.0);
    // Scrolling from the lower right stops as soon as the origin is 50 pixels inside the view.
    QCOMPARE(view.mapFromScene(0, 0), QPoint(50, 50));
}

void ImageViewTest::openGLDoesNothing()
{
    const Fixture f;
    const QWidget* viewport = f.view->view()->viewport();
    f.view->toggleOpenGL();
    QCOMPARE(f.view->view()->viewport(), viewport);
    QVERIFY(f.view->view()->transform().isIdentity());
}

// --- Pointer mode ---------------------------------------------------------------------------------------------------

void ImageViewTest::pointerModes()
{
    const Fixture f;
    f.button(" Drag ")->click();
    QCOMPARE(f.view->view()->dragMode(), QGraphicsView::ScrollHandDrag);
    QVERIFY(!f.view->view()->isInteractive());
    f.button(" Select ")->click();
    QCOMPARE(f.view->view()->dragMode(), QGraphicsView::RubberBandDrag);
    QVERIFY(f.view->view()->isInteractive());
}

void ImageViewTest::pointerModeButtonsExcludeEachOther()
{
    const Fixture f;
    f.button(" Drag ")->click();
    QVERIFY(!f.button(" Select ")->isChecked());
    f.button(" Drag ")->click();
    QVERIFY2(f.button(" Drag ")->isChecked(), "one button is always checked");
    f.button(" Select ")->setChecked(true);
    QVERIFY(!f.button(" Drag ")->isChecked());
    QCOMPARE(f.view->view()->dragMode(), QGraphicsView::RubberBandDrag);
}

// --- Images ---------------------------------------------------------------------------------------------------------

void ImageViewTest::followsTheSignalsOfTheMainWindow()
{
    Fixture f;
    emit f.window.Set_Image_Size(6, 4);
    emit f.window.Update_Image(filled({6, 4}, Qt::red));
    QCOMPARE(f.rendered({6, 4}), filled({6, 4}, Qt::red));
    emit f.window.Zoom_In();
    QCOMPARE(f.scale(), 2.0);
    emit f.window.Zoom_Out();
    emit f.window.Zoom_Out();
    QCOMPARE(f.scale(), 0.5);
    emit f.window.Zoom_Reset();
    QCOMPARE(f.scale(), 1.0);
    emit f.window.Clear_Image();
    QCOMPARE(f.rendered({6, 4}), filled({6, 4}, Qt::white));
}

void ImageViewTest::imageIsStretchedToTheSize()
{
    const Fixture f;
    f.view->set_image_size(1280, 960);
    QImage image = filled({640, 480}, Qt::red);
    image.setPixelColor(639, 479, Qt::blue);
    f.view->update_image(image);
    const QImage shown = f.rendered({1290, 970});
    QCOMPARE(shown.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(1277, 957), QColor(Qt::red));
    QCOMPARE(shown.pixelColor(1278, 958), QColor(Qt::blue));
    QCOMPARE(shown.pixelColor(1279, 959), QColor(Qt::blue));
    QCOMPARE(shown.pixelColor(1280, 500), QColor(Qt::white));
    QCOMPARE(shown.pixelColor(500, 960), QColor(Qt::white));
}

void ImageViewTest::imageIsShared()
{
    Fixture f;
    const QImage image = filled({640, 480}, Qt::red);
    emit f.window.Update_Image(image);
    QVERIFY2(!image.isDetached(), "the view shares the pixels");
}

void ImageViewTest::clearedImageStaysOnScreen()
{
    Fixture f;
    f.view->set_image_size(200, 100);
    f.view->update_image(filled({200, 100}, Qt::red));
    QCoreApplication::processEvents();
    QSignalSpy repaints(f.view->view()->scene(), &QGraphicsScene::changed);
    f.view->clear_image();
    QCoreApplication::processEvents();
    QCOMPARE(repaints.count(), 0);
    QCOMPARE(f.rendered({200, 100}), filled({200, 100}, Qt::white));
}

} // namespace

ORVO_TEST_CLASS(ImageViewTest)
#include "ImageViewTest.moc"
