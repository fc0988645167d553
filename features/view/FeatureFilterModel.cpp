#include "features/view/FeatureFilterModel.h"

#include <QSignalBlocker>

void FeatureFilterModel::arrange(const QRegExp& filter, int role)
{
    emit layoutAboutToBeChanged();
    {
        // The steps between are nobody's business. Persistent indexes follow each of them all the same.
        const QSignalBlocker quiet(this);
        m_filter = filter;
        if (role != sortRole()) {
            sort(-1); // the new role shall not put the old rows in order
            setSortRole(role);
        }
        invalidate();
        setFilterRegExp(filter); // finds every row where it belongs already
        sort(0);
    }
    emit layoutChanged();
}

bool FeatureFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const QModelIndex key = sourceModel()->index(sourceRow, filterKeyColumn(), sourceParent);
    return m_filter.indexIn(key.data(filterRole()).toString()) >= 0;
}
