#pragma once

#include <QGraphicsLineItem>

/// A yellow arrow with a black outline that marks a direction in an image. Its head is at the first point of the line.
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
