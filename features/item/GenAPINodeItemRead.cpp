#include "features/item/GenAPINodeItem.h"

#include "camera/Flag.h"
#include "camera/TextField.h"
#include "features/item/NodeItemListener.h"
#include "features/item/NodeText.h"
#include "features/item/NodeValueText.h"

#include <QLatin1String>

#include <array>

using namespace Orvo;
using OperationLog::Fragment;

namespace {

/// The text shown instead of a value that cannot be read.
struct AccessText {
    NodeAccessMode accessMode;
    const char* text;
};

constexpr AccessText kAccessTexts[] = {
    {NODE_ACCESS_MODE_NI, "== Not Implemented =="},
    {NODE_ACCESS_MODE_NA, "== Not Available =="},
    {NODE_ACCESS_MODE_WO, "== Write-Only =="},
};

} // namespace

QString GenAPINodeItem::getNodeValue(bool withUnit, bool force)
{
    CAM_API_STATUS status = CAM_API_STS_SUCCESS;
    if (force || !m_node.valueTextValid) {
        QString log;
        status = readValue(log);
        m_node.valueTextValid = status == CAM_API_STS_SUCCESS;
        sendOpeLog(log);
    }
    m_lastStatus = status;
    QString display = showValueText();
    return withUnit ? display : m_node.valueText;
}

QString GenAPINodeItem::showValueText()
{
    QString display = m_node.unit.isEmpty() ? m_node.valueText : m_node.valueText + ' ' + m_node.unit;
    QStandardItem::setData(display, Qt::EditRole);
    return display;
}

CAM_API_STATUS GenAPINodeItem::readValue(QString& log)
{
    if (m_node.accessMode != NODE_ACCESS_MODE_RO && m_node.accessMode != NODE_ACCESS_MODE_RW) {
        for (const AccessText& row : kAccessTexts) {
            if (row.accessMode == m_node.accessMode)
                m_node.valueText = QLatin1String(row.text);
        }
        return CAM_API_STS_INVALID_PARAMETER;
    }

    CAM_API_STATUS status = CAM_API_STS_INVALID_PARAMETER;
    QString fragment;
    switch (m_node.type) {
    case NODE_TYPE_INTEGER:
        status = readInteger();
        fragment = OperationLog::text(Fragment::IntegerRead);
        break;
    case NODE_TYPE_BOOLEAN:
        status = readBoolean();
        fragment = OperationLog::text(Fragment::BooleanRead);
        break;
    case NODE_TYPE_COMMAND:
        m_node.valueText = QStringLiteral("== Command node ==");
        return CAM_API_STS_INVALID_PARAMETER;
    case NODE_TYPE_FLOAT:
        status = readFloat();
        // Deliberately the only read that does not log a failure.
        appendOpeLog(log, OperationLog::text(Fragment::FloatRead), OpeLogRead, CAM_API_STS_SUCCESS);
        return status;
    case NODE_TYPE_STRING:
        status = readValueText(Nd_GetStrValue, 0);
        fragment = OperationLog::text(Fragment::StringRead);
        break;
    case NODE_TYPE_ENUMERATION:
        status = readValueText(Nd_GetEnumStrValue, 1);
        fragment = OperationLog::text(Fragment::EnumRead);
        break;
    case NODE_TYPE_ENUM_ENTRY:
        status = readValueText(Nd_GetEnumEntryStrValue, 1);
        break;
    default:
        return CAM_API_STS_INVALID_PARAMETER;
    }
    appendOpeLog(log, fragment, OpeLogRead, status);
    return status;
}

CAM_API_STATUS GenAPINodeItem::readInteger()
{
    std::int64_t value = 0;
    const CAM_API_STATUS status = Nd_GetIntValue(m_camHandle, m_node.handle, &value);
    if (status == CAM_API_STS_SUCCESS) {
        m_node.valueInt = value;
        m_node.valueText = getValueStr(value);
    }
    return status;
}

CAM_API_STATUS GenAPINodeItem::readBoolean()
{
    Flag value;
    const CAM_API_STATUS status = Nd_GetBoolValue(m_camHandle, m_node.handle, value.out());
    if (status == CAM_API_STS_SUCCESS)
        m_node.valueText = boolText(value.isSet());
    return status;
}

CAM_API_STATUS GenAPINodeItem::readFloat()
{
    double value = 0;
    const CAM_API_STATUS status = Nd_GetFloatValue(m_camHandle, m_node.handle, &value);
    if (status == CAM_API_STS_SUCCESS) {
        m_node.valueFloat = value;
        m_node.valueText = getValueStr(value);
    }
    return status;
}

CAM_API_STATUS GenAPINodeItem::readValueText(NodeTextOperation operation, std::uint32_t leastSize)
{
    std::uint32_t size = 0;
    const CAM_API_STATUS status = readTextSize(operation, m_camHandle, m_node.handle, size);
    if (status != CAM_API_STS_SUCCESS)
        return status;
    // If only the second call fails, the status is always this one.
    if (size < leastSize || readTextOfSize(operation, m_camHandle, m_node.handle, size, m_node.valueText) != 0)
        return CAM_API_STS_INVALID_PARAMETER;
    return CAM_API_STS_SUCCESS;
}

