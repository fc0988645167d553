#include "features/editors/TableViewItemDelegate.h"

#include "features/description/DescBox.h"
#include "features/editors/LineEditWithSlider.h"
#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPersistentModelIndex>
#include <QPushButton>
#include <QSpinBox>

#include <algorithm>
#include <limits>

namespace {

// --- Making an editor -----------------------------------------------------------------------------------------------

QWidget* makeLineEdit(QWidget* parent)
{
    auto* lineEdit = new QLineEdit(parent);
    lineEdit->setFrame(false);
    lineEdit->setMaxLength(
        std::numeric_limits<int>::max()); // a truncated text would be written when the line edit is left
    return lineEdit;
}

QWidget* makeComboBox(QWidget* parent)
{
    auto* comboBox = new QComboBox(parent);
    comboBox->setFrame(false);
    return comboBox;
}

QWidget* makeSlider(QWidget* parent)
{
    return new LineEditWithSlider(parent);
}

QWidget* makeButton(QWidget* parent)
{
    return new QPushButton(TableViewItemDelegate::tr("Execute"), parent);
}

QWidget* makeSpinBox(QWidget* parent)
{
    auto* spinBox = new QSpinBox(parent);
    spinBox->setFrame(false);
    spinBox->setRange(0, 100);
    return spinBox;
}

// --- Loading it -----------------------------------------------------------------------------------------------------

// The signal that writes is disconnected while an editor is filled: filling writes nothing, and a reloaded editor is
// connected only once. Nothing in between calls the camera, which could reload the editor recursively.
template <typename Editor, typename Signal, typename Slot, typename Fill>
void fill(Editor& editor, Signal changed, GenAPINodeItem* item, Slot write, Fill fillEditor)
{
    if (item != nullptr)
        QObject::disconnect(&editor, changed, item, write);
    fillEditor();
    if (item != nullptr)
        QObject::connect(&editor, changed, item, write);
}

void loadLineEdit(QWidget& editor, GenAPINodeItem*, const QVariant& value)
{
    if (auto* lineEdit = qobject_cast<QLineEdit*>(&editor))
        lineEdit->setText(value.toString());
}

void loadComboBox(QWidget& editor, GenAPINodeItem* item, const QVariant& value)
{
    auto* comboBox = qobject_cast<QComboBox*>(&editor);
    if (comboBox == nullptr)
        return;
    const QStringList choices = item != nullptr ? item->getItemsValue() : QStringList();
    fill(*comboBox, qOverload<int>(&QComboBox::currentIndexChanged), item, &GenAPINodeItem::combo_CurrentIndexChanged,
         [&] {
             comboBox->setInsertPolicy(QComboBox::NoInsert);
             comboBox->setEditable(false);
             comboBox->clear();
             comboBox->insertItems(0, choices);
             // No entry if the value is not one, such as "== Write-Only ==": otherwise the first could not be chosen.
             comboBox->setCurrentIndex(comboBox->findText(value.toString()));
         });
}

void loadSlider(QWidget& editor, GenAPINodeItem* item, const QVariant&)
{
    if (auto* slider = qobject_cast<LineEditWithSlider*>(&editor))
        slider->setValue(item);
}

void loadButton(QWidget& editor, GenAPINodeItem* item, const QVariant&)
{
    if (auto* button = qobject_cast<QPushButton*>(&editor))
        fill(*button, &QPushButton::clicked, item, &GenAPINodeItem::button_Clicked, [] {});
}

void loadSpinBox(QWidget& editor, GenAPINodeItem* item, const QVariant& value)
{
    auto* spinBox = qobject_cast<QSpinBox*>(&editor);
    if (spinBox == nullptr)
        return;
    fill(*spinBox, qOverload<int>(&QSpinBox::valueChanged), item, &GenAPINodeItem::spinBox_ValueChanged, [&] {
        if (item != nullptr) {
            // Deliberately the low 32 bits. No node uses a spin box.
            spinBox->setMinimum(static_cast<int>(item->getMinInt()));
            spinBox->setMaximum(static_cast<int>(item->getMaxInt()));
            spinBox->setSingleStep(static_cast<int>(item->getIncInt()));
        }
        spinBox->setValue(value.toInt());
    });
}

// --- Committing it --------------------------------------------------------------------------------------------------

void commitText(QWidget& editor, QAbstractItemModel& model, const QModelIndex& index)
{
    // The write may reload this editor or close it.
    const QPointer<QLineEdit> lineEdit = qobject_cast<QLineEdit*>(&editor);
    if (lineEdit.isNull())
        return;
    const QPersistentModelIndex cell(index);
    model.setData(index, lineEdit->text(), Qt::EditRole);
    if (lineEdit)
        lineEdit->setText(cell.data(Qt::EditRole).toString());
}

void commitSlider(QWidget& editor, QAbstractItemModel&, const QModelIndex&)
{
    if (auto* slider = qobject_cast<LineEditWithSlider*>(&editor))
        slider->getValue();
}

/// These editors have already written their values.
void commitNothing(QWidget&, QAbstractItemModel&, const QModelIndex&) {}

struct EditorRow {
    EditorWidgetType kind;
    QWidget* (*make)(QWidget* parent);
    void (*load)(QWidget& editor, GenAPINodeItem* item, const QVariant& value);
    void (*commit)(QWidget& editor, QAbstractItemModel& model, const QModelIndex& index);
};

constexpr EditorRow kEditorRows[] = {
    {EditorLineEdit, makeLineEdit, loadLineEdit, commitText},
    {EditorComboBox, makeComboBox, loadComboBox, commitNothing},
    {EditorSlider, makeSlider, loadSlider, commitSlider},
    {EditorButton, makeButton, loadButton, commitNothing},
    {EditorSpinBox, makeSpinBox, loadSpinBox, commitNothing},
};

const EditorRow* rowOf(const QModelIndex& index)
{
    const int kind = index.data(EditorKindRole).toInt();
    const auto* row = std::find_if(std::begin(kEditorRows), std::end(kEditorRows),
                                   [kind](const EditorRow& r) { return r.kind == kind; });
    return row == std::end(kEditorRows) ? nullptr : row;
}

/// An unknown editor counts as a line edit.
const EditorRow& rowOfOpen(const QModelIndex& index)
{
    const EditorRow* row = rowOf(index);
    return row != nullptr ? *row : kEditorRows[0];
}

} // namespace

