// Building the feature view, and its rows from a camera's node map.

#include "features/DescBox.h"
#include "features/FeatureView.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"

#include <QtTest>

#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QToolBar>
#include <QVBoxLayout>

using scripted::category;
using scripted::NodeSpec;

namespace {

constexpr int kNodeNotFound = 1; // what SetCam gives without a node map

QStringList headerTexts(const QAbstractItemModel& model)
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column)
        texts << model.headerData(column, Qt::Horizontal, Qt::EditRole).toString();
    return texts;
}

QStringList treeCalls()
{
    QStringList texts;
    for (const scripted::Call& call : scripted::calls({"Nd_GetNode", "Nd_GetNumOfFeatures", "Nd_GetFeatureByIndex"}))
        texts << QString::fromStdString(call.text());
    return texts;
}

QStringList itemNames(const FeatureView& view)
{
    QStringList names;
    for (const GenAPINodeItem* const item : view.items())
        names << item->getNodeName();
    return names;
}

class FeatureViewTreeTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void aNewViewShowsAnEmptyTable();
    void aNewViewIsLaidOutFromTopToBottom();
    void theTableIsSetUp();
    void rowsStay22PixelsHigh();
    void theDelegateServesTheView();

    void rowsFollowTheNodesDepthFirst();
    void everyCellOfARow_data();
    void everyCellOfARow();
    void namesOfFeaturesAreIndentedByThreeBlanks();
    void typeTexts();

    void theTreeIsWalkedWithTheFewestCalls();
    void noRootNode();
    void rootIsANullHandle();
    void aFailingRootKeepsTheOldRows();
    void rootWithoutFeatures();
    void rootThatCannotCountHasNoRows();
    void aFeatureOfTheRootThatCannotBeFetchedIsSkipped();
    void aFailureFurtherDownEndsTheBranch();
    void aCategoryThatCannotCountEndsTheBranch();
    void indicesMatchTheRowsAfterAFailure();
    void registeringTellsTheFailure();
    void aCategoryWithoutFeaturesHasARow();
    void aNodeUnderTwoCategoriesHasTwoRows();
    void nodesThatFailAtAnyCallGetARow_data();
    void nodesThatFailAtAnyCallGetARow();
    void categoriesNestDeeply();
    void aCircleOfCategoriesEnds();

    void theLogOpensWithThePreamble();
    void theLogIsSilentAtLevel0();

    void aSecondCameraReplacesTheRows();
    void aSecondCameraKeepsTheLevelAndReturnsToCategoryOrder();
    void aSecondCameraClearsTheDescriptionOfTheFirst();
    void aFreshDescriptionSurvivesTheFirstCamera();
    void showModelTakesAnyRows();
    void destroyingTheViewDestroysTheItems();
    void demonstrationRows();
};

void FeatureViewTreeTest::aNewViewShowsAnEmptyTable()
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

void FeatureViewTreeTest::aNewViewIsLaidOutFromTopToBottom()
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

void FeatureViewTreeTest::theTableIsSetUp()
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

void FeatureViewTreeTest::rowsStay22PixelsHigh()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"A"}), feature("A")});
    QCOMPARE(features.table().rowHeight(0), 22);
    features.view().changeCollapsedState(features.cell("C"));
    QCOMPARE(features.table().rowHeight(1), 22);
    features.view().changeCollapsedState(features.cell("C"));
    features.view().changeCollapsedState(features.cell("C"));
    QCOMPARE(features.table().rowHeight(1), 22);
}

void FeatureViewTreeTest::theDelegateServesTheView()
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

void FeatureViewTreeTest::rowsFollowTheNodesDepthFirst()
{
    FeatureTable features({category("Root", {"First", "Loose", "Second"}), category("First", {"A", "Inner", "B"}),
                           category("Inner", {"C"}), category("Second", {"D"}), feature("A"), feature("B"),
                           feature("C"), feature("D"), feature("Loose")});
    QCOMPARE(itemNames(features.view()), QStringList({"First", "A", "Inner", "C", "B", "Loose", "Second", "D"}));
    QCOMPARE(features.names(), itemNames(features.view()));
    QCOMPARE(features.view().sourceModel()->rowCount(), 8);
}

