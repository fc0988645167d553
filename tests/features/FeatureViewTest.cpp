// A new feature view, and one with rows that do not come from a camera.

#include "features/view/FeatureView.h"
#include "features/description/DescBox.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QHeaderView>
#include <QMetaMethod>
#include <QPointer>
#include <QToolBar>
#include <QVBoxLayout>

using scripted::category;

namespace {

class FeatureViewTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void aNewViewShowsAnEmptyTable();
    void aNewViewIsLaidOutFromTopToBottom();
    void signalsAndSlotsAreDeclaredInOrder();
    void theTableIsSetUp();
    void rowsStay22PixelsHigh();
    void theDelegateServesTheView();

    void showModelTakesAnyRows();
    void destroyingTheViewDestroysTheItems();
    void demonstrationRows();
};

void FeatureViewTest::aNewViewShowsAnEmptyTable()
{
    FeatureView view;
    QCOMPARE(view.sourceModel()->rowCount(), 0);
    QCOMPARE(headerTexts(*view.sourceModel()), QStringList({"Name", "Type", "Value"}));
    QCOMPARE(headerTexts(*view.tableView()->model()), QStringList({"Name", "Type", "Value"}));
    QVERIFY(view.items().isEmpty());
    QCOMPARE(view.descBox()->getCurrentIndex(), -1);
    QCOMPARE(view.opeLogLevel(), 1);
    QVERIFY(view.autoReRead());
    QVERIFY(!view.levelInvisibleAvailable());
    QVERIFY(!view.isNIfeatureVisible());
    QCOMPARE(view.minWdtShowingClmNodeType(), 300);
    QVERIFY(scripted::calls().empty());
}

void FeatureViewTest::aNewViewIsLaidOutFromTopToBottom()
{
    const FeatureView view;
    const auto* const layout = qobject_cast<QVBoxLayout*>(view.layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 3);
    QVERIFY(qobject_cast<QToolBar*>(layout->itemAt(0)->widget()));
    QCOMPARE(layout->itemAt(1)->widget(), view.tableView());
    QCOMPARE(layout->itemAt(2)->widget(), view.descBox());
    for (int i = 0; i < layout->count(); ++i)
        QCOMPARE(layout->stretch(i), 0);
    QCOMPARE(view.descBox()->parentWidget(), &view);
}

void FeatureViewTest::signalsAndSlotsAreDeclaredInOrder()
{
    const QMetaObject& meta = FeatureView::staticMetaObject;
    QStringList found;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        found << (method.methodType() == QMetaMethod::Signal ? "signal " : "") + QString(method.methodSignature());
    }
    const QStringList expected{
        "signal OpeLogAppended(QString&)",
        "signal checkSoftwareTriggerMode()",
        "selectSortCategory()",
        "selectSortAtoZ()",
        "selectBeginner()",
        "selectExpert()",
        "selectGuru()",
        "selectInvisible()",
        "tableRowClicked(QModelIndex)",
        "tableRowDoubleClicked(QModelIndex)",
        "columnHeaderDoubleClicked()",
        "updateAllFeatures(bool)",
        "updateAllFeatures()",
    };
    QCOMPARE(found, expected);
}

void FeatureViewTest::theTableIsSetUp()
{
    const FeatureView view;
    const QTableView& table = *view.tableView();
    QCOMPARE(table.windowTitle(), QString("FeatureView"));
    QCOMPARE(static_cast<int>(table.editTriggers()), 5);
    QVERIFY(table.horizontalHeader()->stretchLastSection());
    QCOMPARE(table.horizontalHeader()->toolTip(),
             QString("Double-clicking column header will shows / hides Node-Type colmn."));
    QVERIFY(table.verticalHeader()->isHidden());
    QCOMPARE(table.verticalHeader()->defaultSectionSize(), 22);
    QCOMPARE(table.verticalHeader()->minimumSectionSize(), 22);
    QCOMPARE(table.verticalHeader()->maximumSectionSize(), 22);
}

void FeatureViewTest::rowsStay22PixelsHigh()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"A"}), feature("A")});
    QCOMPARE(features.table().rowHeight(0), 22);
    features.view().changeCollapsedState(features.cell("C"));
    QCOMPARE(features.table().rowHeight(1), 22);
    features.view().changeCollapsedState(features.cell("C"));
    features.view().changeCollapsedState(features.cell("C"));
    QCOMPARE(features.table().rowHeight(1), 22);
}

