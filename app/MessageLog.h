#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

class QTextEdit;

/// Writes the lines of the message log to its text box. Single lines appear at once. The lines of a flood appear a
/// little later, in batches, so that the window stays responsive. The newest 100,000 lines are kept.
///
/// Lives on the GUI thread. Owned by the box.
class MessageLog : public QObject {
    Q_OBJECT

public:
    explicit MessageLog(QTextEdit& box);

    /// Appends plain text. A line of more than 4,096 characters is truncated.
    void append(QString line);

    /// Empties the box and discards the waiting lines.
    void clear();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void write(const QString& lines);
    void writeWaiting();
    void dropOldest(int count);

    QTextEdit& m_box;
    QStringList m_waiting;
    QBasicTimer m_timer; // runs while lines wait or have to be dropped
    int m_atOnce;        // number of lines that may still be written immediately
    QElapsedTimer m_sinceDropped;
};
