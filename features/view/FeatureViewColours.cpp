// The colours of the rows, by the access mode of their nodes.

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "features/view/HeldChanges.h"

#include <QColor>

#include <algorithm>
#include <iterator>
#include <tuple>

namespace {

enum Colours { NotImplemented, NotAvailable, ReadOnly, WriteOnly, ReadWrite, ReadOnlyCategory, ColoursCount };

struct ColourPair {
    QRgb background;
    QRgb foreground;
};

// In the order of Colours.
constexpr ColourPair kColours[] = {
    {qRgb(128, 128, 128), qRgb(208, 208, 208)}, //
    {qRgb(192, 192, 192), qRgb(64, 64, 64)},    //
    {qRgb(255, 255, 255), qRgb(128, 64, 0)},    //
    {qRgb(255, 255, 255), qRgb(0, 160, 0)},     //
    {qRgb(255, 255, 255), qRgb(0, 0, 0)},       //
    {qRgb(212, 255, 255), qRgb(64, 64, 255)},   //
};

/// Read-write for every other value, 6 (not read yet) included.
Colours pairOf(const GenAPINodeItem& item)
{
    switch (item.getAccessMode()) {
    case Orvo::NODE_ACCESS_MODE_NI:
        return NotImplemented;
    case Orvo::NODE_ACCESS_MODE_NA:
        return NotAvailable;
    case Orvo::NODE_ACCESS_MODE_WO:
        return WriteOnly;
    case Orvo::NODE_ACCESS_MODE_RO:
        return item.isCategory() ? ReadOnlyCategory : ReadOnly;
    default:
        return ReadWrite;
    }
}

/// Cells usually share their data with the variant that was set, and comparing separate variants is slow.
bool isColour(const QVariant& value, const QVariant& colour)
{
    return value.userType() == colour.userType() && (value.constData() == colour.constData() || value == colour);
}

} // namespace

void FeatureView::makeRowColours()
{
    static_assert(std::size(kColours) == ColoursCount);
    static_assert(std::tuple_size_v<decltype(m_rowColours)> == ColoursCount);
    for (std::size_t i = 0; i < m_rowColours.size(); ++i)
        m_rowColours[i] = {QColor(kColours[i].background), QColor(kColours[i].foreground)};
}

const FeatureView::RowColours& FeatureView::coloursOf(const GenAPINodeItem& item) const
{
    return m_rowColours[pairOf(item)];
}

void FeatureView::setColours(const RowCells& cells, const RowColours& colours)
{
    for (QStandardItem* const cell : cells) {
        if (!cell)
            continue;
        cell->setData(colours.background, Qt::BackgroundRole);
        cell->setData(colours.foreground, Qt::ForegroundRole);
    }
}

void FeatureView::setCellColor(QStandardItemModel* model, int row)
{
    if (!model || row < 0 || row >= m_items.size())
        return;
    const auto cell = [&](Column column) {
        QStandardItem* const item = model->item(row, column);
        return item ? item : model->itemFromIndex(model->index(row, column)); // creates the item
    };
    const RowCells cells = {cell(NameColumn), cell(TypeColumn), cell(ValueColumn)};
    const RowColours& colours = coloursOf(*m_items.at(row));

    if (model == m_sourceModel.get())
        m_colouredRow = row;

    // Most rows have the right colours already, and comparing is cheaper than notifying the view.
    if (std::all_of(cells.begin(), cells.end(), [&](const QStandardItem* item) {
            return !item || (isColour(item->data(Qt::BackgroundRole), colours.background) &&
                             isColour(item->data(Qt::ForegroundRole), colours.foreground));
        }))
        return;

    HeldChanges ofThisRow(model);
    setColours(cells, colours);
    const bool heldAnyway = m_heldChanges && model == m_sourceModel.get();
    (heldAnyway ? *m_heldChanges : ofThisRow).note(row, NameColumn);
}
