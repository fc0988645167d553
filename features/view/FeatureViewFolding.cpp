// Folding of categories, clicks and keys on rows, and the node-type column, which is hidden if the view is narrow.

#include "features/description/DescBox.h"
#include "features/view/FeatureView.h"
#include "features/view/UpdatesPaused.h"

#include <QCursor>
#include <QKeyEvent>
#include <QPersistentModelIndex>

#include <vector>

namespace {

constexpr int kFoldIconWidth = 21; // from the table's left edge; a click within this width folds

} // namespace

int FeatureView::sourceRow(int tableRow) const
{
    return m_filterModel.mapToSource(m_filterModel.index(tableRow, NameColumn)).row();
}

bool FeatureView::isCategory(int sourceRow) const
{
    // Cached when the model is set: thousands of rows are queried at once.
    if (static_cast<std::size_t>(sourceRow) < m_categoryRows.size())
        return m_categoryRows[static_cast<std::size_t>(sourceRow)];
    const QStandardItem* const name = m_sourceModel->item(sourceRow, NameColumn);
    return name && name->data(LevelRole).toString() == QLatin1String("C");
}

void FeatureView::noteCategories()
{
    m_categoryRows.clear();
    const int rows = m_sourceModel ? m_sourceModel->rowCount() : 0;
    for (int row = 0; row < rows; ++row)
        m_categoryRows.push_back(isCategory(row));
}

void FeatureView::SetRowCollapsedState()
{
    // Decide first, then hide: every row change costs the table time.
    std::vector<bool> hidden(static_cast<std::size_t>(m_filterModel.rowCount()), false);
    if (!m_sortAtoZ) {
        // A category is shown if a feature follows it directly. The rows of a nested category, and those that follow
        // them in the outer one, belong to the nested one.
        bool expanded = false;
        bool afterCategory = false;
        for (std::size_t row = 0; row < hidden.size(); ++row) {
            const int source = sourceRow(static_cast<int>(row));
            if (isCategory(source)) {
                expanded = m_sourceModel->item(source, NameColumn)->data(ExpandedRole).toBool();
                afterCategory = true;
                hidden[row] = true;
                continue;
            }
            if (afterCategory)
                hidden[row - 1] = false;
            afterCategory = false;
            hidden[row] = !expanded;
        }
    }

    const UpdatesPaused paused(m_tableView); // otherwise each row costs time in proportion to all of them
    for (std::size_t row = 0; row < hidden.size(); ++row)
        m_tableView.setRowHidden(static_cast<int>(row), hidden[row]);
}

void FeatureView::changeCollapsedState(QModelIndex index)
{
    QStandardItem* const name = sourceItem(index, NameColumn);
    if (!name || !isCategory(name->row()))
        return;
    const bool expanded = !name->data(ExpandedRole).toBool();
    name->setData(expanded, ExpandedRole);
    name->setIcon(expanded ? m_expandedIcon : m_foldedIcon);
    SetRowCollapsedState();
}

/// The keyboard equivalent of a click on the fold icon. True if the key was handled.
bool FeatureView::foldByKey(const QKeyEvent& key)
{
    const QModelIndex current = m_tableView.currentIndex();
    const QStandardItem* const name = sourceItem(current, NameColumn);
    if (!name || !isCategory(name->row()))
        return false;
    const bool expanded = name->data(ExpandedRole).toBool();
    switch (key.key()) {
    case Qt::Key_Right:
        if (!expanded)
            changeCollapsedState(current);
        return true;
    case Qt::Key_Left:
        if (expanded)
            changeCollapsedState(current);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        changeCollapsedState(current);
        return true;
    default:
        return false;
    }
}

void FeatureView::tableRowClicked(QModelIndex index)
{
    const QPersistentModelIndex clicked = index; // a read may change the rows
    m_descBox->setText(itemAt(index));
    if (m_tableView.mapFromGlobal(QCursor::pos()).x() < kFoldIconWidth)
        changeCollapsedState(clicked);
}

void FeatureView::tableRowDoubleClicked(QModelIndex index)
{
    changeCollapsedState(index);
}

void FeatureView::columnHeaderDoubleClicked()
{
    setclmNodeTypeVisible(clmNodeTypeVisible());
}

bool FeatureView::clmNodeTypeVisible() const
{
    return m_tableView.isColumnHidden(TypeColumn);
}

void FeatureView::setclmNodeTypeVisible(bool visible)
{
    m_tableView.setColumnHidden(TypeColumn, !visible);
}

void FeatureView::setMinWdtShowingClmNodeType(int width)
{
    m_minWdtShowingClmNodeType = width;
    updateClmNodeTypeVisible();
}

void FeatureView::updateClmNodeTypeVisible()
{
    setclmNodeTypeVisible(m_minWdtShowingClmNodeType <= width());
}

void FeatureView::resizeEvent(QResizeEvent*)
{
    updateClmNodeTypeVisible();
}
