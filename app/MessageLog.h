#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

class QTextEdit;

/// Writes the lines of the message log into its text box. Single lines are there at once. Those of a flood are written
/// in portions, so that the window keeps answering, and a moment later than they came. The newest 100,000 are kept.
///
/// GUI thread; belongs to the box.
class MessageLog : public QObject {
    Q_OBJECT

public:
    explicit MessageLog(QTextEdit& box);

    /// Plain text. A line of more than 4,096 letters is cut.
    void append(QString line);

    /// Empties the box, and forgets what waits to be written.
    void clear();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void write(const QString& lines);
    void writeWaiting();
    void dropOldest(int count);

    QTextEdit& m_box;
    QStringList m_waiting;
    QBasicTimer m_timer; // runs until nothing waits and nothing is to be dropped
    int m_atOnce;        // as many lines are still written when they come
    QElapsedTimer m_sinceDropped;
};
