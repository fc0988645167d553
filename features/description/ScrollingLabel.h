#pragma once

#include <QLabel>
#include <QScrollBar>
#include <QTextLayout>

/// A label for plain text of any length. It wraps lines between words and, if a word is too wide, within it. Its
/// preferred height is at most `mostLines` lines; longer texts are scrolled. Lives on the GUI thread.
///
/// The toolkit has no such widget: its scrolling widgets do not support height for width, so the box would neither
/// shrink to a short text nor stop at `mostLines`; and QLabel does not break a line within a word.
class ScrollingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ScrollingLabel(int mostLines, QWidget* parent = nullptr);
    ~ScrollingLabel() override;

    /// Shows the beginning of the text. Keeps the scroll position if the text has not changed.
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
    /// Breaks the label's text into at most `mostLines` lines. Returns their height.
    int layOut(QTextLayout& lines, int width, int mostLines) const;
    void arrange();

    const int m_mostLines;
    QTextLayout m_lines;
    QScrollBar m_scrollBar{Qt::Vertical, this};
};
