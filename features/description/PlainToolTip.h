#pragma once

#include <QRect>

class QHelpEvent;
class QString;
class QWidget;

/// Answers a QEvent::ToolTip with `text` as it stands, long lines broken, whatever markup it may look like. The tool
/// tip stays while the pointer is within `area` of the widget (all of it where empty). An empty text hides it, of a
/// very long one the beginning is shown.
void showPlainToolTip(const QHelpEvent& event, const QString& text, QWidget* widget, const QRect& area = {});
