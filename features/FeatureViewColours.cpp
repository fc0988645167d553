// The colours of the rows, by the access mode of their nodes.

#include "features/FeatureView.h"
#include "features/GenAPINodeItem.h"

#include <QColor>
#include <QSignalBlocker>

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

/// Read-write for every value that is none of the others, 6 (not read yet) too.
Colours coloursOf(const GenAPINodeItem& item)
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

} // namespace

void FeatureView::makeRowColours()
{
    static_assert(std::size(kColours) == ColoursCount);
    static_assert(std::tuple_size_v<decltype(m_rowColours)> == ColoursCount);
    for (std::size_t i = 0; i < m_rowColours.size(); ++i)
        m_rowColours[i] = {QColor(kColours[i].background), QColor(kColours[i].foreground)};
}

void FeatureView::setCellColor(QStandardItemModel* model, int row)
{
    if (!model || row < 0 || row >= m_items.size())
        return;
    const RowColours& colours = m_rowColours[coloursOf(*m_items.at(row))];

    // The row is told once where it changes, instead of every colour of every cell.
    bool changed = false;
    {
        const QSignalBlocker quiet(model);
        for (int column = 0; column < ColumnCount; ++column) {
            QStandardItem* const item = model->item(row, column);
            if (!item)
                continue;
            if (item->data(Qt::BackgroundRole) != colours.background) {
                item->setData(colours.background, Qt::BackgroundRole);
                changed = true;
            }
            if (item->data(Qt::ForegroundRole) != colours.foreground) {
                item->setData(colours.foreground, Qt::ForegroundRole);
                changed = true;
            }
        }
    }
    if (changed)
        emit model->dataChanged(model->index(row, NameColumn), model->index(row, ValueColumn),
                                {Qt::BackgroundRole, Qt::ForegroundRole});
}
