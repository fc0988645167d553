#pragma once

#include <QRect>

class QHelpEvent;
class QString;
class QWidget;

/// Answers a QEvent::ToolTip with `text` as plain text, long lines broken. The tool tip stays while the pointer is
/// within `area` of the widget (empty: anywhere on it). An empty text hides it; a very long one is cut.
void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget, const QRect& area = {});
