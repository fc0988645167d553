#include "features/item/GenAPINodeItem.h"

#include "features/item/NodeItemListener.h"
#include "features/item/NodeValueText.h"

#include <QLatin1String>

using namespace Orvo;
using OperationLog::Fragment;

namespace {

/// The view opens no editor while this exists.
class WriteInProgress {
public:
    explicit WriteInProgress(NodeItemListener* listener)
        : m_listener(listener)
    {
        if (m_listener != nullptr)
            m_listener->setWriteInProgress(true);
    }
    ~WriteInProgress()
    {
        if (m_listener != nullptr)
            m_listener->setWriteInProgress(false);
    }
    WriteInProgress(const WriteInProgress&) = delete;
    WriteInProgress& operator=(const WriteInProgress&) = delete;

private:
    NodeItemListener* m_listener;
};

bool decidesOverSoftwareTrigger(const QString& nodeName)
{
    return nodeName == QLatin1String("TriggerMode") || nodeName == QLatin1String("TriggerSource");
}

} // namespace

int GenAPINodeItem::setNodeValue(const QString& text)
{
    const WriteInProgress writeInProgress(m_listener);
    if (!isWritable()) {
        m_lastStatus = CAM_API_STS_NOT_WRITABLE;
        return static_cast<int>(m_lastStatus);
    }
    QString fragment;
    const CAM_API_STATUS status = writeText(text, fragment);
    QString log;
    appendOpeLog(log, fragment, OpeLogWrite, status);
    sendOpeLog(log);
    if (m_listener != nullptr && decidesOverSoftwareTrigger(m_node.name))
        m_listener->triggerWritten();
    showValueText();
    m_lastStatus = status;
    return static_cast<int>(status);
}

CAM_API_STATUS GenAPINodeItem::writeText(const QString& text, QString& fragment)
{
    switch (m_node.type) {
    case NODE_TYPE_INTEGER:
        return writeInteger(withoutUnit(text), fragment);
    case NODE_TYPE_BOOLEAN:
        return writeBoolean(text, fragment);
    case NODE_TYPE_COMMAND:
        return writeCommand(text, fragment);
    case NODE_TYPE_FLOAT:
        return writeFloat(withoutUnit(text), fragment);
    case NODE_TYPE_STRING:
        fragment = OperationLog::text(Fragment::StringWrite, text);
        return written(Nd_SetStrValue(m_camHandle, m_node.handle, text.toLatin1().constData(), true), text);
    case NODE_TYPE_ENUMERATION:
        fragment = OperationLog::text(Fragment::EnumWrite, text);
        return written(Nd_SetEnumStrValue(m_camHandle, m_node.handle, text.toLatin1().constData(), true), text);
    default:
        return CAM_API_STS_INVALID_PARAMETER;
    }
}

CAM_API_STATUS GenAPINodeItem::writeInteger(const QString& text, QString& fragment)
{
    fragment = OperationLog::text(Fragment::IntegerWrite, text);
    const std::optional<TypedInteger> typed = parseInteger(text, m_node.representation);
    if (!typed)
        return CAM_API_STS_INVALID_PARAMETER;
    return written(Nd_SetIntValue(m_camHandle, m_node.handle, typed->value, true), typed->text);
}

CAM_API_STATUS GenAPINodeItem::writeBoolean(const QString& text, QString& fragment)
{
    const bool value = text.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0;
    fragment = OperationLog::text(Fragment::BooleanWrite, boolText(value));
    if (text.isEmpty())
        return CAM_API_STS_INVALID_PARAMETER;
    return written(Nd_SetBoolValue(m_camHandle, m_node.handle, value, true), boolText(value));
}

CAM_API_STATUS GenAPINodeItem::writeCommand(const QString& text, QString& fragment)
{
    fragment = OperationLog::text(Fragment::CommandExecution);
    if (text.compare(QLatin1String("Execute"), Qt::CaseInsensitive) != 0 && text != QLatin1String("1"))
        return CAM_API_STS_INVALID_PARAMETER;
    const CAM_API_STATUS status = Nd_CmdExecute(m_camHandle, m_node.handle, true);
    // Even a failed command may have changed other features.
    tellValuesWritten();
    return status;
}

CAM_API_STATUS GenAPINodeItem::writeFloat(const QString& text, QString& fragment)
{
    fragment = OperationLog::text(Fragment::FloatWrite, text);
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok)
        return CAM_API_STS_INVALID_PARAMETER;
    return written(Nd_SetFloatValue(m_camHandle, m_node.handle, value, true), getValueStr(value));
}

CAM_API_STATUS GenAPINodeItem::written(CAM_API_STATUS status, const QString& shownText)
{
    m_node.valueTextValid = status == CAM_API_STS_SUCCESS;
    if (m_node.valueTextValid) {
        m_node.valueText = shownText;
        tellValuesWritten();
    }
    return status;
}

void GenAPINodeItem::tellValuesWritten()
{
    if (m_listener != nullptr)
        m_listener->setValuesWritten();
}

int GenAPINodeItem::setNodeValue(long value)
{
    if (!isWritable())
        return CAM_API_STS_INVALID_PARAMETER;
    const WriteInProgress writeInProgress(m_listener);
    const bool enumeration = m_node.type == NODE_TYPE_ENUMERATION;
    if (!enumeration && m_node.type != NODE_TYPE_INTEGER)
        return CAM_API_STS_INVALID_PARAMETER;
    m_node.valueTextValid = false;
    const auto operation = enumeration ? Nd_SetEnumIntValue : Nd_SetIntValue;
    const CAM_API_STATUS status = operation(m_camHandle, m_node.handle, value, true);
    if (status == CAM_API_STS_SUCCESS)
        tellValuesWritten();
    QString log;
    const Fragment fragment = enumeration ? Fragment::EnumIntegerWrite : Fragment::IntegerWrite;
    appendOpeLog(log, OperationLog::text(fragment, QString::number(value)), OpeLogWrite, status);
    sendOpeLog(log);
    if (status == CAM_API_STS_SUCCESS)
        getNodeValue(false, true);
    return static_cast<int>(status);
}

int GenAPINodeItem::setNodeValue(double value)
{
    if (!isWritable())
        return CAM_API_STS_INVALID_PARAMETER;
    const WriteInProgress writeInProgress(m_listener);
    if (m_node.type != NODE_TYPE_FLOAT)
        return CAM_API_STS_INVALID_PARAMETER;
    m_node.valueTextValid = false;
    const CAM_API_STATUS status = Nd_SetFloatValue(m_camHandle, m_node.handle, value, true);
    // Deliberate: a refused float, unlike everything else, is not logged at all.
    if (status == CAM_API_STS_SUCCESS) {
        tellValuesWritten();
        QString log;
        appendOpeLog(log, OperationLog::text(Fragment::FloatWrite, QString::number(value)), OpeLogWrite, status);
        sendOpeLog(log);
    }
    return static_cast<int>(status);
}
