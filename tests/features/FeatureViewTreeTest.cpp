// From a camera's node map to the rows of the feature view.

#include "features/description/DescBox.h"
#include "features/view/FeatureView.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QPointer>

using scripted::category;
using scripted::NodeSpec;

namespace {

QStringList treeCalls()
{
    QStringList texts;
    for (const scripted::Call& call : scripted::calls({"Nd_GetNode", "Nd_GetNumOfFeatures", "Nd_GetFeatureByIndex"}))
        texts << QString::fromStdString(call.text());
    return texts;
}

class FeatureViewTreeTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void rowsFollowTheNodesDepthFirst();
    void everyCellOfARow_data();
    void everyCellOfARow();
    void featureNamesAreIndentedByThreeBlanks();
    void typeTexts();

    void theTreeIsWalkedWithMinimalCalls();
    void aFeatureOfTheRootThatCannotBeFetchedIsSkipped();
    void aFailureBelowTheRootEndsTheBranch();
    void aCategoryThatCannotCountEndsTheBranch();
    void indicesMatchTheRowsAfterAFailure();
    void anItemIsFoundByItsIndexRole();
    void registeringReturnsTheFailure();
    void itemsWithoutAModelAreDestroyedWithTheView();
    void itemsWithoutAModelAreDestroyedByTheNextCamera();
    void itemsOfAnotherModelSurvive();
    void aCategoryWithoutFeaturesHasARow();
    void aNodeUnderTwoCategoriesHasTwoRows();
    void nodesThatFailAtAnyCallGetARow_data();
    void nodesThatFailAtAnyCallGetARow();
    void categoriesNestDeeply();
    void cyclicCategoriesTerminate();
};

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
    if (name == "Cat") {
        QVERIFY(showsImage(icon.value<QIcon>(), "Folded.png"));
    } else {
        QVERIFY(!icon.isValid());
    }

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

void FeatureViewTreeTest::featureNamesAreIndentedByThreeBlanks()
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

void FeatureViewTreeTest::theTreeIsWalkedWithMinimalCalls()
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

void FeatureViewTreeTest::aFeatureOfTheRootThatCannotBeFetchedIsSkipped()
{
    FeatureTable features({category("Root", {"A", "Nowhere", "B"}), feature("A"), feature("B")});
    QCOMPARE(features.names(), QStringList({"A", "B"}));
}

void FeatureViewTreeTest::aFailureBelowTheRootEndsTheBranch()
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

void FeatureViewTreeTest::anItemIsFoundByItsIndexRole()
{
    FeatureTable features({category("Root", {"A", "B"}), feature("A"), feature("B")});
    QStandardItemModel& model = *features.view().sourceModel();
    model.item(0, 0)->setData(1, FeatureView::ItemIndexRole);
    for (const int column : {0, 1, 2})
        QCOMPARE(features.view().itemAt(model.index(0, column)), features.item("B"));
}

void FeatureViewTreeTest::registeringReturnsTheFailure()
{
    FeatureTable features({category("Root", {"Good", "Uncountable", "Holey"}), category("Good", {"A", "Empty"}),
                           category("Empty", {}), category("Uncountable", {}), category("Holey", {"Outer"}),
                           category("Outer", {"Nowhere"}), feature("A")});
    const auto registered = [&](const char* name) {
        FeatureView view; // the items are registered here only
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
        return status;
    };
    QCOMPARE(registered("Good"), Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(registered("A"), Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(registered("Empty"), Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(registered("Holey"), Orvo::CAM_API_STS_NOT_FOUND);
    scripted::failNode("Uncountable", "Nd_GetNumOfFeatures", Orvo::CAM_API_STS_BUSY);
    QCOMPARE(registered("Uncountable"), Orvo::CAM_API_STS_BUSY);
}

void FeatureViewTreeTest::itemsWithoutAModelAreDestroyedWithTheView()
{
    auto view = std::make_unique<FeatureView>();
    for (const Orvo::CAM_NODE_HANDLE node : {1UL, 2UL})
        view->registerItemsToList(node);
    const QPointer<GenAPINodeItem> first = view->items().at(0);
    const QPointer<GenAPINodeItem> second = view->items().at(1);
    view.reset();
    QVERIFY(first.isNull());
    QVERIFY(second.isNull());
}

void FeatureViewTreeTest::itemsWithoutAModelAreDestroyedByTheNextCamera()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    features.view().registerItemsToList(1);
    const QPointer<GenAPINodeItem> item = features.view().items().last();
    features.view().SetCam(features.camera());
    QVERIFY(item.isNull());
    QCOMPARE(itemNames(features.view()), QStringList{"A"});
}

void FeatureViewTreeTest::itemsOfAnotherModelSurvive()
{
    QStandardItemModel model;
    auto view = std::make_unique<FeatureView>();
    view->registerItemsToList(1);
    const QPointer<GenAPINodeItem> item = view->items().first();
    model.setItem(0, 0, item);
    view.reset();
    QVERIFY(!item.isNull());
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
    features.view().selectInvisible(); // also shows nodes of unknown visibility
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

void FeatureViewTreeTest::cyclicCategoriesTerminate()
{
    FeatureTable features({category("Root", {"C", "A"}), category("C", {"C", "C"}), feature("A")});
    QCOMPARE(features.names().size(), 257);
    QCOMPARE(features.names().last(), QString("A"));
}

} // namespace

ORVO_TEST_CLASS(FeatureViewTreeTest)
#include "FeatureViewTreeTest.moc"
