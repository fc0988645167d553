// From the camera's node map to the rows of the source model.

#include "features/item/GenAPINodeItem.h"
#include "features/item/OperationLog.h"
#include "features/view/FeatureView.h"

#include <QSignalBlocker>

using Orvo::CAM_API_STATUS;
using Orvo::CAM_NODE_HANDLE;

namespace {

constexpr int kDeepestLevel = 256; // the features of Root are level 1

const QString kFeatureIndent = QStringLiteral("   ");

} // namespace

int FeatureView::SetCam(unsigned long hCam)
{
    m_camera = hCam;
    m_items.clear();
    deleteItemsWithoutModel();
    if (m_opeLogLevel >= OpeLogWrite) {
        QString preamble = OperationLog::preamble();
        emit OpeLogAppended(preamble);
    }

    CAM_NODE_HANDLE root = 0;
    if (Orvo::Nd_GetNode(m_camera, "Root", &root) != Orvo::CAM_API_STS_SUCCESS || root == 0)
        return 1;

    // Skip a child that cannot be read; the other features are shown.
    std::uint32_t count = 0;
    Orvo::Nd_GetNumOfFeatures(m_camera, root, &count);
    for (std::uint32_t index = 0; index < count; ++index) {
        CAM_NODE_HANDLE child = 0;
        if (Orvo::Nd_GetFeatureByIndex(m_camera, root, index, &child) == Orvo::CAM_API_STS_SUCCESS)
            registerSubtree(child, 1);
    }

    std::unique_ptr<QStandardItemModel> model = emptyModel();
    {
        const QSignalBlocker nobodyListensYet(model.get());
        model->setRowCount(m_items.size());
        for (int row = 0; row < m_items.size(); ++row)
            fillRow(*model, row);
    }
    showModel(model.release());
    return 0;
}

CAM_API_STATUS FeatureView::registerItemsToList(unsigned long hNode)
{
    const int before = m_items.size();
    const CAM_API_STATUS status = registerSubtree(hNode, 1);
    // No model owns them.
    for (int i = before; i < m_items.size(); ++i)
        m_itemsWithoutModel.emplace_back(m_items.at(i));
    return status;
}

CAM_API_STATUS FeatureView::registerSubtree(CAM_NODE_HANDLE node, int level)
{
    if (level > kDeepestLevel)
        return Orvo::CAM_API_STS_NOT_FOUND;

    auto* const item = new GenAPINodeItem(m_camera, node, m_items.size(), this, nullptr);
    m_items.append(item);
    if (!item->isCategory())
        return Orvo::CAM_API_STS_SUCCESS;

    std::uint32_t count = 0;
    if (const CAM_API_STATUS status = Orvo::Nd_GetNumOfFeatures(m_camera, node, &count))
        return status;
    for (std::uint32_t index = 0; index < count; ++index) {
        CAM_NODE_HANDLE child = 0;
        if (const CAM_API_STATUS status = Orvo::Nd_GetFeatureByIndex(m_camera, node, index, &child))
            return status;
        if (const CAM_API_STATUS status = registerSubtree(child, level + 1))
            return status;
    }
    return Orvo::CAM_API_STS_SUCCESS;
}

void FeatureView::deleteItemsWithoutModel()
{
    for (const QPointer<GenAPINodeItem>& item : m_itemsWithoutModel) {
        if (item && !item->model())
            delete item;
    }
    m_itemsWithoutModel.clear();
}

void FeatureView::fillRow(QStandardItemModel& model, int row)
{
    GenAPINodeItem* const item = m_items.at(row);
    auto* const name = new QStandardItem;
    if (item->isCategory()) {
        name->setText(item->getNodeName());
        name->setData(false, ExpandedRole);
        name->setIcon(m_foldedIcon);
    } else {
        name->setText(kFeatureIndent + item->getNodeName());
    }
    name->setData(row, ItemIndexRole);
    name->setData(item->getUserLevelAbbreviated(), LevelRole);
    name->setData(item->getToolTip(), Qt::ToolTipRole);

    auto* const type = new QStandardItem;
    type->setData(row, ItemIndexRole);
    type->setText(item->getStrTypeNode());
    type->setData(item->getToolTip(), Qt::ToolTipRole);

    setColours({name, type, item}, coloursOf(*item));
    model.setItem(row, NameColumn, name);
    model.setItem(row, TypeColumn, type);
    model.setItem(row, ValueColumn, item);
}
