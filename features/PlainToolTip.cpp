#include "features/PlainToolTip.h"

#include <QHelpEvent>
#include <QString>
#include <QToolTip>

namespace {

constexpr int kMostCharacters = 2000; // a tool tip grows with its text, past the edges of the screen

} // namespace

void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget, const QRect& area)
{
    QString shown = text;
    if (shown.size() > kMostCharacters)
        shown = shown.left(kMostCharacters) + QChar(0x2026); // an ellipsis
    // Tool tips guess the format from the text: with markup around it there is nothing left to guess, and long lines
    // are broken.
    if (!shown.isEmpty())
        shown = "<p style=\"white-space:pre-wrap\">" + shown.toHtmlEscaped() + "</p>";
    QToolTip::showText(event.globalPos(), shown, widget, area);
}
