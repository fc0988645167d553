#include "features/TableViewItemDelegate.h"

#include "features/FeatureView.h"

TableViewItemDelegate::TableViewItemDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

void TableViewItemDelegate::setView(FeatureView* view)
{
    m_view = view;
}

GenAPINodeItem* TableViewItemDelegate::itemAt(const QModelIndex&) const
{
    return nullptr;
}

void TableViewItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
}

QWidget* TableViewItemDelegate::createEditor(QWidget*, const QStyleOptionViewItem&, const QModelIndex&) const
{
    return nullptr;
}

void TableViewItemDelegate::setEditorData(QWidget*, const QModelIndex&) const {}

void TableViewItemDelegate::setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const {}

void TableViewItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                 const QModelIndex&) const
{
    if (editor != nullptr)
        editor->setGeometry(option.rect);
}
