#include "tests/attack/ViewerSession.h"

#include "discovery/DiscoveryDlg.h"
#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/attack/Snapshot.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/ModalWindows.h"
#include "tests/support/Patience.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

using namespace Orvo;
using scripted::NodeSpec;

NodeSpec node(const char* name, NodeType type)
{
    NodeSpec spec;
    spec.name = name;
    spec.type = type;
    spec.description = std::string("Describes ") + name + '.';
    spec.toolTip = spec.description;
    return spec;
}

NodeSpec integer(const char* name, std::int64_t value, std::int64_t minimum, std::int64_t maximum)
{
    NodeSpec spec = node(name, NODE_TYPE_INTEGER);
    spec.intValue = value;
    spec.intMin = minimum;
    spec.intMax = maximum;
    return spec;
}

NodeSpec real(const char* name, double value, NodeRepresentation representation)
{
    NodeSpec spec = node(name, NODE_TYPE_FLOAT);
    spec.floatValue = value;
    spec.floatMin = 0;
    spec.floatMax = 1000;
    spec.unit = "us";
    spec.representation = representation;
    return spec;
}

NodeSpec enumeration(const char* name, std::vector<NodeSpec> entries)
{
    NodeSpec spec = node(name, NODE_TYPE_ENUMERATION);
    spec.intValue = entries.front().intValue;
    spec.entries = std::move(entries);
    return spec;
}

/// The value that the row of a node has to show.
QString shownValue(const NodeSpec& spec)
{
    QString text;
    switch (spec.type) {
    case NODE_TYPE_INTEGER:
        text = QString::number(spec.intValue);
        break;
    case NODE_TYPE_FLOAT:
        text = QString::number(spec.floatValue, 'f', static_cast<int>(spec.precision));
        break;
    case NODE_TYPE_BOOLEAN:
        text = spec.boolValue != 0 ? "true" : "false";
        break;
    case NODE_TYPE_STRING:
        text = QString::fromStdString(spec.strValue);
        break;
    case NODE_TYPE_ENUMERATION:
        for (const NodeSpec& entry : spec.entries) {
            if (entry.intValue == spec.intValue)
                text = QString::fromStdString(entry.name);
        }
        break;
    default:
        return {};
    }
    return spec.unit.empty() ? text : text + ' ' + QString::fromStdString(spec.unit);
}

QWidget* discoveryDialog()
{
    return qobject_cast<DiscoveryDlg*>(QApplication::activeModalWidget());
}

} // namespace

std::vector<NodeSpec> smallCamera()
{
    return {
        scripted::category("Root", {"ImageFormatControl", "AcquisitionControl"}),
        scripted::category("ImageFormatControl", {"Width", "Height", "PixelFormat", "Mirror", "Label"}),
        integer("Width", 64, 16, 64),
        integer("Height", 48, 2, 48),
        enumeration("PixelFormat", {scripted::enumEntry("Mono8", scripted::kMono8),
                                    scripted::enumEntry("BayerRG8", scripted::kBayerRG8)}),
        node("Mirror", NODE_TYPE_BOOLEAN),
        node("Label", NODE_TYPE_STRING),
        scripted::category("AcquisitionControl",
                           {"ExposureTime", "Delay", "Count", "TriggerMode", "TriggerSource", "Reset"}),
        real("ExposureTime", 100, NODE_REPRESENTATION_LOGARITHMIC),
        real("Delay", 1, NODE_REPRESENTATION_PURE_NUMBER),
        integer("Count", 1, 1, 255),
        enumeration("TriggerMode", {scripted::enumEntry("Off", 0), scripted::enumEntry("On", 1)}),
        enumeration("TriggerSource",
                    {scripted::enumEntry("Line0", 0), scripted::enumEntry("Software", CAM_TRIGGER_SOURCE_SOFTWARE)}),
        node("Reset", NODE_TYPE_COMMAND),
    };
}

AttackApplication::AttackApplication(int& argc, char** argv)
    : QApplication(argc, argv)
{
    setAttribute(Qt::AA_Use96Dpi);
    setQuitOnLastWindowClosed(false);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (text.startsWith("This plugin does not support"))
            return;
        std::fprintf(stderr, "%s\n", qPrintable(text));
        if (type == QtFatalMsg)
            std::abort();
    });
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

bool ViewerSession::showImage(const std::function<bool()>& enough)
{
    bool shown = false;
    QObject receiver;
    QObject::connect(&m_driver.window(), &MainWindow::Update_Image, &receiver, [&shown] { shown = true; });
    QElapsedTimer patience;
    patience.start();
    while (!shown && !enough() && !patience.hasExpired(kPatienceMs)) {
        ++m_frame;
        if (!scripted::deliverImage(m_frame, static_cast<std::uint8_t>(m_frame)))
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        QTest::qSleep(1);
    }
    return shown;
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

QStringList ViewerSession::wrongRows(bool compareValues)
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
        if (!compareValues)
            continue;
        const QString value = shownValue(scripted::node(name.toStdString()));
        if (!value.isNull() && items[row]->data(Qt::DisplayRole).toString() != value)
            wrong
                << QString("%1 shows %2 instead of %3").arg(name, items[row]->data(Qt::DisplayRole).toString(), value);
    }
    return wrong;
}
