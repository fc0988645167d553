#include "display/ImageGraphicsItem.h"

#include <QPainter>

#include <memory>

namespace {

/// The same pixels as RGB32, without a copy. A camera image has no transparency: its fourth byte is padding. Treating
/// it as alpha would require a scan of all pixels and a deep copy of each image.
QImage opaqueView(const QImage& image)
{
    auto kept = std::make_unique<QImage>(image);
    const uchar* const pixels = kept->constBits();
    const auto giveBack = [](void* owner) { delete static_cast<QImage*>(owner); };
    return {pixels,   image.width(), image.height(), image.bytesPerLine(), QImage::Format_RGB32,
            giveBack, kept.release()};
}

} // namespace

void ImageGraphicsItem::set_image_size(int width, int height)
{
    m_imageWidth = width;
    m_imageHeight = height;
}

void ImageGraphicsItem::update_image(const QImage& image)
{
    m_hasImage = true;
    m_pixmap = QPixmap::fromImage(image.format() == QImage::Format_ARGB32 ? opaqueView(image) : image, Qt::AutoColor);
    update();
}

void ImageGraphicsItem::clear_image()
{
    m_hasImage = false;
    set_image_size(1, 1);
}

QRectF ImageGraphicsItem::boundingRect() const
{
    return {0, 0, qreal(m_imageWidth), qreal(m_imageHeight)};
}

void ImageGraphicsItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_hasImage)
        painter->drawPixmap(QRect(0, 0, m_imageWidth, m_imageHeight), m_pixmap);
}
