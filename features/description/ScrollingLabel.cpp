#include "features/description/ScrollingLabel.h"

#include <QCoreApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <climits>
#include <cmath>

namespace {

// In characters. The window does not grow for this label.
constexpr int kUsualWidth = 30;
constexpr int kLeastWidth = 8;

/// Splits long words: finding a line break takes time in proportion to the word's length, for each line.
QString breakable(const QString& text)
{
    constexpr int kLongestWord = 100;
    constexpr QChar kZeroWidthSpace(0x200B);
    QString pieces;
    pieces.reserve(text.size() + text.size() / kLongestWord);
    int length = 0;
    for (const QChar character : text) {
        if (length >= kLongestWord && !character.isLowSurrogate() && !character.isMark()) {
            pieces += kZeroWidthSpace;
            length = 0;
        }
        length = character.isSpace() ? 0 : length + 1;
        pieces += character == '\n' ? QChar(QChar::LineSeparator) : character;
    }
    return pieces;
}

} // namespace

ScrollingLabel::ScrollingLabel(int mostLines, QWidget* parent)
    : QLabel(parent)
    , m_mostLines(mostLines)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_scrollBar.hide();
    connect(&m_scrollBar, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
}

ScrollingLabel::~ScrollingLabel() = default;

void ScrollingLabel::showText(const QString& text)
{
    if (text == this->text())
        return;
    setText(text);
    m_scrollBar.setValue(0);
    arrange();
}

QSize ScrollingLabel::sizeHint() const
{
    const int width = kUsualWidth * fontMetrics().averageCharWidth();
    return {width, heightForWidth(width)};
}

QSize ScrollingLabel::minimumSizeHint() const
{
    return {kLeastWidth * fontMetrics().averageCharWidth(), fontMetrics().height()};
}

int ScrollingLabel::heightForWidth(int width) const
{
    QTextLayout lines;
    return layOut(lines, width, m_mostLines);
}

int ScrollingLabel::layOut(QTextLayout& lines, int width, int mostLines) const
{
    QTextOption option(Qt::AlignLeft);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    lines.setTextOption(option);
    lines.setFont(font());
    lines.setText(breakable(text()));
    const double leading = QFontMetricsF(font()).leading(); // negative for some fonts
    double height = -leading;
    lines.beginLayout();
    for (int i = 0; i < mostLines; ++i) {
        QTextLine line = lines.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        height += leading;
        line.setPosition({0, height});
        height += line.height();
    }
    lines.endLayout();
    return static_cast<int>(std::ceil(height));
}

void ScrollingLabel::arrange()
{
    int height = layOut(m_lines, width(), INT_MAX);
    const bool scrolls = height > this->height();
    if (scrolls) {
        const int barWidth = m_scrollBar.sizeHint().width();
        height = layOut(m_lines, width() - barWidth, INT_MAX);
        m_scrollBar.setGeometry(width() - barWidth, 0, barWidth, this->height());
    }
    m_scrollBar.setVisible(scrolls);
    m_scrollBar.setPageStep(this->height());
    m_scrollBar.setSingleStep(fontMetrics().lineSpacing());
    m_scrollBar.setMaximum(scrolls ? height - this->height() : 0);
    update();
}

void ScrollingLabel::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    m_lines.draw(&painter, QPointF(0, -m_scrollBar.value()), {}, event->rect());
}

void ScrollingLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    arrange();
}

void ScrollingLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        arrange();
}

void ScrollingLabel::wheelEvent(QWheelEvent* event)
{
    QCoreApplication::sendEvent(&m_scrollBar, event);
}
