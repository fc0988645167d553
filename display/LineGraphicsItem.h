#pragma once

#include <QGraphicsLineItem>

/// A yellow arrow with a black outline, its head at the line's first point, to mark a direction over an image.
class LineGraphicsItem : public QGraphicsLineItem {
public:
    void set_image_size(int width, int height);
    void clear_image();
    void update_line();

    [[nodiscard]] QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    int m_imageWidth = 1;
    int m_imageHeight = 1;
};
