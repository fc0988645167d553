#include "features/PlainToolTip.h"

#include <QHelpEvent>
#include <QString>
#include <QToolTip>

void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget, const QRect& area)
{
    // Tool tips guess the format from the text: with markup around it there is nothing left to guess, and long lines
    // are broken.
    const QString shown = text.isEmpty() ? text : "<p style=\"white-space:pre-wrap\">" + text.toHtmlEscaped() + "</p>";
    QToolTip::showText(event.globalPos(), shown, widget, area);
}
