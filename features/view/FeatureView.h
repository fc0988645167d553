#pragma once

#include "camera/OrvoCamApi.h"
#include "features/editors/TableViewItemDelegate.h"
#include "features/item/NodeItemListener.h"
#include "features/view/FeatureFilterModel.h"

#include <QAction>
#include <QIcon>
#include <QList>
#include <QPixmap>
#include <QPointer>
#include <QStandardItemModel>
#include <QTableView>
#include <QTimer>
#include <QVariant>
#include <QWidget>

#include <array>
#include <memory>
#include <vector>

class DescBox;
class GenAPINodeItem;
class HeldChanges;
class QHelpEvent;
class QKeyEvent;
class QRegExp;
class QToolBar;
enum EditorWidgetType : int;

/// The feature browser of one opened camera: a table with one row per node, its tool bar, and the description of the
/// chosen node. Lives on the GUI thread.
class FeatureView : public QWidget, public NodeItemListener {
    Q_OBJECT

public:
    /// Item data roles in addition to those that a node item sets itself.
    enum Role {
        LevelRole = Qt::UserRole + 4,     ///< column 0: the letter of the user level, the filter key
        ItemIndexRole = Qt::UserRole + 5, ///< every column: the row's index in the item list and the source model
        ExpandedRole = Qt::UserRole + 6,  ///< column 0 of a category: whether the rows below it are shown
    };

    enum Column { NameColumn, TypeColumn, ValueColumn, ColumnCount };

    explicit FeatureView(QWidget* parent = nullptr);
    ~FeatureView() override;

    void createToolBar();
    void createTable();

    // --- The rows ---------------------------------------------------------------------------------------------------

    /// Shows the features of the camera, which must stay open as long as this view lives. Returns 0, or 1 if the camera
    /// has no node map; the table is then unchanged.
    int SetCam(unsigned long hCam);

    /// Creates the item of the node and, for a category, the items of its whole subtree, and appends them to the list.
    /// Items without a model are deleted with this view, or when the next camera is set.
    Orvo::CAM_API_STATUS registerItemsToList(unsigned long hNode);

    /// Takes ownership of the model. The previous items are deleted. The rows keep the order of the model.
    void showModel(QStandardItemModel* model);

    /// Sample rows for developing this view without a camera: one, and nine of them.
    void addFeature(QStandardItemModel* model, int row, const QString& level, const QString& name, const QString& type,
                    const QString& value, EditorWidgetType editor);
    void setFeatureDataDebug(QStandardItemModel* model);

    /// The item in the value column of a row. `index` belongs to the table's model or to the source model. Null if the
    /// row has no camera node.
    [[nodiscard]] GenAPINodeItem* itemAt(const QModelIndex& index) const;

    /// In the order of the rows of the source model, which owns them.
    [[nodiscard]] const QList<GenAPINodeItem*>& items() const { return m_items; }
    [[nodiscard]] QStandardItemModel* sourceModel() const { return m_sourceModel.get(); }
    [[nodiscard]] QTableView* tableView() { return &m_tableView; }
    [[nodiscard]] const QTableView* tableView() const { return &m_tableView; }
    [[nodiscard]] DescBox* descBox() const { return m_descBox; }

    // --- Filtering and sorting --------------------------------------------------------------------------------------

    /// Shows the features up to the level, and the categories if the rows are in the camera's order.
    void sortAndFilter(bool sortAtoZ, Orvo::TC_NODE_VISIBILITY level);

    /// Whether every value is read again after an editor has written one.
    [[nodiscard]] bool autoReRead() const { return m_autoReRead; }
    void setAutoReRead(bool on) { m_autoReRead = on; }

    /// Whether the tool bar offers the Invisible level.
    [[nodiscard]] bool levelInvisibleAvailable() const { return m_levelInvisibleAvailable; }
    void setLevelInvisibleAvailable(bool available);

    /// Whether features that the camera does not implement are shown; takes effect at the next sortAndFilter().
    [[nodiscard]] bool isNIfeatureVisible() const { return m_niFeatureVisible; }
    void setNIfeatureVisible(bool visible) { m_niFeatureVisible = visible; }

    // --- Colours, folding, node-type column -------------------------------------------------------------------------

    /// Colours a row by the access mode of its item.
    void setCellColor(QStandardItemModel* model, int row);
    void setCellColor(int row) override { setCellColor(m_sourceModel.get(), row); }

    /// Shows and hides the rows of the table by the fold states of their categories.
    void SetRowCollapsedState();
    /// Folds or unfolds the category of that row; nothing for the row of a feature.
    void changeCollapsedState(QModelIndex index);

    /// True if the node-type column is hidden: deliberately the opposite of what the name says.
    [[nodiscard]] bool clmNodeTypeVisible() const;
    void setclmNodeTypeVisible(bool visible);
    /// The minimum width of this view, in pixels, at which the node-type column is shown.
    [[nodiscard]] int minWdtShowingClmNodeType() const { return m_minWdtShowingClmNodeType; }
    void setMinWdtShowingClmNodeType(int width);
    void updateClmNodeTypeVisible();

