#include "display/ImageGraphicsItem.h"

#include <QPainter>

void ImageGraphicsItem::set_image_size(int width, int height)
{
    m_imageWidth = width;
    m_imageHeight = height;
}

void ImageGraphicsItem::update_image(const QImage& image)
{
    m_hasImage = true;
    m_pixmap = QPixmap::fromImage(image, Qt::AutoColor);
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
