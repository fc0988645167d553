#pragma once

#include <QGraphicsPixmapItem>
#include <QImage>
#include <QPixmap>

/// Paints the newest image over exactly the size that it was told, whatever the image's own size.
class ImageGraphicsItem : public QGraphicsPixmapItem {
public:
    /// In pixels. The scene is not told: the size comes before the first image.
    void set_image_size(int width, int height);
    /// An image of 32 bits is shared, not copied; one of format ARGB32 is taken for opaque.
    void update_image(const QImage& image);

    /// Nothing is painted any more, from the next repaint on; none is requested.
    void clear_image();

    [[nodiscard]] QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    bool m_hasImage = false;
    QPixmap m_pixmap; // the base class's pixmap is not used
    int m_imageWidth = 1;
    int m_imageHeight = 1;
};