void FeatureViewTest::theDelegateServesTheView()
{
    FeatureView view;
    const auto* const delegate = qobject_cast<TableViewItemDelegate*>(view.tableView()->itemDelegate());
    QVERIFY(delegate);
    QCOMPARE(delegate->parent(), &view);
    view.setWriteInProgress(true);
    QVERIFY(delegate->writeInProgress());
    view.setWriteInProgress(false);
    QVERIFY(!delegate->writeInProgress());
}

void FeatureViewTest::showModelTakesAnyRows()
{
    FeatureTable features;
    const QPointer<GenAPINodeItem> old = features.item("Width");
    auto* const model = new QStandardItemModel(0, 3);
    features.view().setFeatureDataDebug(model);
    features.view().showModel(model);
    QVERIFY(!old);
    QVERIFY(features.view().items().isEmpty());
    QCOMPARE(features.names(),
             QStringList({"Scalable", "Width", "Height", "OffsetX", "OffsetY", "Analog", "Exposure", "Gain", "Gamma"}));

    // Rows without camera nodes work like others; there is nothing to read.
    scripted::clearCalls();
    features.show();
    features.view().changeCollapsedState(features.cell("Scalable"));
    QCOMPARE(features.shownNames(), QStringList({"Scalable", "Width", "Height", "OffsetX", "OffsetY", "Analog"}));
    QVERIFY(!features.view().itemAt(features.cell("Width", 2)));
    features.clickRow("Width", 200);
    features.table().setCurrentIndex(features.cell("Width", 2));
    features.view().updateAllFeatures();
    features.view().setCellColor(1);
    features.view().selectSortAtoZ();
    features.view().closeEditOperation();
    QVERIFY(scripted::calls({"Nd_"}).empty());
    QCOMPARE(features.view().descBox()->getCurrentIndex(), -1);

    features.view().showModel(features.view().sourceModel()); // the same model again
    QCOMPARE(features.names().size(), 9);
    features.view().showModel(nullptr);
    QCOMPARE(features.table().model()->rowCount(), 0);
    features.view().updateAllFeatures();
}

void FeatureViewTest::destroyingTheViewDestroysTheItems()
{
    FeatureTable features;
    features.show();
    const QPointer<GenAPINodeItem> item = features.item("Width");
    features.view().tableRowClicked(features.cell("Width"));
    features.destroyView();
    QVERIFY(!item);
}

void FeatureViewTest::demonstrationRows()
{
    struct Row {
        const char* name;
        const char* value;
        int editor;
    };
    constexpr Row kRows[] = {
        {"Scalable", "", 0},          //
        {"  Width", "640", 3},        //
        {"  Height", "480", 1},       //
        {"  OffsetX", "0", 5},        //
        {"  OffsetY", "0", 2},        //
        {"Analog", "", 0},            //
        {"  Exposure", "1200.00", 3}, //
        {"  Gain", "", 5},            //
        {"  Gamma", "", 1},           //
    };
    FeatureView view;
    QStandardItemModel model(1, 3); // the rows are appended to the existing one
    view.setFeatureDataDebug(&model);
    QCOMPARE(model.rowCount(), 10);
    int row = 0;
    for (const Row& expected : kRows) {
        const auto at = [&](int column, int role) { return model.index(row + 1, column).data(role); };
        const bool isCategory = expected.editor == 0;
        QCOMPARE(at(0, Qt::DisplayRole).toString(), QString(expected.name));
        QCOMPARE(at(0, FeatureView::ItemIndexRole), QVariant(row));
        QCOMPARE(at(0, FeatureView::LevelRole).toString(), QString(isCategory ? "C" : "B"));
        QCOMPARE(at(0, FeatureView::ExpandedRole), isCategory ? QVariant(false) : QVariant());
        QCOMPARE(at(0, Qt::BackgroundRole).value<QColor>(), isCategory ? QColor(196, 255, 255) : QColor());
        QCOMPARE(showsImage(at(0, Qt::DecorationRole).value<QIcon>(), "Folded.png"), isCategory);
        QCOMPARE(at(1, Qt::DisplayRole).toString() == "Category", isCategory);
        QCOMPARE(at(2, Qt::DisplayRole).toString(), QString(expected.value));
        QCOMPARE(at(2, Qt::UserRole + 3), QVariant(expected.editor));
        ++row;
    }
}

} // namespace

ORVO_TEST_CLASS(FeatureViewTest)
#include "FeatureViewTest.moc"
