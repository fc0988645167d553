#include "features/editors/TreeViewItemDelegate.h"

#include "features/item/NodeEditor.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

#include <array>

namespace {

QWidget* spinBox(QWidget* parent)
{
    auto* spinBox = new QSpinBox(parent);
    spinBox->setFrame(false);
    spinBox->setRange(0, 100);
    return spinBox;
}

QWidget* comboBox(QWidget* parent)
{
    auto* comboBox = new QComboBox(parent);
    comboBox->setFrame(false);
    return comboBox;
}

QWidget* button(QWidget* parent)
{
    return new QPushButton(parent);
}

QWidget* slider(QWidget* parent)
{
    return new QSlider(Qt::Horizontal, parent);
}

QWidget* textBox(QWidget* parent)
{
    auto* textBox = new QLineEdit(parent);
    textBox->setFrame(false);
    return textBox;
}

struct EditorRow {
    const char* name;
    QWidget* (*create)(QWidget* parent);
};

constexpr std::array<EditorRow, 5> kEditorRows = {{
    {"SpinBox", spinBox},
    {"ComboBox", comboBox},
    {"Button", button},
    {"Slider", slider},
    {"TextBox", textBox},
}};

} // namespace

TreeViewItemDelegate::TreeViewItemDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

QWidget* TreeViewItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                            const QModelIndex& index) const
{
    if (index.column() != 0)
        return nullptr;
    const QString name = index.data(EditorKindRole).toString();
    for (const EditorRow& row : kEditorRows) {
        if (name == QLatin1String(row.name))
            return row.create(parent);
    }
    return nullptr;
}

void TreeViewItemDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QVariant value = index.data(Qt::EditRole);
    if (auto* spinBox = qobject_cast<QSpinBox*>(editor)) {
        spinBox->setValue(value.toInt());
    } else if (auto* slider = qobject_cast<QSlider*>(editor)) {
        slider->setValue(value.toInt());
    } else if (auto* comboBox = qobject_cast<QComboBox*>(editor)) {
        comboBox->setCurrentText(value.toString());
    } else if (auto* textBox = qobject_cast<QLineEdit*>(editor)) {
        textBox->setText(value.toString());
    }
}

void TreeViewItemDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (auto* spinBox = qobject_cast<QSpinBox*>(editor)) {
        spinBox->interpretText(); // turns typed text into the value
        model->setData(index, spinBox->value(), Qt::EditRole);
    } else if (auto* slider = qobject_cast<QSlider*>(editor)) {
        model->setData(index, slider->value(), Qt::EditRole);
    } else if (auto* comboBox = qobject_cast<QComboBox*>(editor)) {
        model->setData(index, comboBox->currentText(), Qt::EditRole);
    } else if (auto* textBox = qobject_cast<QLineEdit*>(editor)) {
        model->setData(index, textBox->text(), Qt::EditRole);
    }
}

void TreeViewItemDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                const QModelIndex&) const
{
    if (editor != nullptr)
        editor->setGeometry(option.rect);
}
