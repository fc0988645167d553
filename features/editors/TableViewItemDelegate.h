#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

class FeatureView;

/// The editors of the feature table's value column: creates the editor that the node item asks for, loads it, commits
/// what was typed, and has the view read everything again after a write. Lives on the GUI thread.
///
/// Every index belongs to the model of the view's table. Without a view, and in rows without a camera node, no editor
/// opens.
class TableViewItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit TableViewItemDelegate(QObject* parent = nullptr);

    /// The view whose items and description box this delegate serves.
    void setView(FeatureView* view);

    /// True while a node item writes. A write may run the event loop, so no editor opens meanwhile.
    [[nodiscard]] bool writeInProgress() const { return m_writeInProgress; }
    void setWriteInProgress(bool inProgress) { m_writeInProgress = inProgress; }

    /// Skips rows that the table hides.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Shows the row's item in the description box, which reads its access mode again; then creates the editor of its
    /// kind, or none if the item is not writable, a write is in progress or the column is not the value column.
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Loads the editor without writing to the camera. May be called again at any time, even during a write.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;

    /// Writes the text of a line edit or the value of a slider editor; the other editors have written when they were
    /// used. Then all values are read again if any was written since the last time.
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

private:
    QPointer<FeatureView> m_view;
    bool m_writeInProgress = false;
};
