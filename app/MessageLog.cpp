#include "app/MessageLog.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>

namespace {

constexpr int kKeptLines = 100000;
constexpr int kLongestLine = 4096; // in characters: layout time is quadratic in the length of a word

// Writing a single line takes as long as twenty lines of a batch. So many lines per period are not yet a flood.
constexpr int kAtOnce = 100;
constexpr int kAtOncePeriodMs = 20;

// A flood is written in batches of about 5 ms. The event loop runs again after this time.
constexpr int kPortionLines = 250;
constexpr int kPortionLetters = 4 * kLongestLine;
constexpr int kGoMs = 50;

// Dropping lines lays out all remaining ones, which takes some 40 ms however few are dropped. So it is done rarely and
// during a pause, but a flood without pauses must not fill the memory.
constexpr int kDropPeriodMs = 1000;
constexpr int kMostTooMany = 20000;

} // namespace

MessageLog::MessageLog(QTextEdit& box)
    : QObject(&box)
    , m_box(box)
    , m_atOnce(kAtOnce)
{
    m_sinceDropped.start();
}

void MessageLog::append(QString line)
{
    if (line.size() > kLongestLine)
        line = line.left(kLongestLine) + QChar(0x2026); // an ellipsis
    if (m_atOnce > 0) {
        --m_atOnce;
        write(line);
    } else {
        m_waiting.append(line);
        if (m_waiting.size() > kKeptLines)
            m_waiting.removeFirst();
    }
    if (!m_timer.isActive())
        m_timer.start(kAtOncePeriodMs, this);
}

void MessageLog::clear()
{
    m_waiting.clear();
    m_box.clear();
}

void MessageLog::timerEvent(QTimerEvent*)
{
    // One or the other, so that the event loop runs in between.
    const int tooMany = m_box.document()->blockCount() - kKeptLines;
    if (tooMany > (m_waiting.isEmpty() && m_sinceDropped.hasExpired(kDropPeriodMs) ? 0 : kMostTooMany)) {
        dropOldest(tooMany);
    } else if (!m_waiting.isEmpty()) {
        writeWaiting();
    } else {
        m_atOnce = kAtOnce;
        if (tooMany <= 0) {
            m_timer.stop();
            return;
        }
    }
    m_timer.start(m_waiting.isEmpty() ? kAtOncePeriodMs : 0, this);
}

void MessageLog::write(const QString& lines)
{
    // Not QTextEdit::append(), which would read markup into a text that a camera may have written.
    QTextCursor end(m_box.document());
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    if (!m_box.document()->isEmpty())
        end.insertBlock();
    // Detecting the direction of the text would double the layout time.
    QTextBlockFormat direction;
    direction.setLayoutDirection(Qt::LeftToRight);
    end.mergeBlockFormat(direction);
    end.insertText(lines);
    end.endEditBlock();
    // The box scrolls to where its own cursor is.
    m_box.setTextCursor(end);
}

void MessageLog::writeWaiting()
{
    QElapsedTimer spent;
    spent.start();
    while (!m_waiting.isEmpty() && !spent.hasExpired(kGoMs)) {
        QString portion = m_waiting.takeFirst();
        for (int lines = 1; !m_waiting.isEmpty() && lines < kPortionLines && portion.size() < kPortionLetters; ++lines)
            portion += '\n' + m_waiting.takeFirst();
        write(portion);
    }
}

void MessageLog::dropOldest(int count)
{
    QTextCursor oldest(m_box.document());
    oldest.setPosition(m_box.document()->findBlockByNumber(count).position(), QTextCursor::KeepAnchor);
    oldest.removeSelectedText();
    m_sinceDropped.start();
}