void FeatureViewTreeTest::everyCellOfARow_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("level");
    QTest::addColumn<QVariant>("expanded");

    QTest::newRow("category") << "Cat"
                              << "Cat"
                              << "Category"
                              << "C" << QVariant(false);
    QTest::newRow("feature") << "Feat"
                             << "   Feat"
                             << "Integer"
                             << "E" << QVariant();
    QTest::newRow("not implemented") << "Gone"
                                     << "   Gone"
                                     << "Integer"
                                     << "g" << QVariant();
}

void FeatureViewTreeTest::everyCellOfARow()
{
    QFETCH(QString, name);
    NodeSpec cat = category("Cat", {"Feat", "Gone"});
    NodeSpec feat = feature("Feat", Orvo::NODE_VISIBILITY_EXPERT);
    NodeSpec gone = feature("Gone", Orvo::NODE_VISIBILITY_GURU, Orvo::NODE_ACCESS_MODE_NI);
    for (NodeSpec* const node : {&cat, &feat, &gone})
        node->toolTip = "<b>%1</b> of " + node->name;
    FeatureTable features({category("Root", {"Cat"}), cat, feat, gone});

    const QStandardItemModel& model = *features.view().sourceModel();
    const int row = itemNames(features.view()).indexOf(name);
    const QString toolTip = "<b>%1</b> of " + name;

    const QModelIndex first = model.index(row, 0);
    QTEST(first.data().toString(), "shown");
    QTEST(first.data(Qt::EditRole).toString(), "shown");
    QTEST(first.data(FeatureView::ExpandedRole), "expanded");
    QTEST(first.data(FeatureView::LevelRole).toString(), "level");
    QCOMPARE(first.data(FeatureView::ItemIndexRole), QVariant(row));
    QCOMPARE(first.data(Qt::ToolTipRole).toString(), toolTip);
    const QVariant icon = first.data(Qt::DecorationRole);
    if (name == "Cat")
        QVERIFY(showsImage(icon.value<QIcon>(), "Folded.png"));
    else
        QVERIFY(!icon.isValid());

    const QModelIndex second = model.index(row, 1);
    QCOMPARE(second.data(FeatureView::ItemIndexRole), QVariant(row));
    QTEST(second.data().toString(), "type");
    QCOMPARE(second.data(Qt::ToolTipRole).toString(), toolTip);
    QVERIFY(!second.data(FeatureView::LevelRole).isValid());

    QCOMPARE(model.item(row, 2), features.view().items().at(row));
    QCOMPARE(model.index(row, 2).data(FeatureView::ItemIndexRole), QVariant(row));
    for (int column = 0; column < 3; ++column) {
        QVERIFY(model.index(row, column).data(Qt::BackgroundRole).isValid());
        QVERIFY(model.index(row, column).data(Qt::ForegroundRole).isValid());
    }
}

void FeatureViewTreeTest::namesOfFeaturesAreIndentedByThreeBlanks()
{
    FeatureTable features({category("Root", {"C", "A"}), category("C", {}), feature("A")});
    QCOMPARE(features.view().sourceModel()->item(0, 0)->text(), QString("C"));
    QCOMPARE(features.view().sourceModel()->item(1, 0)->text(), QString("   A"));
}

void FeatureViewTreeTest::typeTexts()
{
    NodeSpec command = feature("Do");
    command.type = Orvo::NODE_TYPE_COMMAND;
    NodeSpec number = feature("Number");
    number.type = Orvo::NODE_TYPE_FLOAT;
    FeatureTable features({category("Root", {"Do", "Number"}), command, number});
    QCOMPARE(features.cell("Number", 1).isValid(), true);
    QCOMPARE(features.cell("Do", 1).data().toString(), QString("Command"));
    QCOMPARE(features.cell("Number", 1).data().toString(), QString("Float"));
}

void FeatureViewTreeTest::theTreeIsWalkedWithTheFewestCalls()
{
    FeatureTable features({category("Root", {"C", "B"}), category("C", {"A"}), feature("A"), feature("B")});
    const QString handles = QString::number(features.camera()) + ", ";
    const auto node = [](int n) { return QString::number(1000000 + n) + ", "; };
    const QStringList expected = {
        "Nd_GetNode(" + handles + "\"Root\", out)",
        "Nd_GetNumOfFeatures(" + handles + node(1) + "out)",
        "Nd_GetFeatureByIndex(" + handles + node(1) + "0, out)",
        "Nd_GetNumOfFeatures(" + handles + node(2) + "out)",
        "Nd_GetFeatureByIndex(" + handles + node(2) + "0, out)",
        "Nd_GetFeatureByIndex(" + handles + node(1) + "1, out)",
    };
    QCOMPARE(treeCalls(), expected);
}