long GenAPINodeItem::getValInt(bool force)
{
    getNodeValue(false, force);
    return m_node.valueInt;
}

double GenAPINodeItem::getValFloat(bool force)
{
    getNodeValue(false, force);
    return m_node.valueFloat;
}

QString GenAPINodeItem::getValueStr(long value) const
{
    return integerText(value, m_node.representation);
}

QString GenAPINodeItem::getValueStr(double value) const
{
    return floatText(value, m_node.floatFormat, m_node.displayPrecision);
}

long GenAPINodeItem::getEnumIntValue()
{
    if (m_node.type != NODE_TYPE_ENUMERATION)
        return 0;
    std::int64_t value = 0;
    m_lastStatus = Nd_GetEnumIntValue(m_camHandle, m_node.handle, &value);
    QString log;
    appendOpeLog(log, OperationLog::text(Fragment::EnumIntegerRead), OpeLogRead, m_lastStatus);
    sendOpeLog(log);
    return value;
}

QStringList GenAPINodeItem::getItemsValue()
{
    if (m_node.type == NODE_TYPE_BOOLEAN)
        return {boolText(false), boolText(true)};
    if (m_node.type != NODE_TYPE_ENUMERATION)
        return {};

    const auto ok = [this](CAM_API_STATUS status) {
        m_lastStatus = status;
        return status == CAM_API_STS_SUCCESS;
    };
    std::uint32_t count = 0;
    if (!ok(Nd_GetNumOfEnumEntries(m_camHandle, m_node.handle, &count)))
        return {};
    QStringList choices;
    for (std::uint32_t index = 0; index < count; ++index) {
        CAM_NODE_HANDLE entry = 0;
        NodeAccessMode access = NODE_ACCESS_MODE_UNDEFINED;
        if (!ok(Nd_GetEnumEntryByIndex(m_camHandle, m_node.handle, index, &entry)) ||
            !ok(Nd_GetAccessMode(m_camHandle, entry, &access)))
            return {};
        if (access != NODE_ACCESS_MODE_WO && access != NODE_ACCESS_MODE_RO)
            continue;                 // cannot be chosen: the library reports entries that can be chosen as read-only
        std::array<char, 256> name{}; // a symbolic name has at most 255 bytes
        std::uint32_t size = name.size();
        if (!ok(Nd_GetEnumEntryStrValue(m_camHandle, entry, name.data(), &size)))
            return {};
        choices += QString::fromUtf8(fieldBytes(name));
    }
    return choices;
}

void GenAPINodeItem::updateVals(bool all)
{
    bool changed = false;
    updateAccessMode(&changed);
    getNodeValue(changed, true);
    if (m_node.accessMode == NODE_ACCESS_MODE_NI)
        return;
    QString log;
    if (m_node.type == NODE_TYPE_FLOAT)
        readFloatRange(all, log);
    if (m_node.type == NODE_TYPE_INTEGER)
        readIntegerRange(all, log);
    // The only entry without a line that looks up the node.
    if (!log.isEmpty())
        m_listener->appendOpeLog(log);
}

// The statuses are ignored: after a failed call the range has whatever value the call left in it.

void GenAPINodeItem::readFloatRange(bool all, QString& log)
{
    const auto tell = [&](Fragment fragment) { appendOpeLog(log, OperationLog::text(fragment), OpeLogRange, 0); };
    Nd_GetFloatMax(m_camHandle, m_node.handle, &m_node.maxFloat);
    tell(Fragment::FloatMaximum);
    if (!all)
        return;
    Nd_GetFloatMin(m_camHandle, m_node.handle, &m_node.minFloat);
    tell(Fragment::FloatMinimum);
    Flag hasInc(m_node.hasIncFloat);
    Nd_GetFloatHasInc(m_camHandle, m_node.handle, hasInc.out());
    m_node.hasIncFloat = hasInc.isSet();
    tell(Fragment::FloatHasIncrement);
    if (!m_node.hasIncFloat)
        return;
    Nd_GetFloatInc(m_camHandle, m_node.handle, &m_node.incFloat);
    tell(Fragment::FloatIncrement);
}

void GenAPINodeItem::readIntegerRange(bool all, QString& log)
{
    const auto tell = [&](Fragment fragment) { appendOpeLog(log, OperationLog::text(fragment), OpeLogRange, 0); };
    Nd_GetIntMax(m_camHandle, m_node.handle, &m_node.maxInt);
    tell(Fragment::IntegerMaximum);
    if (!all)
        return;
    Nd_GetIntMin(m_camHandle, m_node.handle, &m_node.minInt);
    tell(Fragment::IntegerMinimum);
    Nd_GetIntInc(m_camHandle, m_node.handle, &m_node.incInt);
    tell(Fragment::IntegerIncrement);
}
