#pragma once

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/support/ScriptedCamera.h"

#include <QIcon>
#include <QStringList>

#include <memory>
#include <string>
#include <vector>

/// A scripted feature of the given level and access; an Integer until the test changes its type.
[[nodiscard]] scripted::NodeSpec feature(std::string name,
                                         Orvo::TC_NODE_VISIBILITY visibility = Orvo::NODE_VISIBILITY_BEGINNER,
                                         Orvo::NodeAccessMode access = Orvo::NODE_ACCESS_MODE_RW);

/// `count` features in categories of twelve, with Root first.
[[nodiscard]] std::vector<scripted::NodeSpec> manyNodes(int count);

/// Whether the icon shows the compiled-in image of that name.
[[nodiscard]] bool showsImage(const QIcon& icon, const QString& fileName);

[[nodiscard]] QStringList headerTexts(const QAbstractItemModel& model);
/// In the order of the item list.
[[nodiscard]] QStringList itemNames(const FeatureView& view);

/// A feature view over an open scripted camera.
class FeatureTable {
public:
    /// Opens the camera with the nodes that the script has already, and shows its features.
    FeatureTable();
    /// The same with these nodes.
    explicit FeatureTable(std::vector<scripted::NodeSpec> nodes);
    ~FeatureTable();
    Q_DISABLE_COPY_MOVE(FeatureTable)

    [[nodiscard]] FeatureView& view() { return *m_view; }
    [[nodiscard]] QTableView& table() { return *m_view->tableView(); }
    [[nodiscard]] QAbstractItemModel& rowsModel() { return *table().model(); }
    [[nodiscard]] Orvo::CAM_HANDLE camera() const { return m_camera; }

    /// Deletes the view while the camera is open.
    void destroyView() { m_view.reset(); }
    /// Shows the view and waits until it has the focus.
    void show();

    /// Names of the rows that pass the filter, without leading blanks; `shownOnly` excludes the folded ones.
    [[nodiscard]] QStringList names(bool shownOnly = false);
    [[nodiscard]] QStringList shownNames() { return names(true); }
    /// The row of the table, which must exist.
    [[nodiscard]] int row(const QString& name);
    [[nodiscard]] QModelIndex cell(const QString& name, int column = 0);
    [[nodiscard]] GenAPINodeItem* item(const QString& name);

    /// Moves the pointer into the row, `x` pixels from the left edge of the table, and clicks.
    void clickRow(const QString& name, int x);

private:
    void open();

    Orvo::CAM_HANDLE m_camera = 0;
    std::unique_ptr<FeatureView> m_view;
};

/// Opens the first camera of the script and returns its handle.
[[nodiscard]] Orvo::CAM_HANDLE openScriptedCamera();
