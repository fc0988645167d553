#pragma once

#include <QList>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>

class GenAPINodeItem;

/// A feature table with the same rows as the feature view, implemented with the most straightforward calls of the
/// toolkit. The feature view is compared with it.
class PlainTable {
public:
    PlainTable();

    [[nodiscard]] QTableView& view() { return m_view; }
    [[nodiscard]] QStandardItemModel& model() { return m_model; }

    /// Takes over the items and shows those of the level.
    void open(const QList<GenAPINodeItem*>& items, const char* pattern);
    void sortAndFilter(bool sortAtoZ, const char* pattern);
    void setRowCollapsedState();
    void changeCollapsedState(const QModelIndex& index);
    void updateAll();

private:
    void setCellColor(int row);

    QTableView m_view;
    QStandardItemModel m_model{0, 3};
    QSortFilterProxyModel m_proxy;
    QList<GenAPINodeItem*> m_items;
    bool m_sortAtoZ = false;
};
