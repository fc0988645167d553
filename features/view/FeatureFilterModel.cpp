#include "features/view/FeatureFilterModel.h"

#include <QSignalBlocker>

#include <limits>

namespace {

/// Whether the rows are already ordered by an integer role.
bool inOrder(const QAbstractItemModel& source, int role)
{
    int last = std::numeric_limits<int>::min();
    for (int row = 0; row < source.rowCount(); ++row) {
        const QVariant key = source.index(row, 0).data(role);
        if (key.userType() != QMetaType::Int || key.toInt() < last)
            return false;
        last = key.toInt();
    }
    return true;
}

} // namespace

void FeatureFilterModel::arrange(const QRegExp& filter, int role, const QAbstractItemModel* source)
{
    m_accepted.clear();
    m_inSourceOrder = source && inOrder(*source, role);
    emit layoutAboutToBeChanged();
    {
        // Views need not see the intermediate steps; persistent indexes follow each of them anyway.
        const QSignalBlocker quiet(this);
        m_filter = filter;
        if (role != sortRole()) {
            sort(-1); // do not sort the old rows by the new role
            setSortRole(role);
        }
        invalidate();
        setFilterRegExp(filter); // every accepted row is already in its place
        sort(0);
    }
    emit layoutChanged();
}

bool FeatureFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const QModelIndex key = sourceModel()->index(sourceRow, filterKeyColumn(), sourceParent);
    const QString text = key.data(filterRole()).toString();
    const auto known = m_accepted.constFind(text);
    if (known != m_accepted.constEnd())
        return *known;
    return *m_accepted.insert(text, m_filter.indexIn(text) >= 0);
}

bool FeatureFilterModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    return m_inSourceOrder ? left.row() < right.row() : QSortFilterProxyModel::lessThan(left, right);
}
