#include "display/LineGraphicsItem.h"

#include <QLineF>
#include <QPainter>
#include <QPen>

#include <array>

namespace {

constexpr qreal kHeadAngle = 32.0; // degrees on either side of the line
constexpr qreal kHeadLength = 12.0;
constexpr qreal kOutlineWidth = 6.0;
constexpr qreal kFillWidth = 2.0;

QLineF headStroke(const QLineF& line, qreal turn)
{
    QLineF stroke = line;
    stroke.setAngle(line.angle() + turn);
    if (!stroke.isNull())
        stroke.setLength(kHeadLength);
    return stroke;
}

} // namespace

void LineGraphicsItem::set_image_size(int width, int height)
{
    m_imageWidth = width;
    m_imageHeight = height;
}

void LineGraphicsItem::clear_image()
{
    set_image_size(1, 1);
}

void LineGraphicsItem::update_line()
{
    update();
}

QRectF LineGraphicsItem::boundingRect() const
{
    return {0, 0, qreal(m_imageWidth), qreal(m_imageHeight)};
}

void LineGraphicsItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    const std::array<QLineF, 3> arrow = {line(), headStroke(line(), kHeadAngle), headStroke(line(), -kHeadAngle)};
    const auto drawArrow = [&](const QColor& colour, qreal width) {
        painter->setPen(QPen(QBrush(colour), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        painter->drawLines(arrow.data(), static_cast<int>(arrow.size()));
    };
    drawArrow(Qt::black, kOutlineWidth);
    drawArrow(Qt::yellow, kFillWidth);
}
