// Filters and sorts the rows, and reads all values again.

#include "features/description/DescBox.h"
#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "features/view/HeldChanges.h"
#include "features/view/UpdatesPaused.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>
#include <vector>

using Orvo::TC_NODE_VISIBILITY;

namespace {

/// A level includes the lower ones. Categories are shown only in the camera's own order.
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

/// An unknown level counts as Beginner.
const LevelPattern& patternOf(int level)
{
    for (const LevelPattern& pattern : kLevelPatterns) {
        if (pattern.level == level)
            return pattern;
    }
    return kLevelPatterns[0];
}

bool isBeingPainted(const QWidget& widget)
{
    for (const QWidget* painted = &widget; painted != nullptr; painted = painted->parentWidget()) {
        if (painted->testAttribute(Qt::WA_WState_InPaintEvent))
            return true;
    }
    return false;
}

} // namespace

/// The longest texts of a column. One of them is the widest, and counting characters is faster than measuring all
/// texts.
class FeatureView::LongestTexts {
public:
    void add(int length, int row)
    {
        if (m_found.size() == kMost && length <= m_found.front().first)
            return;
        if (m_found.size() == kMost) {
            std::pop_heap(m_found.begin(), m_found.end(), std::greater<>());
            m_found.pop_back();
        }
        m_found.emplace_back(length, row);
        std::push_heap(m_found.begin(), m_found.end(), std::greater<>());
    }

    /// Lengths, and rows of the source model.
    [[nodiscard]] const std::vector<std::pair<int, int>>& found() const { return m_found; }

private:
    static constexpr std::size_t kMost = 32;

    std::vector<std::pair<int, int>> m_found; // a heap, the shortest in front
};

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
    // Set before the new source model, so that its rows are filtered and sorted only once.
    m_filterModel.arrange(filter, sortAtoZ ? static_cast<int>(Qt::DisplayRole) : static_cast<int>(ItemIndexRole),
                          m_sourceModel.get());
    m_filterModel.setSourceModel(m_sourceModel.get());
    if (m_tableView.model() != &m_filterModel)
        m_tableView.setModel(&m_filterModel);

    spanCategories();
    SetRowCollapsedState();
    fitColumns();
    updateClmNodeTypeVisible();
}

/// The table does not notice when a row disappears together with its editor, and would never open another one.
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

/// The value column takes the remaining width. A hidden column keeps its width.
void FeatureView::fitColumns()
{
    std::array<LongestTexts, TypeColumn + 1> shown;
    std::array<LongestTexts, TypeColumn + 1> folded;
    for (int row = 0; row < m_filterModel.rowCount(); ++row) {
        const int source = sourceRow(row);
        const bool hidden = m_tableView.isRowHidden(row);
        // A folded category is never shown, and spans all columns.
        if (hidden && isCategory(source))
            continue;
        for (const int column : {NameColumn, TypeColumn}) {
            if (const QStandardItem* const cell = m_sourceModel->item(source, column))
                (hidden ? folded : shown)[static_cast<std::size_t>(column)].add(cell->text().size(), source);
        }
    }
    for (const int column : {NameColumn, TypeColumn}) {
        if (m_tableView.isColumnHidden(column))
            continue;
        // The table itself measures only the first thousand visible rows. Folded rows should be readable when they
        // appear, but they make a column at most two fifths of the view wide: beside the types, that leaves the values
        // enough room for texts like "== Not Implemented ==".
        m_tableView.resizeColumnToContents(column);
        const auto at = static_cast<std::size_t>(column);
        const int wanted = std::max(widthOf(column, shown[at]), std::min(widthOf(column, folded[at]), width() * 2 / 5));
        if (wanted > m_tableView.columnWidth(column))
            m_tableView.setColumnWidth(column, wanted);
    }
}

/// The width that the column needs for these texts.
int FeatureView::widthOf(int column, const LongestTexts& texts) const
{
    int widest = 0;
    for (const auto& [length, row] : texts.found()) {
        const QModelIndex cell = m_filterModel.mapFromSource(m_sourceModel->index(row, column));
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
    // A change notification for a row reloads its editor and discards what is being typed.
    const bool spared = m_sortAtoZ && m_tableView.isPersistentEditorOpen(m_tableView.currentIndex());
    HeldChanges held(m_sourceModel.get(), spared ? HeldChanges::Telling::OfEachRow : HeldChanges::Telling::OfRuns);
    m_heldChanges = &held;
    for (int row = 0; row < m_items.size(); ++row) { // reading may change the list
        const QPointer<GenAPINodeItem> item = m_items.at(row);
        const QString before = item->text();
        m_colouredRow = -1;
        item->updateVals(false);
        if (item && item->text() != before)
            held.note(row, ValueColumn);
        if (m_colouredRow != row) // otherwise reading the access mode has already coloured the row
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
    // A table that is being painted may lay itself out, which hides an editor; that commits and gets here.
    QWidget& viewport = *m_tableView.viewport();
    if (isBeingPainted(viewport)) {
        viewport.update();
    } else {
        viewport.repaint();
    }

    const QModelIndex current = m_tableView.currentIndex();
    if (current.isValid())
        m_descBox->setText(itemAt(current));
}
