#pragma once

#include <QWidget>

/// Pauses a widget's updates while many of its parts change; can be nested.
class UpdatesPaused {
public:
    explicit UpdatesPaused(QWidget& widget)
        : m_widget(widget)
        , m_wasPaused(widget.testAttribute(Qt::WA_ForceUpdatesDisabled))
    {
        m_widget.setUpdatesEnabled(false);
    }
    ~UpdatesPaused() { m_widget.setUpdatesEnabled(!m_wasPaused); }
    Q_DISABLE_COPY_MOVE(UpdatesPaused)

private:
    QWidget& m_widget;
    const bool m_wasPaused;
};
