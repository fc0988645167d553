#include "features/FeatureView.h"

// The interface without its insides: the table is not built yet.

FeatureView::FeatureView(QWidget* parent)
    : QWidget(parent)
{
}

FeatureView::~FeatureView() = default;

int FeatureView::SetCam(unsigned long)
{
    return 1;
}

Orvo::CAM_API_STATUS FeatureView::registerItemsToList(unsigned long)
{
    return Orvo::CAM_API_STS_SUCCESS;
}

void FeatureView::showModel(QStandardItemModel*) {}

GenAPINodeItem* FeatureView::itemAt(const QModelIndex&) const
{
    return nullptr;
}

void FeatureView::sortAndFilter(bool, Orvo::TC_NODE_VISIBILITY) {}

void FeatureView::setLevelInvisibleAvailable(bool available)
{
    m_levelInvisibleAvailable = available;
}

void FeatureView::setCellColor(QStandardItemModel*, int) {}

void FeatureView::SetRowCollapsedState() {}

void FeatureView::changeCollapsedState(QModelIndex) {}

bool FeatureView::clmNodeTypeVisible() const
{
    return m_tableView.isColumnHidden(1);
}

void FeatureView::setclmNodeTypeVisible(bool) {}

void FeatureView::setMinWdtShowingClmNodeType(int width)
{
    m_minWdtShowingClmNodeType = width;
}

void FeatureView::updateClmNodeTypeVisible() {}

void FeatureView::closeEditOperation() {}

void FeatureView::setWriteInProgress(bool) {}

void FeatureView::selectSortCategory() {}

void FeatureView::selectSortAtoZ() {}

void FeatureView::selectBeginner() {}

void FeatureView::selectExpert() {}

void FeatureView::selectGuru() {}

void FeatureView::selectInvisible() {}

void FeatureView::tableRowClicked(QModelIndex) {}

void FeatureView::tableRowDoubleClicked(QModelIndex) {}

void FeatureView::columnHeaderDoubleClicked() {}

void FeatureView::updateAllFeatures(bool) {}

void FeatureView::resizeEvent(QResizeEvent*) {}
