#pragma once

#include <QRect>

class QHelpEvent;
class QString;
class QWidget;

/// Handles a QEvent::ToolTip: shows `text` as plain text with long lines wrapped. The tool tip stays while the pointer
/// is within `area` of the widget (empty: the whole widget). An empty text hides it; a very long one is truncated.
void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget, const QRect& area = {});
