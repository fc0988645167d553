#include "display/ImageView.h"

#include "app/MainWindow.h"
#include "display/GraphicsView.h"
#include "display/ImageGraphicsItem.h"

#include <QButtonGroup>
#include <QGraphicsScene>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace {

constexpr double kZoomStep = 2.0;
constexpr int kOriginMargin = 50;
constexpr int kModeBarSpacing = 5;
constexpr QMargins kMargins(8, 2, 4, 4);
constexpr int kSpacing = 2;

} // namespace

ImageView::ImageView(MainWindow* parent)
    : QFrame(parent)
    , m_view(new GraphicsView(this))
    , m_modeLabel(new QLabel(tr("Pointer Mode : "), this))
    , m_selectButton(new QToolButton(this))
    , m_dragButton(new QToolButton(this))
    , m_scene(new QGraphicsScene(this))
    , m_imageItem(new ImageGraphicsItem)
{
    m_imageItem->setZValue(0.0);
    m_scene->addItem(m_imageItem);

    setFrameStyle(int(StyledPanel) | int(Sunken));

    m_view->setRenderHint(QPainter::Antialiasing, false);
    m_view->setDragMode(QGraphicsView::RubberBandDrag);
    m_view->setOptimizationFlags(QGraphicsView::DontSavePainterState);
    m_view->setViewportUpdateMode(QGraphicsView::SmartViewportUpdate);
    m_view->setTransformationAnchor(QGraphicsView::AnchorUnderMouse);

    auto* const layout = new QGridLayout(this);
    layout->addLayout(createModeBar(), 0, 0);
    layout->addWidget(m_view, 1, 0);
    layout->setContentsMargins(kMargins);
    layout->setSpacing(kSpacing);

    connectTo(parent);
    setupMatrix();
    m_view->setScene(m_scene);
}

QLayout* ImageView::createModeBar()
{
    m_selectButton->setText(tr(" Select "));
    m_selectButton->setCheckable(true);
    m_selectButton->setChecked(true);
    m_dragButton->setText(tr(" Drag "));
    m_dragButton->setCheckable(true);
    m_dragButton->setChecked(false);

    auto* const group = new QButtonGroup(this);
    group->setExclusive(true);
    group->addButton(m_selectButton);
    group->addButton(m_dragButton);

    auto* const bar = new QHBoxLayout;
    bar->addStretch();
    bar->addWidget(m_modeLabel);
    bar->addWidget(m_selectButton);
    bar->addWidget(m_dragButton);
    bar->setSpacing(kModeBarSpacing);
    return bar;
}

void ImageView::connectTo(MainWindow* mainWindow)
{
    connect(m_selectButton, &QToolButton::toggled, this, &ImageView::togglePointerMode);
    connect(m_dragButton, &QToolButton::toggled, this, &ImageView::togglePointerMode);
    connect(mainWindow, &MainWindow::Set_Image_Size, this, &ImageView::set_image_size);
    connect(mainWindow, &MainWindow::Update_Image, this, &ImageView::update_image);
    connect(mainWindow, &MainWindow::Clear_Image, this, &ImageView::clear_image);
    connect(mainWindow, &MainWindow::Zoom_In, this, &ImageView::zoomIn);
    connect(mainWindow, &MainWindow::Zoom_Out, this, &ImageView::zoomOut);
    connect(mainWindow, &MainWindow::Zoom_Reset, this, &ImageView::zoomReset);
}

void ImageView::set_image_size(int width, int height)
{
    m_imageWidth = width;
    m_imageHeight = height;
    m_imageItem->set_image_size(width, height);
}

void ImageView::zoomIn()
{
    m_zoomScale *= kZoomStep;
    setupMatrix();
}

void ImageView::zoomOut()
{
    m_zoomScale /= kZoomStep;
    setupMatrix();
}

void ImageView::zoomReset()
{
    m_zoomScale = 1.0;
    resetView();
}

void ImageView::resetView()
{
    setupMatrix();
    m_view->ensureVisible(QRectF(0, 0, 0, 0), kOriginMargin, kOriginMargin);
}

void ImageView::setupMatrix()
{
    m_view->setTransform(QTransform::fromScale(m_zoomScale, m_zoomScale));
}

void ImageView::togglePointerMode()
{
    const bool select = m_selectButton->isChecked();
    m_view->setDragMode(select ? QGraphicsView::RubberBandDrag : QGraphicsView::ScrollHandDrag);
    m_view->setInteractive(select);
}

void ImageView::toggleOpenGL() {}

void ImageView::update_image(QImage pimage)
{
    m_imageItem->update_image(pimage);
}

void ImageView::clear_image()
{
    m_imageWidth = 1;
    m_imageHeight = 1;
    m_imageItem->clear_image();
}
