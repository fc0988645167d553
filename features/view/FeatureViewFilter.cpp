// Which rows are shown, in which order, and the reading of all of them.

#include "features/description/DescBox.h"
#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "features/view/HeldChanges.h"
#include "features/view/UpdatesPaused.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

using Orvo::TC_NODE_VISIBILITY;

namespace {

constexpr int kMostMeasured = 32; // of the texts in a column

/// Lower levels are shown with the higher ones. Categories stand between features in their own order only.
struct LevelPattern {
    int level;
    const char* inCategoryOrder;
    const char* inAtoZOrder;
};

constexpr LevelPattern kLevelPatterns[] = {
    {Orvo::NODE_VISIBILITY_BEGINNER, "[BC]", "B"},
    {Orvo::NODE_VISIBILITY_EXPERT, "[BEC]", "[BE]"},
    {Orvo::NODE_VISIBILITY_GURU, "[BEGC]", "[BEG]"},
    {Orvo::NODE_VISIBILITY_INVISIBLE, "[BEGIC]", "[BEGI]"},
};

/// Of Beginner for a level that there is not.
const LevelPattern& patternOf(int level)
{
    for (const LevelPattern& pattern : kLevelPatterns) {
        if (pattern.level == level)
            return pattern;
    }
    return kLevelPatterns[0];
}

} // namespace

void FeatureView::sortAndFilter(bool sortAtoZ, TC_NODE_VISIBILITY level)
{
    m_level = level;
    m_sortAtoZ = sortAtoZ;
    checkActions();

    const UpdatesPaused paused(m_tableView);
    const LevelPattern& pattern = patternOf(m_level);
    const QRegExp filter(QString::fromLatin1(sortAtoZ ? pattern.inAtoZOrder : pattern.inCategoryOrder),
                         m_niFeatureVisible ? Qt::CaseInsensitive : Qt::CaseSensitive);
    closeEditorUnlessAccepted(filter);
    m_filterModel.setFilterKeyColumn(NameColumn);
    m_filterModel.setFilterRole(LevelRole);
    // Before a new source, which is then filtered and sorted once.
    m_filterModel.arrange(filter, sortAtoZ ? static_cast<int>(Qt::DisplayRole) : static_cast<int>(ItemIndexRole));
    m_filterModel.setSourceModel(m_sourceModel.get());
    if (m_tableView.model() != &m_filterModel)
        m_tableView.setModel(&m_filterModel);

    spanCategories();
    SetRowCollapsedState();
    fitColumns();
    updateClmNodeTypeVisible();
}

/// The table never hears that a row went with its editor, and would open no other one.
void FeatureView::closeEditorUnlessAccepted(const QRegExp& filter)
{
    const QModelIndex current = m_tableView.currentIndex();
    if (current.isValid() && filter.indexIn(current.siblingAtColumn(NameColumn).data(LevelRole).toString()) < 0)
        m_tableView.setCurrentIndex(QModelIndex());
}

void FeatureView::spanCategories()
{
    m_tableView.clearSpans();
    if (m_sortAtoZ)
        return;
    for (int row = 0; row < m_filterModel.rowCount(); ++row) {
        if (isCategory(sourceRow(row)))
            m_tableView.setSpan(row, NameColumn, 1, ColumnCount);
    }
}

/// The value column is stretched to what is left. A hidden column keeps its width.
void FeatureView::fitColumns()
{
    // Of the source model. A folded category is never shown, and spans all columns.
    std::vector<int> shown;
    std::vector<int> folded;
    for (int row = 0; row < m_filterModel.rowCount(); ++row) {
        const int source = sourceRow(row);
        if (!m_tableView.isRowHidden(row)) {
            shown.push_back(source);
        } else if (!isCategory(source)) {
            folded.push_back(source);
        }
    }
    for (const int column : {NameColumn, TypeColumn}) {
        if (m_tableView.isColumnHidden(column))
            continue;
        // Of the shown rows the table itself measures a thousand. Folded ones are to be read when they appear; for
        // their sake a column takes two fifths of the view at most: beside the types that leaves the values room for
        // texts like "== Not Implemented ==".
        m_tableView.resizeColumnToContents(column);
        const int wanted = std::max(widthOf(column, shown), std::min(widthOf(column, folded), width() * 2 / 5));
        if (wanted > m_tableView.columnWidth(column))
            m_tableView.setColumnWidth(column, wanted);
    }
}