void FeatureViewTreeTest::noRootNode()
{
    scripted::setNodes({feature("A")});
    FeatureView view;
    QCOMPARE(view.SetCam(openScriptedCamera()), kNodeNotFound);
    QCOMPARE(scripted::count("Nd_GetNode"), 1);
    QCOMPARE(view.sourceModel()->rowCount(), 0);
}

void FeatureViewTreeTest::rootIsANullHandle()
{
    FeatureView view;
    const Orvo::CAM_HANDLE camera = openScriptedCamera();
    scripted::failCall("Nd_GetNode", Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(view.SetCam(camera), kNodeNotFound);
    QCOMPARE(scripted::count("Nd_GetNumOfFeatures"), 0);
    QCOMPARE(view.SetCam(camera), 0);
}

void FeatureViewTreeTest::aFailingRootKeepsTheOldRows()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"A"}), feature("A")});
    const QStandardItemModel* const before = features.view().sourceModel();
    scripted::failCall("Nd_GetNode", Orvo::CAM_API_STS_NOT_FOUND);
    QCOMPARE(features.view().SetCam(features.camera()), kNodeNotFound);
    QCOMPARE(features.view().sourceModel(), before);
    QCOMPARE(features.names(), QStringList({"C", "A"}));
    QVERIFY(features.view().items().isEmpty());

    // The rows are no longer read anew, but they are safe to use.
    scripted::clearCalls();
    features.view().updateAllFeatures();
    QVERIFY(scripted::calls({"Nd_"}).empty());
    features.view().setCellColor(1);
    features.view().tableRowClicked(features.cell("A"));
    features.view().changeCollapsedState(features.cell("C"));
    QCOMPARE(features.shownNames(), QStringList({"C", "A"}));
}

void FeatureViewTreeTest::rootWithoutFeatures()
{
    FeatureTable features({category("Root", {})});
    QCOMPARE(features.view().SetCam(features.camera()), 0);
    QCOMPARE(features.view().sourceModel()->rowCount(), 0);
    QCOMPARE(headerTexts(*features.view().sourceModel()), QStringList({"Name", "Type", "Value"}));
}

void FeatureViewTreeTest::rootThatCannotCountHasNoRows()
{
    FeatureTable features;
    scripted::failCall("Nd_GetNumOfFeatures", Orvo::CAM_API_STS_GENICAM_ERR);
    QCOMPARE(features.view().SetCam(features.camera()), 0);
    QCOMPARE(features.view().sourceModel()->rowCount(), 0);
}

void FeatureViewTreeTest::aFeatureOfTheRootThatCannotBeFetchedIsSkipped()
{
    FeatureTable features({category("Root", {"A", "Nowhere", "B"}), feature("A"), feature("B")});
    QCOMPARE(features.names(), QStringList({"A", "B"}));
}

void FeatureViewTreeTest::aFailureFurtherDownEndsTheBranch()
{
    FeatureTable features({category("Root", {"First", "Second"}), category("First", {"A", "Inner", "B"}),
                           category("Inner", {"C", "Nowhere", "D"}), category("Second", {"E"}), feature("A"),
                           feature("B"), feature("C"), feature("D"), feature("E")});
    QCOMPARE(features.names(), QStringList({"First", "A", "Inner", "C", "Second", "E"}));
}

void FeatureViewTreeTest::aCategoryThatCannotCountEndsTheBranch()
{
    scripted::failNode("Inner", "Nd_GetNumOfFeatures", Orvo::CAM_API_STS_GENICAM_ERR);
    FeatureTable features({category("Root", {"First", "Second"}), category("First", {"Inner", "B"}),
                           category("Inner", {"C"}), category("Second", {"E"}), feature("B"), feature("C"),
                           feature("E")});
    QCOMPARE(features.names(), QStringList({"First", "Inner", "Second", "E"}));
}

void FeatureViewTreeTest::indicesMatchTheRowsAfterAFailure()
{
    FeatureTable features(
        {category("Root", {"Nowhere", "First", "A"}), category("First", {"B", "Nowhere"}), feature("A"), feature("B")});
    const QStandardItemModel& model = *features.view().sourceModel();
    QCOMPARE(model.rowCount(), 3);
    for (int row = 0; row < model.rowCount(); ++row) {
        QCOMPARE(model.index(row, 0).data(FeatureView::ItemIndexRole).toInt(), row);
        QCOMPARE(features.view().items().at(row)->getBaseIndex(), row);
        QCOMPARE(features.view().items().at(row)->row(), row);
        QCOMPARE(features.view().itemAt(model.index(row, 1)), features.view().items().at(row));
    }
}

