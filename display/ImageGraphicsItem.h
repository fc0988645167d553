#pragma once

#include <QGraphicsPixmapItem>
#include <QImage>
#include <QPixmap>

/// Paints the newest image at exactly the size that was set, whatever the image's own size.
class ImageGraphicsItem : public QGraphicsPixmapItem {
public:
    /// Sets the size in pixels. Does not notify the scene, because the size is set before the first image.
    void set_image_size(int width, int height);
    /// Sets the image. A 32-bit image is shared, not copied; the alpha channel of ARGB32 is ignored.
    void update_image(const QImage& image);

    /// Removes the image. Takes effect at the next repaint, but does not request one.
    void clear_image();

    [[nodiscard]] QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    bool m_hasImage = false;
    QPixmap m_pixmap; // the base class's pixmap is not used
    int m_imageWidth = 1;
    int m_imageHeight = 1;
};
