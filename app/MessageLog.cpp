#include "app/MessageLog.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>

namespace {

constexpr int kKeptLines = 100000;
constexpr int kLongestLine = 4096; // layout takes time with the square of a word's length

// A line that is written by itself costs as much as twenty of a portion. So many are no flood yet.
constexpr int kAtOnce = 100;

// A portion takes about 20 ms.
constexpr int kPortion = 2500;
constexpr int kPortionPeriodMs = 20;

// Dropping moves every line that stays, which takes some 80 ms, however many are dropped.
constexpr int kDropPeriodMs = 1000;

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
        m_timer.start(kPortionPeriodMs, this);
}

void MessageLog::clear()
{
    m_waiting.clear();
    m_box.clear();
}

void MessageLog::timerEvent(QTimerEvent*)
{
    if (m_waiting.isEmpty()) {
        m_atOnce = kAtOnce;
    } else {
        writePortion();
    }

    const int tooMany = m_box.document()->blockCount() - kKeptLines;
    if (tooMany <= 0 && m_atOnce > 0) {
        m_timer.stop();
        return;
    }
    // In a pause of the flood; a flood without pauses must not fill the memory all the same.
    if (m_waiting.isEmpty() ? tooMany > 0 && m_sinceDropped.hasExpired(kDropPeriodMs) : tooMany > kKeptLines)
        dropOldest(tooMany);
}

void MessageLog::write(const QString& lines)
{
    // Not QTextEdit::append(), which would read markup into a text that a camera may have written.
    QTextCursor end(m_box.document());
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    if (!m_box.document()->isEmpty())
        end.insertBlock();
    end.insertText(lines);
    end.endEditBlock();
    // The box scrolls to where its own cursor is.
    m_box.setTextCursor(end);
}

void MessageLog::writePortion()
{
    const int count = std::min(kPortion, m_waiting.size());
    write(m_waiting.mid(0, count).join('\n'));
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + count);
}

void MessageLog::dropOldest(int count)
{
    QTextCursor oldest(m_box.document());
    oldest.setPosition(m_box.document()->findBlockByNumber(count).position(), QTextCursor::KeepAnchor);
    oldest.removeSelectedText();
    m_sinceDropped.start();
}