void FeatureViewTreeTest::registeringTellsTheFailure()
{
    FeatureTable features({category("Root", {"Good", "Uncountable", "Holey"}), category("Good", {"A", "Empty"}),
                           category("Empty", {}), category("Uncountable", {}), category("Holey", {"Outer"}),
                           category("Outer", {"Nowhere"}), feature("A")});
    const auto registered = [&](const char* name) {
        FeatureView view; // whose rows nobody else knows
        view.SetCam(features.camera());
        const int before = view.items().size();
        Orvo::CAM_NODE_HANDLE node = 0;
        Orvo::Nd_GetNode(features.camera(), name, &node);
        const Orvo::CAM_API_STATUS status = view.registerItemsToList(node);
        const QList<GenAPINodeItem*> added = view.items().mid(before);
        for (int i = 0; i < added.size(); ++i) {
            if (added.at(i)->getBaseIndex() != before + i)
                qFatal("wrong index");
        }
        qDeleteAll(added);
        return status;
    };
    QCOMPARE(registered("Good"), Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(registered("A"), Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(registered("Empty"), Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(registered("Holey"), Orvo::CAM_API_STS_NOT_FOUND);
    scripted::failNode("Uncountable", "Nd_GetNumOfFeatures", Orvo::CAM_API_STS_BUSY);
    QCOMPARE(registered("Uncountable"), Orvo::CAM_API_STS_BUSY);
}

void FeatureViewTreeTest::aCategoryWithoutFeaturesHasARow()
{
    FeatureTable features({category("Root", {"Empty"}), category("Empty", {})});
    QCOMPARE(features.names(), QStringList({"Empty"}));
    QVERIFY(features.shownNames().isEmpty());
}

void FeatureViewTreeTest::aNodeUnderTwoCategoriesHasTwoRows()
{
    FeatureTable features(
        {category("Root", {"First", "Second"}), category("First", {"A"}), category("Second", {"A"}), feature("A")});
    QCOMPARE(features.names(), QStringList({"First", "A", "Second", "A"}));
    QVERIFY(features.view().items().at(1) != features.view().items().at(3));
}

void FeatureViewTreeTest::nodesThatFailAtAnyCallGetARow_data()
{
    QTest::addColumn<QString>("operation");
    for (const char* const operation :
         {"Nd_GetType", "Nd_GetName", "Nd_GetAccessMode", "Nd_GetVisibility", "Nd_GetDescription", "Nd_GetToolTip",
          "Nd_GetRepresentation", "Nd_GetUnit", "Nd_GetIntValue", "Nd_GetIntMax", "Nd_GetIntMin", "Nd_GetIntInc"})
        QTest::newRow(operation) << operation;
}

void FeatureViewTreeTest::nodesThatFailAtAnyCallGetARow()
{
    QFETCH(QString, operation);
    scripted::failNode("A", operation.toStdString(), Orvo::CAM_API_STS_GENICAM_ERR);
    FeatureTable features({category("Root", {"C"}), category("C", {"A", "B"}), feature("A"), feature("B")});
    QCOMPARE(features.view().sourceModel()->rowCount(), 3);
    features.view().changeCollapsedState(features.cell("C"));
    features.view().selectInvisible(); // where also a node of unknown visibility stands
    features.show();
    features.view().updateAllFeatures();
    features.view().tableRowClicked(features.view().tableView()->model()->index(1, 2));
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 1);
    QCOMPARE(features.shownNames().size(), 3);
}

void FeatureViewTreeTest::categoriesNestDeeply()
{
    std::vector<NodeSpec> nodes = {category("Root", {"Level1", "Loose"}), feature("Loose")};
    for (int level = 1; level <= 300; ++level)
        nodes.push_back(category("Level" + std::to_string(level), {"Level" + std::to_string(level + 1)}));
    FeatureTable features(nodes);
    QCOMPARE(features.names().size(), 257);
    QCOMPARE(features.names().at(255), QString("Level256"));
    QCOMPARE(features.names().at(256), QString("Loose"));
}

void FeatureViewTreeTest::aCircleOfCategoriesEnds()
{
    FeatureTable features({category("Root", {"C", "A"}), category("C", {"C", "C"}), feature("A")});
    QCOMPARE(features.names().size(), 257);
    QCOMPARE(features.names().last(), QString("A"));
}

void FeatureViewTreeTest::theLogOpensWithThePreamble()
{
    FeatureView view;
    const Orvo::CAM_HANDLE camera = openScriptedCamera();
    QStringList entries;
    int nodeCallsBefore = -1;
    connect(&view, &FeatureView::OpeLogAppended, this, [&](QString& text) {
        entries << text;
        nodeCallsBefore = static_cast<int>(scripted::calls({"Nd_"}).size());
    });
    view.SetCam(camera);
    QCOMPARE(entries, QStringList({"Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;\n"
                                   "Orvo::CAM_HANDLE hCam = NULL;\n"
                                   "status = Orvo::Cam_Open( camIndex, &hCam, .... );\n"
                                   "Orvo::CAM_NODE_HANDLE hNode = NULL;\n"}));
    QCOMPARE(nodeCallsBefore, 0);
}

void FeatureViewTreeTest::theLogIsSilentAtLevel0()
{
    FeatureView view;
    view.setOpeLogLevel(0);
    int entries = 0;
    connect(&view, &FeatureView::OpeLogAppended, this, [&] { ++entries; });
    view.SetCam(openScriptedCamera());
    QCOMPARE(entries, 0);
}

void FeatureViewTreeTest::aSecondCameraReplacesTheRows()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"A", "B"}), feature("A"), feature("B")});
    features.view().changeCollapsedState(features.cell("C"));
    const QPointer<GenAPINodeItem> old = features.item("A");
    const QPointer<QStandardItemModel> oldModel = features.view().sourceModel();

    QVERIFY(Orvo::Cam_Close(features.camera()) == Orvo::CAM_API_STS_SUCCESS);
    scripted::setNodes({category("Root", {"D"}), category("D", {"E"}), feature("E")});
    QCOMPARE(features.view().SetCam(openScriptedCamera()), 0);
    QVERIFY(!old);
    QVERIFY(!oldModel);
    QCOMPARE(features.names(), QStringList({"D", "E"}));
    QCOMPARE(itemNames(features.view()), QStringList({"D", "E"}));
    QCOMPARE(features.shownNames(), QStringList({"D"})); // folded again
}

