#include "features/description/PlainToolTip.h"

#include <QHelpEvent>
#include <QString>
#include <QToolTip>

namespace {

// A tool tip grows with its text, beyond the edges of the screen.
constexpr int kMostCharacters = 2000;
constexpr int kMostLines = 40;
constexpr int kLongestLine = 80; // in characters; longer ones are wrapped

bool endsLine(QChar character)
{
    return character == '\n' || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

bool hasLongLine(const QString& text)
{
    int length = 0;
    for (const QChar character : text) {
        length = endsLine(character) ? 0 : length + 1;
        if (length > kLongestLine)
            return true;
    }
    return false;
}

QString beginningOf(const QString& text)
{
    int lines = 1;
    for (int i = 0; i < text.size(); ++i) {
        if (i == kMostCharacters || (endsLine(text.at(i)) && ++lines > kMostLines))
            return text.left(i) + QChar(0x2026); // an ellipsis
    }
    return text;
}

} // namespace

void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget, const QRect& area)
{
    QString shown = beginningOf(text);
    // QToolTip guesses whether a text is rich text, so pass explicit markup. Its own line breaking would make even a
    // short text about as high as wide, so wrap only texts with long lines.
    if (!shown.isEmpty()) {
        const QString breaking = hasLongLine(shown) ? QStringLiteral("pre-wrap") : QStringLiteral("pre");
        shown = "<p style=\"white-space:" + breaking + "\">" + shown.toHtmlEscaped() + "</p>";
    }
    QToolTip::showText(event.globalPos(), shown, widget, area);
}
