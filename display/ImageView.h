#pragma once

#include <QFrame>
#include <QImage>

class GraphicsView;
class ImageGraphicsItem;
class MainWindow;
class QGraphicsScene;
class QLabel;
class QLayout;
class QToolButton;

/// The main window's central widget while a camera is open: a scene with the newest image, scaled by a zoom factor, and
/// a bar above it that switches between rubber-band selection and dragging. Apart from the initial size, it is
/// controlled only by the main window's signals. Lives on the GUI thread.
class ImageView : public QFrame {
    Q_OBJECT

public:
    explicit ImageView(MainWindow* parent);

    [[nodiscard]] GraphicsView* view() const noexcept { return m_view; }

public slots:
    void set_image_size(int width, int height);
    /// Double and halve the zoom without a limit. The main window's actions stop at 8 and 0.25, except the menu's Zoom
    /// Out.
    void zoomIn();
    void zoomOut();
    void zoomReset();
    void resetView();
    void setupMatrix();
    void togglePointerMode();
    void toggleOpenGL();
    void update_image(QImage pimage);
    /// The screen keeps its contents until something repaints the view.
    void clear_image();

private:
    [[nodiscard]] QLayout* createModeBar();
    void connectTo(MainWindow* mainWindow);

    GraphicsView* m_view;
    QLabel* m_modeLabel;
    QToolButton* m_selectButton;
    QToolButton* m_dragButton;
    QGraphicsScene* m_scene;
    ImageGraphicsItem* m_imageItem; // owned by the scene
    int m_imageWidth = 1;
    int m_imageHeight = 1;
    double m_zoomScale = 1.0;
};
