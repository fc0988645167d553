#include "benchmarks/feature_table/PlainTable.h"

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"

#include <QColor>
#include <QHeaderView>
#include <QIcon>
#include <QRegExp>

PlainTable::PlainTable()
{
    m_view.horizontalHeader()->setStretchLastSection(true);
    m_view.setEditTriggers(QAbstractItemView::CurrentChanged | QAbstractItemView::SelectedClicked);
    m_view.verticalHeader()->hide();
    m_view.verticalHeader()->setDefaultSectionSize(22);
    m_view.verticalHeader()->setMinimumSectionSize(22);
    m_view.verticalHeader()->setMaximumSectionSize(22);
}

void PlainTable::open(const QList<GenAPINodeItem*>& items, const char* pattern)
{
    m_items = items;
    for (int row = 0; row < items.size(); ++row) {
        GenAPINodeItem* const item = items.at(row);
        m_model.insertRow(row);
        const QModelIndex name = m_model.index(row, 0);
        if (item->isCategory()) {
            m_model.setData(name, item->getNodeName());
            m_model.setData(name, false, FeatureView::ExpandedRole);
            m_model.setData(name, QIcon(":/images/FeatureView/images/Folded.png"), Qt::DecorationRole);
        } else {
            m_model.setData(name, "   " + item->getNodeName());
        }
        m_model.setData(name, row, FeatureView::ItemIndexRole);
        m_model.setData(name, item->getUserLevelAbbreviated(), FeatureView::LevelRole);
        m_model.setData(name, item->getToolTip(), Qt::ToolTipRole);
        const QModelIndex type = m_model.index(row, 1);
        m_model.setData(type, row, FeatureView::ItemIndexRole);
        m_model.setData(type, item->getStrTypeNode());
        m_model.setData(type, item->getToolTip(), Qt::ToolTipRole);
        m_model.setItem(row, 2, item);
        setCellColor(row);
    }
    sortAndFilter(false, pattern);
}

void PlainTable::sortAndFilter(bool sortAtoZ, const char* pattern)
{
    m_sortAtoZ = sortAtoZ;
    m_proxy.setSourceModel(&m_model);
    m_proxy.setFilterKeyColumn(0);
    m_proxy.setFilterRole(FeatureView::LevelRole);
    m_proxy.setFilterRegExp(QRegExp(pattern));
    m_proxy.setSortRole(sortAtoZ ? static_cast<int>(Qt::DisplayRole) : static_cast<int>(FeatureView::ItemIndexRole));
    m_proxy.sort(0);
    if (m_view.model() != &m_proxy)
        m_view.setModel(&m_proxy);
    m_view.clearSpans();
    if (!sortAtoZ) {
        for (int row = 0; row < m_proxy.rowCount(); ++row) {
            if (m_proxy.index(row, 0).data(FeatureView::LevelRole).toString() == "C")
                m_view.setSpan(row, 0, 1, 3);
        }
    }
    setRowCollapsedState();
    m_view.resizeColumnsToContents();
}

void PlainTable::setRowCollapsedState()
{
    const int rows = m_proxy.rowCount();
    bool pending = false;
    bool expanded = false;
    int lastCategory = -1;
    for (int row = 0; row < rows; ++row) {
        const QModelIndex name = m_proxy.index(row, 0);
        if (m_sortAtoZ) {
            m_view.setRowHidden(row, false);
        } else if (name.data(FeatureView::LevelRole).toString() == "C") {
            m_view.setRowHidden(row, true);
            expanded = name.data(FeatureView::ExpandedRole).toBool();
            pending = true;
            lastCategory = row;
        } else {
            if (pending)
                m_view.setRowHidden(lastCategory, false);
            m_view.setRowHidden(row, !expanded);
            pending = false;
        }
    }
}

void PlainTable::changeCollapsedState(const QModelIndex& index)
{
    const bool expanded = !index.data(FeatureView::ExpandedRole).toBool();
    m_proxy.setData(index, expanded, FeatureView::ExpandedRole);
    m_proxy.setData(
        index, QIcon(expanded ? ":/images/FeatureView/images/Collapsed.png" : ":/images/FeatureView/images/Folded.png"),
        Qt::DecorationRole);
    setRowCollapsedState();
}

void PlainTable::updateAll()
{
    for (int row = 0; row < m_items.size(); ++row) {
        m_items.at(row)->updateVals(false);
        setCellColor(row); // as an item requests it after reading its access mode
        setCellColor(row);
    }
}

void PlainTable::setCellColor(int row)
{
    const bool readOnly = m_items.at(row)->getAccessMode() == Orvo::NODE_ACCESS_MODE_RO;
    for (int column = 0; column < 3; ++column) {
        m_model.setData(m_model.index(row, column), QColor(255, 255, 255), Qt::BackgroundRole);
        m_model.setData(m_model.index(row, column), readOnly ? QColor(128, 64, 0) : QColor(0, 0, 0),
                        Qt::ForegroundRole);
    }
}
