#include "features/item/GenAPINodeItem.h"

#include "features/item/NodeItemListener.h"

int GenAPINodeItem::opeLogLevel() const
{
    return m_listener != nullptr ? m_listener->opeLogLevel() : OpeLogOff;
}

void GenAPINodeItem::appendOpeLog(QString& log, const QString& text, OperationLogMode mode, unsigned int status) const
{
    OperationLog::append(log, text, opeLogLevel(), mode, status);
}

void GenAPINodeItem::sendOpeLog(const QString& log)
{
    if (log.isEmpty())
        return;
    QString entry = OperationLog::text(OperationLog::Fragment::NodeLookup, m_node.name) + log;
    m_listener->appendOpeLog(entry);
}
