#pragma once

#include <QGraphicsView>

class ImageView;

/// The graphics view inside an ImageView.
class GraphicsView : public QGraphicsView {
    Q_OBJECT

public:
    explicit GraphicsView(ImageView* owner);

    [[nodiscard]] ImageView* owner() const noexcept { return m_owner; }

private:
    ImageView* const m_owner;
};