void FeatureViewTreeTest::aSecondCameraKeepsTheLevelAndReturnsToCategoryOrder()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"B", "A"}),
                           feature("A", Orvo::NODE_VISIBILITY_EXPERT), feature("B"),
                           feature("G", Orvo::NODE_VISIBILITY_GURU)});
    features.view().selectExpert();
    features.view().selectSortAtoZ();
    QCOMPARE(features.names(), QStringList({"A", "B"}));
    features.view().SetCam(features.camera());
    QCOMPARE(features.names(), QStringList({"C", "B", "A"}));
}

void FeatureViewTreeTest::aSecondCameraClearsTheDescriptionOfTheFirst()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    features.view().tableRowClicked(features.cell("A"));
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 0);
    features.view().SetCam(features.camera());
    QCOMPARE(features.view().descBox()->getCurrentIndex(), -1);
    QCOMPARE(features.view().descBox()->findChildren<QLabel*>().first()->text(), QString("Description: "));
}

void FeatureViewTreeTest::aFreshDescriptionSurvivesTheFirstCamera()
{
    FeatureTable features;
    QCOMPARE(features.view().descBox()->findChildren<QLabel*>().first()->text(), QString("Description:"));
}

void FeatureViewTreeTest::showModelTakesAnyRows()
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

    // Rows without camera nodes can be used like others; there is nothing to read.
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

    features.view().showModel(features.view().sourceModel()); // the same once more
    QCOMPARE(features.names().size(), 9);
    features.view().showModel(nullptr);
    QCOMPARE(features.table().model()->rowCount(), 0);
    features.view().updateAllFeatures();
}

void FeatureViewTreeTest::destroyingTheViewDestroysTheItems()
{
    FeatureTable features;
    features.show();
    const QPointer<GenAPINodeItem> item = features.item("Width");
    features.view().tableRowClicked(features.cell("Width"));
    features.destroyView();
    QVERIFY(!item);
}

void FeatureViewTreeTest::demonstrationRows()
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
    QStandardItemModel model(1, 3); // the rows come after what is there
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

QTEST_MAIN(FeatureViewTreeTest)
#include "FeatureViewTreeTest.moc"
