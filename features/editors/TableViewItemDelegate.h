#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

class FeatureView;

/// The editors of the feature table's value column: makes the editor that the node item asks for, loads it, commits
/// what was typed, and has the view read everything anew after a write. Lives on the GUI thread.
///
/// The index of every call is one of the view's table. Without a view, and in rows without a camera node, no editor
/// opens.
class TableViewItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit TableViewItemDelegate(QObject* parent = nullptr);

    /// The view whose items and description box this delegate serves.
    void setView(FeatureView* view);

    /// True while a node item writes: a write may run the event loop, and no editor opens meanwhile.
    [[nodiscard]] bool writeInProgress() const { return m_writeInProgress; }
    void setWriteInProgress(bool inProgress) { m_writeInProgress = inProgress; }

    /// Rows that the table hides are not painted.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Shows the row's item in the description box, which reads its access mode anew; then the editor of its kind, or
    /// none where the item is not writable, a write is in progress or the column is not the value column.
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Loads the editor without writing to the camera. May be called again at any time, also from within a write.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;

    /// Writes the text of a line edit and what a slider editor holds; the other editors wrote when they were used.
    /// Then every value is read anew if any was written, by whatever way.
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

private:
    QPointer<FeatureView> m_view;
    bool m_writeInProgress = false;
};
