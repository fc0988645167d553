#include "features/item/GenAPINodeItem.h"

#include "camera/TextField.h"
#include "features/item/NodeText.h"
#include "features/item/NumberConversion.h"
#include "features/view/FeatureView.h"

#include <QLatin1String>

#include <array>
#include <cmath>
#include <cstdint>

using namespace Orvo;

GenAPINodeItem::GenAPINodeItem(QObject* parent)
    : QObject(parent)
{
}

GenAPINodeItem::GenAPINodeItem(unsigned long camHandle, unsigned long nodeHandle, int baseIndex, FeatureView* view,
                               QObject* parent)
    : QObject(parent)
    , m_listener(view)
{
    setNode(camHandle, nodeHandle, baseIndex);
}

GenAPINodeItem::~GenAPINodeItem() = default;

int GenAPINodeItem::setNode(unsigned long camHandle, unsigned long nodeHandle, int baseIndex)
{
    clear();
    m_camHandle = camHandle;
    m_node.handle = nodeHandle;
    m_node.baseIndex = baseIndex;
    if (camHandle == 0 || nodeHandle == 0)
        return 0;

    readProperties();
    const NodeEditor chosen =
        NodeEditor::choose(m_node.type, m_node.name, m_node.representation, m_node.useNameOverrides);
    m_node.editor = chosen.editor;
    m_node.representation = chosen.representation;
    if (m_node.type == NODE_TYPE_FLOAT)
        readFloatNotation();

    QStandardItem::setData(getNodeValue(true, true), Qt::EditRole);
    QStandardItem::setData(static_cast<int>(m_node.editor), EditorKindRole);
    QStandardItem::setData(m_node.toolTip, Qt::ToolTipRole);
    QStandardItem::setData(m_node.baseIndex, FeatureView::ItemIndexRole);
    return 0;
}

void GenAPINodeItem::readProperties()
{
    const auto ok = [this](CAM_API_STATUS status) {
        m_lastStatus = status;
        return status == CAM_API_STS_SUCCESS;
    };
    const CAM_HANDLE camera = m_camHandle;
    const CAM_NODE_HANDLE node = m_node.handle;
    std::array<char, 256> name{}; // a name has at most 255 bytes
    std::uint32_t nameSize = name.size();

    // Stops at the first call that fails: what is not read keeps its initial value.
    if (!ok(Nd_GetType(camera, node, &m_node.type)) || !ok(Nd_GetName(camera, node, name.data(), &nameSize)))
        return;
    m_node.name = QString::fromUtf8(fieldBytes(name));
    static_cast<void>(ok(Nd_GetAccessMode(camera, node, &m_node.accessMode)) &&
                      ok(Nd_GetVisibility(camera, node, &m_node.visibility)) &&
                      ok(readText(Nd_GetDescription, camera, node, m_node.description)) &&
                      ok(readText(Nd_GetToolTip, camera, node, m_node.toolTip)) &&
                      ok(Nd_GetRepresentation(camera, node, &m_node.representation)) &&
                      ok(readText(Nd_GetUnit, camera, node, m_node.unit)));
}

void GenAPINodeItem::readFloatNotation()
{
    if (m_lastStatus == CAM_API_STS_SUCCESS)
        m_lastStatus = Nd_GetFloatDisplayNotation(m_camHandle, m_node.handle, &m_node.displayNotation);
    if (m_lastStatus == CAM_API_STS_SUCCESS)
        m_lastStatus = Nd_GetFloatDisplayPrecision(m_camHandle, m_node.handle, &m_node.displayPrecision);
    switch (m_node.displayNotation) {
    case FLOAT_DISPLAY_NOTATION_AUTOMATIC:
        m_node.floatFormat = 'g';
        break;
    case FLOAT_DISPLAY_NOTATION_SCIENTIFIC:
        m_node.floatFormat = 'e';
        break;
    default:
        m_node.floatFormat = 'f';
        break;
    }
}

void GenAPINodeItem::clear()
{
    m_node = Node();
}

void GenAPINodeItem::setData(const QVariant& value, int role)
{
    if (role == Qt::EditRole) {
        setNodeValue(value.toString());
        return;
    }
    QStandardItem::setData(value, role);
}

bool GenAPINodeItem::isCategory() const
{
    return m_node.type == NODE_TYPE_CATEGORY;
}

bool GenAPINodeItem::isImplemented() const
{
    return m_node.accessMode >= NODE_ACCESS_MODE_NA && m_node.accessMode <= NODE_ACCESS_MODE_RW;
}

bool GenAPINodeItem::isWritable() const
{
    return m_node.accessMode == NODE_ACCESS_MODE_WO || m_node.accessMode == NODE_ACCESS_MODE_RW;
}

bool GenAPINodeItem::isEditable() const
{
    return m_node.accessMode == NODE_ACCESS_MODE_RW;
}

QString GenAPINodeItem::getStrTypeNode() const
{
    return NodeEditor::typeText(m_node.type);
}

QString GenAPINodeItem::getUserLevelAbbreviated() const
{
    static constexpr std::array<char, 4> kLetters{'B', 'E', 'G', 'I'}; // by visibility
    if (isCategory())
        return QStringLiteral("C");
    if (m_node.visibility < NODE_VISIBILITY_BEGINNER || m_node.visibility > NODE_VISIBILITY_INVISIBLE)
        return {};
    const QString letter(QLatin1Char(kLetters.at(static_cast<std::size_t>(m_node.visibility))));
    return m_node.accessMode == NODE_ACCESS_MODE_NI ? letter.toLower() : letter;
}

int GenAPINodeItem::updateAccessMode(bool* changed)
{
    if (m_node.handle == 0)
        return CAM_API_STS_NOT_READY;
    const NodeAccessMode before = m_node.accessMode;
    m_lastStatus = Nd_GetAccessMode(m_camHandle, m_node.handle, &m_node.accessMode);
    if (changed != nullptr)
        *changed = m_node.accessMode != before;
    if (m_lastStatus != CAM_API_STS_SUCCESS)
        return static_cast<int>(m_lastStatus);
    if (m_listener != nullptr)
        m_listener->setCellColor(m_node.baseIndex);
    return 0;
}

long GenAPINodeItem::getValidNodeValue(long value) const
{
    return snapToIncrement(value, m_node.minInt, m_node.maxInt, m_node.incInt);
}

double GenAPINodeItem::getValidNodeValue(double value) const
{
    double valid = std::fmax(value, m_node.minFloat); // NaN becomes the minimum
    if (m_node.hasIncFloat) {
        const double step = stepOf(m_node.incFloat);
        // Deliberately 32 bits: a larger number of steps becomes INT_MIN.
        const int steps = doubleToInt((valid - m_node.minFloat) / step + 0.5);
        valid = steps * step + m_node.minFloat;
    }
    return std::fmin(valid, m_node.maxFloat);
}
