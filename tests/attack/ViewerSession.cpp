#include "tests/attack/ViewerSession.h"

#include "discovery/DiscoveryDlg.h"
#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/attack/Snapshot.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/ModalWindows.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMutex>
#include <QMutexLocker>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace {

/// What Qt may say: the platform without a screen lacks a few things, and a commit with Tab may take away the cell that
/// would be edited next.
constexpr const char* kHarmless[] = {"This plugin does not support ", "edit: index was invalid",
                                     "edit: editing failed"};

struct Warnings {
    QMutex mutex;
    QStringList lines;
};

Warnings& warnings()
{
    static Warnings warnings;
    return warnings;
}

QWidget* discoveryDialog()
{
    return qobject_cast<DiscoveryDlg*>(QApplication::activeModalWidget());
}

} // namespace

AttackApplication::AttackApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
    setAttribute(Qt::AA_Use96Dpi);
    setQuitOnLastWindowClosed(false);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (std::any_of(std::begin(kHarmless), std::end(kHarmless),
                        [&](const char* known) { return text.startsWith(QLatin1String(known)); }))
            return;
        std::fprintf(stderr, "%s\n", qPrintable(text));
        if (type == QtFatalMsg)
            std::abort();
        const QMutexLocker lock(&warnings().mutex);
        if (type != QtDebugMsg && type != QtInfoMsg)
            warnings().lines << "Qt: " + text;
    });
}

QStringList AttackApplication::takeWarnings()
{
    const QMutexLocker lock(&warnings().mutex);
    return std::exchange(warnings().lines, {});
}

void elapseTimers(QObject& object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&object);
    for (const QAbstractEventDispatcher::TimerInfo& timer : timers) {
        QTimerEvent event(timer.timerId);
        QCoreApplication::sendEvent(&object, &event);
    }
}

void handleEvents()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

ViewerSession::ViewerSession() = default;

FeatureView* ViewerSession::features()
{
    return m_driver.window().findChild<FeatureView*>();
}

bool ViewerSession::trigger(const char* action)
{
    QAction* const wanted = m_driver.action(action);
    if (!wanted->isEnabled())
        return false;
    wanted->trigger();
    return true;
}

bool ViewerSession::open(int row)
{
    if (!m_driver.enabled("actionOpen"))
        return false;
    modal::during([&] { m_driver.trigger("actionOpen"); }, discoveryDialog,
                  [&](QWidget& window) {
                      auto& dialog = static_cast<DiscoveryDlg&>(window);
                      elapseTimers(dialog);
                      auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
                      auto* const open = dialog.findChild<QPushButton*>("openButton");
                      if (!open->isEnabled() || row >= list->topLevelItemCount()) {
                          dialog.reject();
                          return;
                      }
                      list->setCurrentItem(list->topLevelItem(row));
                      open->click();
                  });
    return features() != nullptr;
}

QWidget* ViewerSession::editor(const QString& feature)
{
    if (!features())
        return nullptr;
    const QPointer<QTableView> table = features()->tableView();
    const QAbstractItemModel& model = *table->model();
    QModelIndex category;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, FeatureView::NameColumn);
        if (index.data(FeatureView::LevelRole).toString() == "C")
            category = index;
        if (index.data().toString().trimmed() != feature)
            continue;
        const QPersistentModelIndex cell = model.index(row, FeatureView::ValueColumn);
        if (table->isRowHidden(row) && category.isValid()) {
            features()->changeCollapsedState(category);
            QCoreApplication::processEvents(); // the range of the scroll bar
        }
        // A removal that was queued closes the camera, and the table goes with it.
        if (!table || !cell.isValid())
            return nullptr;
        table->scrollTo(cell);
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(cell).center());
        return table ? openEditor(*table) : nullptr;
    }
    return nullptr;
}

bool ViewerSession::edit(const QString& feature, const QString& text)
{
    QWidget* const opened = editor(feature);
    if (!opened)
        return false;
    if (auto* const combo = qobject_cast<QComboBox*>(opened)) {
        QTest::keyClick(combo, combo->currentIndex() + 1 < combo->count() ? Qt::Key_Down : Qt::Key_Up);
    } else if (auto* const button = qobject_cast<QPushButton*>(opened)) {
        QTest::mouseClick(button, Qt::LeftButton);
    } else {
        auto* line = qobject_cast<QLineEdit*>(opened);
        if (!line)
            line = opened->findChild<QLineEdit*>();
        if (!line)
            return false;
        line->selectAll();
        line->insert(text); // like a paste: not every letter has a key
        QTest::keyClick(line, Qt::Key_Return);
    }
    handleEvents();
    return true;
}

bool ViewerSession::snapshot()
{
    return takeSnapshot(m_driver, m_folder.filePath("shot.png"));
}

void ViewerSession::exit()
{
    m_driver.exit();
    handleEvents();
}

QStringList ViewerSession::wrongRows()
{
    FeatureView* const view = features();
    if (!view)
        return {};
    QStringList wrong;
    const QStandardItemModel& model = *view->sourceModel();
    const QList<GenAPINodeItem*>& items = view->items();
    if (items.size() != model.rowCount())
        wrong << QString("%1 items for %2 rows").arg(items.size()).arg(model.rowCount());
    for (int row = 0; row < std::min(items.size(), model.rowCount()); ++row) {
        const QString name = items[row]->getNodeName();
        if (model.item(row, FeatureView::ValueColumn) != items[row] || items[row]->getBaseIndex() != row)
            wrong << QString("the item of row %1, %2, is elsewhere").arg(row).arg(name);
        const QString text = model.item(row, FeatureView::NameColumn)->text().trimmed();
        if (text != name)
            wrong << QString("row %1 is called %2 and its item %3").arg(row).arg(text, name);
    }
    return wrong;
}
