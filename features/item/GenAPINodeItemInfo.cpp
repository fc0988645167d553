#include "features/item/GenAPINodeItem.h"

#include "features/item/NodeValueText.h"

using namespace Orvo;

QString GenAPINodeItem::getAdditionalInfo()
{
    const QString range = QStringLiteral("Max = %1, Min = %2, Inc = %3");
    switch (m_node.type) {
    case NODE_TYPE_FLOAT: {
        const QString maximum = getValueStr(m_node.maxFloat);
        const QString minimum = getValueStr(m_node.minFloat);
        if (!m_node.hasIncFloat)
            return QStringLiteral("Max = %1, Min = %2. Does not have Inc value.").arg(maximum, minimum);
        return range.arg(maximum, minimum, getValueStr(m_node.incFloat));
    }
    case NODE_TYPE_INTEGER: {
        // Hexadecimal or decimal even for addresses, because a limit is not an address.
        const bool hex = m_node.representation == NODE_REPRESENTATION_HEX_NUMBER;
        const auto number = [hex](std::int64_t value) { return hex ? hexText(value) : QString::number(value); };
        return range.arg(number(m_node.maxInt), number(m_node.minInt), number(m_node.incInt));
    }
    case NODE_TYPE_ENUMERATION: {
        const QString entry = getNodeValue(false, false);
        return QStringLiteral("Current value is ") + entry + " (" + QString::number(getEnumIntValue()) + ')';
    }
    default:
        return {};
    }
}