/// What the column needs for the texts of these source rows.
int FeatureView::widthOf(int column, const std::vector<int>& rows) const
{
    // The widest text is one of the longest, and measuring takes longer than counting.
    std::vector<std::pair<int, int>> byLength;
    byLength.reserve(rows.size());
    for (const int row : rows) {
        if (const QStandardItem* const cell = m_sourceModel->item(row, column))
            byLength.emplace_back(cell->text().size(), row);
    }
    const auto measured = byLength.begin() + std::min(kMostMeasured, static_cast<int>(byLength.size()));
    std::partial_sort(byLength.begin(), measured, byLength.end(), std::greater<>());
    int widest = 0;
    for (auto entry = byLength.begin(); entry != measured; ++entry) {
        const QModelIndex cell = m_filterModel.mapFromSource(m_sourceModel->index(entry->second, column));
        widest = std::max(widest, m_tableView.sizeHintForIndex(cell).width());
    }
    return widest + (m_tableView.showGrid() ? 1 : 0);
}

void FeatureView::setLevelInvisibleAvailable(bool available)
{
    m_levelInvisibleAvailable = available;
    m_actions[InvisibleAction]->setVisible(available);
}

void FeatureView::selectSortCategory()
{
    sortAndFilter(false, static_cast<TC_NODE_VISIBILITY>(m_level));
}

void FeatureView::selectSortAtoZ()
{
    sortAndFilter(true, static_cast<TC_NODE_VISIBILITY>(m_level));
}

void FeatureView::selectBeginner()
{
    sortAndFilter(m_sortAtoZ, Orvo::NODE_VISIBILITY_BEGINNER);
}

void FeatureView::selectExpert()
{
    sortAndFilter(m_sortAtoZ, Orvo::NODE_VISIBILITY_EXPERT);
}

void FeatureView::selectGuru()
{
    sortAndFilter(m_sortAtoZ, Orvo::NODE_VISIBILITY_GURU);
}

void FeatureView::selectInvisible()
{
    sortAndFilter(m_sortAtoZ, Orvo::NODE_VISIBILITY_INVISIBLE);
}

void FeatureView::readEveryItem()
{
    // An editor loads its value anew, over what is typed, where its row is told of.
    const bool spared = m_sortAtoZ && m_tableView.isPersistentEditorOpen(m_tableView.currentIndex());
    HeldChanges held(m_sourceModel.get(), spared ? HeldChanges::Telling::OfEachRow : HeldChanges::Telling::OfRuns);
    m_heldChanges = &held;
    for (int row = 0; row < m_items.size(); ++row) { // reading may change the list
        const QPointer<GenAPINodeItem> item = m_items.at(row);
        const QString before = item->text();
        item->updateVals(false);
        if (item && item->text() != before)
            held.note(row, ValueColumn);
        setCellColor(row);
    }
    m_heldChanges = nullptr;
}

void FeatureView::updateAllFeatures(bool force)
{
    if (m_reReading) {
        m_reReadAgain = true;
        return;
    }
    if (!m_valuesWritten && !force)
        return;

    m_reReading = true;
    do {
        m_reReadAgain = false;
        readEveryItem();
    } while (m_reReadAgain);
    m_valuesWritten = false;
    m_reReading = false;
    m_tableView.viewport()->repaint();

    const QModelIndex current = m_tableView.currentIndex();
    if (current.isValid())
        m_descBox->setText(itemAt(current));
}
