#pragma once

#include <QCoreApplication>
#include <QWheelEvent>
#include <QWidget>

#include <cstdlib>

/// Turns the mouse wheel above the middle of the widget; away from the user where `notches` is positive.
inline void turnWheel(QWidget& widget, int notches)
{
    constexpr int kNotch = 120;
    const QPoint centre = widget.rect().center();
    for (int i = 0; i < std::abs(notches); ++i) {
        QWheelEvent event(centre, widget.mapToGlobal(centre), {}, QPoint(0, notches > 0 ? kNotch : -kNotch),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&widget, &event);
    }
}
