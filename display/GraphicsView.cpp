#include "display/GraphicsView.h"

#include "display/ImageView.h"

GraphicsView::GraphicsView(ImageView* owner)
    : QGraphicsView(owner)
    , m_owner(owner)
{
}
