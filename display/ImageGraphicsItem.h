#pragma once

#include <QGraphicsPixmapItem>
#include <QImage>
#include <QPixmap>

/// Paints the newest image at exactly the size that was set, whatever the image's own size.
class ImageGraphicsItem : public QGraphicsPixmapItem {
public:
    /// In pixels. The scene is not notified, because the size is set before the first image.
    void set_image_size(int width, int height);
    /// A 32-bit image is shared, not copied; the alpha of ARGB32 is ignored.
    void update_image(const QImage& image);

    /// From the next repaint on nothing is painted; no repaint is requested.
    void clear_image();

    [[nodiscard]] QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    bool m_hasImage = false;
    QPixmap m_pixmap; // the base class's pixmap is not used
    int m_imageWidth = 1;
    int m_imageHeight = 1;
};
