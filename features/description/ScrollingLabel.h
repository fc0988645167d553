#pragma once

#include <QLabel>
#include <QScrollBar>
#include <QTextLayout>

/// A label of plain text of any length: broken at its words and, where one is too wide, within it; higher than
/// `mostLines` lines it never asks to be, and what does not fit is scrolled. Lives on the GUI thread.
///
/// The text widgets of the toolkit do not serve: those that scroll have no height for a width, so the box would neither
/// shrink to a short text nor stop at `mostLines`; a QLabel does not break a line within a word.
class ScrollingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ScrollingLabel(int mostLines, QWidget* parent = nullptr);
    ~ScrollingLabel() override;

    /// Shows the beginning of the text; one that is shown already stays where it was scrolled to.
    void showText(const QString& text);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// Breaks the label's text into lines, at most so many. Returns their height.
    int layOut(QTextLayout& lines, int width, int mostLines) const;
    void arrange();

    const int m_mostLines;
    QTextLayout m_lines;
    QScrollBar m_scrollBar{Qt::Vertical, this};
};