TableViewItemDelegate::TableViewItemDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

void TableViewItemDelegate::setView(FeatureView* view)
{
    m_view = view;
}

void TableViewItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (m_view.isNull() || !m_view->tableView()->isRowHidden(index.row()))
        QStyledItemDelegate::paint(painter, option, index);
}

QWidget* TableViewItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                             const QModelIndex& index) const
{
    if (m_view.isNull())
        return nullptr;
    const EditorRow* row = rowOf(index);
    const QPointer<GenAPINodeItem> item = m_view->itemAt(index);
    // Must come before the access mode is used: the description box reads it again, and receivers of that change may
    // change the rows.
    m_view->descBox()->setText(item);

    if (item.isNull() || !item->isWritable() || m_writeInProgress || index.column() != FeatureView::ValueColumn)
        return nullptr;
    if (row == nullptr)
        return nullptr;
    QWidget* const editor = row->make(parent);
    // The table paints the cell's text underneath, and not every style draws a frameless widget opaque.
    editor->setAutoFillBackground(true);
    editor->setBackgroundRole(QPalette::Base);
    return editor;
}

void TableViewItemDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (editor == nullptr)
        return;
    const QPointer<GenAPINodeItem> item = m_view ? m_view->itemAt(index) : nullptr;
    rowOfOpen(index).load(*editor, item, index.data(Qt::EditRole));
    if (item)
        item->setEditor(editor);
}

void TableViewItemDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (editor == nullptr)
        return;
    rowOfOpen(index).commit(*editor, *model, index);
    if (m_view && m_view->autoReRead())
        m_view->updateAllFeatures(false);
}

void TableViewItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                 const QModelIndex&) const
{
    if (editor != nullptr)
        editor->setGeometry(option.rect);
}