    /// Closes the open editor by resetting the table; the current row stays.
    void closeEditOperation();
    void ScrollToCurrent() {}

    // --- For the node items -----------------------------------------------------------------------------------------

    [[nodiscard]] int opeLogLevel() const override { return m_opeLogLevel; }
    void setOpeLogLevel(int level) { m_opeLogLevel = level; }
    void appendOpeLog(QString& entry) override { emit OpeLogAppended(entry); }
    void triggerWritten() override { emit checkSoftwareTriggerMode(); }
    void setValuesWritten() override { m_valuesWritten = true; }
    void setWriteInProgress(bool inProgress) override { m_delegate.setWriteInProgress(inProgress); }

signals:
    /// One entry of the operation log. A receiver may change the text; it is not used afterwards.
    void OpeLogAppended(QString& text);
    /// The camera's trigger mode or trigger source was written.
    void checkSoftwareTriggerMode();

public slots:
    void selectSortCategory();
    void selectSortAtoZ();
    void selectBeginner();
    void selectExpert();
    void selectGuru();
    void selectInvisible();

    void tableRowClicked(QModelIndex index);
    void tableRowDoubleClicked(QModelIndex index);
    void columnHeaderDoubleClicked();

    /// Reads every value from the camera; without `force` only if one was written since the last time. A nested call
    /// makes the running one start over once.
    void updateAllFeatures(bool force = true) override;

protected:
    void resizeEvent(QResizeEvent* event) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum ToolAction {
        RefreshAction,
        SortCategoryAction,
        SortAzAction,
        BeginnerAction,
        ExpertAction,
        GuruAction,
        InvisibleAction,
        ToolActionCount,
    };
    struct RowColours {
        QVariant background;
        QVariant foreground;
    };
    /// Null if the model has no such column.
    using RowCells = std::array<QStandardItem*, ColumnCount>;

    // FeatureView.cpp
    [[nodiscard]] static std::unique_ptr<QStandardItemModel> emptyModel();
    void dropModel();
    /// The item of the cell in the source row that `index`, of the source model or the table's model, refers to.
    [[nodiscard]] QStandardItem* sourceItem(const QModelIndex& index, int column) const;

    void showToolTip(const QHelpEvent& help);
    void keepCurrentRowInView(QSize before);

    // FeatureViewTree.cpp
    Orvo::CAM_API_STATUS registerSubtree(Orvo::CAM_NODE_HANDLE node, int level);
    void deleteItemsWithoutModel();
    void fillRow(QStandardItemModel& model, int row);

    void checkActions(); // FeatureViewToolBar.cpp

    // FeatureViewFilter.cpp
    void spanCategories();
    void fitColumns();
    class LongestTexts;
    [[nodiscard]] int widthOf(int column, const LongestTexts& texts) const;
    void closeEditorUnlessAccepted(const QRegExp& filter);
    void readEveryItem();

    // FeatureViewColours.cpp
    void makeRowColours();
    [[nodiscard]] const RowColours& coloursOf(const GenAPINodeItem& item) const;
    static void setColours(const RowCells& cells, const RowColours& colours);

    // FeatureViewFolding.cpp
    [[nodiscard]] int sourceRow(int tableRow) const;
    [[nodiscard]] bool isCategory(int sourceRow) const;
    void noteCategories();
    [[nodiscard]] bool foldByKey(const QKeyEvent& key);

    QTableView m_tableView;
    QTimer m_scrollTimer; // scrolls to the current row
    DescBox* m_descBox = nullptr;
    std::unique_ptr<QStandardItemModel> m_sourceModel;
    int m_opeLogLevel = 1;
    TableViewItemDelegate m_delegate;
    bool m_valuesWritten = false;
    QList<GenAPINodeItem*> m_items;                            // owned by the source model
    std::vector<QPointer<GenAPINodeItem>> m_itemsWithoutModel; // those that no caller has put into a model
    std::vector<bool> m_categoryRows;                          // of the source model
    FeatureFilterModel m_filterModel;
    QToolBar* m_toolBar = nullptr;
    std::array<std::unique_ptr<QAction>, ToolActionCount> m_actions;
    int m_level = Orvo::NODE_VISIBILITY_BEGINNER;
    bool m_sortAtoZ = false;
    bool m_autoReRead = true;
    bool m_levelInvisibleAvailable = false;
    bool m_niFeatureVisible = false;
    Orvo::CAM_HANDLE m_camera = 0;
    int m_minWdtShowingClmNodeType = 300;
    bool m_reReading = false;
    bool m_reReadAgain = false;
    HeldChanges* m_heldChanges = nullptr; // set during a full re-read
    int m_colouredRow = -1;               // the row that was coloured last
    std::array<RowColours, 6> m_rowColours;
    // Made from pixmaps: Qt keeps one for each file. An icon made from a file has a pixmap of its own, whose drawings
    // stay in Qt's cache when the view is gone.
    QIcon m_foldedIcon{QPixmap(QStringLiteral(":/images/FeatureView/images/Folded.png"))};
    QIcon m_expandedIcon{QPixmap(QStringLiteral(":/images/FeatureView/images/Collapsed.png"))};
};
