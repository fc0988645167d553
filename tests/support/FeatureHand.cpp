#include "tests/support/FeatureHand.h"

#include "features/view/FeatureView.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

#include <algorithm>

namespace {

constexpr int kNameColumn = 0;
constexpr int kValueColumn = 2;
// The table waits at most this long for a second click.
constexpr int kSecondClickMs = 2000;

QString nameOf(const QModelIndex& index)
{
    return index.sibling(index.row(), kNameColumn).data().toString().trimmed();
}

bool isCategory(const QModelIndex& index)
{
    return index.sibling(index.row(), kNameColumn).data(FeatureView::LevelRole).toString() == "C";
}

template <typename Editor> Editor* as(QWidget* editor, const QString& name)
{
    auto* found = qobject_cast<Editor*>(editor);
    if (!found && editor)
        found = editor->findChild<Editor*>();
    if (!found)
        qFatal("%s opens another editor: %s", qPrintable(name), editor ? editor->metaObject()->className() : "none");
    return found;
}

} // namespace

QWidget* openEditor(const QTableView& table)
{
    const auto children = table.viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    // A tool tip is a child of the viewport, too, but has a window of its own.
    const auto shown = std::find_if(children.begin(), children.end(),
                                    [](QWidget* child) { return !child->isHidden() && !child->isWindow(); });
    return shown == children.end() ? nullptr : *shown;
}

FeatureView& FeatureHand::view() const
{
    auto* const found = m_window.findChild<FeatureView*>();
    if (!found)
        qFatal("no feature browser");
    return *found;
}

QTableView& FeatureHand::table() const
{
    return *view().tableView();
}

void FeatureHand::clickTool(const QString& text)
{
    const auto* const bar = view().findChild<QToolBar*>();
    for (QAction* const action : bar->actions()) {
        if (action->text() == text) {
            QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
            return;
        }
    }
    qFatal("no tool %s", qPrintable(text));
}

QStringList FeatureHand::names() const
{
    QStringList names;
    const QAbstractItemModel* const model = table().model();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, kNameColumn);
        if (!isCategory(index))
            names << nameOf(index);
    }
    return names;
}

QModelIndex FeatureHand::find(const QString& name, int column)
{
    const QAbstractItemModel* const model = table().model();
    QModelIndex category;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, kNameColumn);
        if (isCategory(index))
            category = index;
        if (nameOf(index) != name)
            continue;
        if (table().isRowHidden(row) && category.isValid()) {
            view().changeCollapsedState(category); // faster than a double click
            QCoreApplication::processEvents();     // updates the range of the scroll bar
        }
        table().scrollTo(index, QAbstractItemView::PositionAtCenter);
        return index.sibling(row, column);
    }
    qFatal("no feature %s", qPrintable(name));
    return {};
}

QString FeatureHand::shown(const QString& name)
{
    return find(name, kValueColumn).data().toString();
}

void FeatureHand::click(const QModelIndex& index)
{
    // Moves the pointer, too: by its position the browser tells a click on a fold mark from one on a name.
    const QPoint where = table().visualRect(index).center();
    QTest::mouseMove(table().viewport(), where);
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, where);
}

void FeatureHand::clickName(const QString& name)
{
    click(find(name, kNameColumn));
}

QWidget* FeatureHand::clickValue(const QString& name)
{
    const QModelIndex cell = find(name, kValueColumn);
    const bool waits = table().currentIndex() == cell; // for a possible second click
    if (waits && editor())
        return editor(); // starting or stopping the stream may have reopened it
    click(cell);
    if (waits)
        static_cast<void>(QTest::qWaitFor([this] { return editor() != nullptr; }, kSecondClickMs));
    return editor();
}

void FeatureHand::type(const QString& name, const QString& text)
{
    auto* const line = as<QLineEdit>(clickValue(name), name);
    line->selectAll();
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);
    QCoreApplication::processEvents();
}

void FeatureHand::choose(const QString& name, const QString& entry)
{
    auto* const combo = as<QComboBox>(clickValue(name), name);
    const int wanted = combo->findText(entry);
    if (wanted < 0)
        qFatal("%s offers no %s", qPrintable(name), qPrintable(entry));
    combo->showPopup();
    QAbstractItemView* const list = combo->view();
    const QModelIndex item = list->model()->index(wanted, 0);
    list->scrollTo(item);
    // Qt ignores clicks in a popup for this time after it opens, because they may belong to the opening click.
    QTest::qWait(QApplication::doubleClickInterval());
    QTest::mouseMove(list->viewport(), list->visualRect(item).center());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(item).center());
    QCoreApplication::processEvents();
}

void FeatureHand::execute(const QString& name)
{
    QTest::mouseClick(as<QPushButton>(clickValue(name), name), Qt::LeftButton);
    QCoreApplication::processEvents();
}
