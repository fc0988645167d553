#pragma once

#include <QStyledItemDelegate>

/// Editors for column 0 of any model, chosen by the name under EditorKindRole: "SpinBox", "ComboBox", "Button",
/// "Slider" or "TextBox". It knows nothing of cameras, and the viewer does not use it. Lives on the GUI thread.
class TreeViewItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit TreeViewItemDelegate(QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
};
