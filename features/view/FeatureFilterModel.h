#pragma once

#include <QHash>
#include <QRegExp>
#include <QSortFilterProxyModel>

/// The rows of the feature table that pass the user level, in their order. Lives on the GUI thread.
///
/// A change of filter and order is a single layout change: current index, selection and open editors stay with their
/// rows. The base class would remove and insert the ranges of rows one by one, and each takes time in proportion to the
/// table.
class FeatureFilterModel : public QSortFilterProxyModel {
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    /// Shows the rows whose filter role matches `filter`, ordered by `role` of column 0. If `source` is given, it
    /// replaces the source model, and the sort order does not change.
    void arrange(const QRegExp& filter, int role, const QAbstractItemModel* source = nullptr);

protected:
    [[nodiscard]] bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    [[nodiscard]] bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    QRegExp m_filter;
    mutable QHash<QString, bool> m_accepted; // by filter key; there are only a few
    bool m_inSourceOrder = false;
};
