#pragma once

#include <QList>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>

class GenAPINodeItem;

/// A feature table with the same rows as the feature view's, built by the plain calls of the toolkit in the order in
/// which they come to mind: what the feature view is measured against.
class PlainTable {
public:
    PlainTable();

    [[nodiscard]] QTableView& view() { return m_view; }
    [[nodiscard]] QStandardItemModel& model() { return m_model; }

    /// Takes the items and shows them at the level.
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
