// Which rows a level shows, how they are sorted, and what a change of either preserves.

#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QHeaderView>
#include <QSortFilterProxyModel>
#include <QToolBar>

using scripted::category;
using scripted::NodeSpec;

namespace {

// A category with one feature of every level, implemented and not implemented, named after its level letter.
std::vector<NodeSpec> everyLetter()
{
    constexpr char kLetters[] = "BEGI";
    NodeSpec cat = category("C", {});
    std::vector<NodeSpec> nodes;
    for (int level = 0; level < 4; ++level) {
        for (const bool implemented : {true, false}) {
            const char letter = implemented ? kLetters[level] : static_cast<char>(kLetters[level] - 'A' + 'a');
            cat.features.emplace_back(1, letter);
            nodes.push_back(feature(cat.features.back(), static_cast<Orvo::TC_NODE_VISIBILITY>(level),
                                    implemented ? Orvo::NODE_ACCESS_MODE_RW : Orvo::NODE_ACCESS_MODE_NI));
        }
    }
    nodes.insert(nodes.begin(), {category("Root", {"C"}), cat});
    return nodes;
}

std::vector<NodeSpec> mixedOrder()
{
    return {category("Root", {"Zoo", "Ape"}),
            category("Zoo", {"b", "A10", "\xC3\x84", "a"}),
            category("Ape", {"B", "A2", "_"}),
            feature("b"),
            feature("A10"),
            feature("\xC3\x84"),
            feature("a"),
            feature("B"),
            feature("A2"),
            feature("_")};
}

QAction* actionOf(FeatureView& view, const QString& text)
{
    for (QAction* const action : view.findChild<QToolBar*>()->actions()) {
        if (action->text() == text)
            return action;
    }
    qFatal("no action %s", qPrintable(text));
    return nullptr;
}

QStringList checkedActions(FeatureView& view)
{
    QStringList texts;
    for (const QAction* const action : view.findChild<QToolBar*>()->actions()) {
        if (action->isChecked())
            texts << action->text();
    }
    return texts;
}

class FeatureViewFilterTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void levelsAndOrders_data();
    void levelsAndOrders();
    void theProxyFiltersByALevelPattern();

    void aNewViewIsInCategoryOrderAtBeginner();
    void levelSlotsKeepTheOrder();
    void orderSlotsKeepTheLevel();
    void actionsTriggerTheSlots();
    void aCheckedActionStaysChecked();
    void notImplementedFeaturesTakeEffectAtTheNextFilter();
    void availabilityOfTheInvisibleLevelOnlyShowsTheAction();
    void theReReadSettingIsOnlyStored();

    void aToZComparesPlainCharacters();
    void categoryOrderIsRestoredExactly();
    void categoryOrderComparesNumbers();
    void noCategoryInAToZAtAnyLevel();
    void categoriesSpanTheRow();
    void noRowSpansInAToZ();

    void columnsFitTheirContents();
    void columnsFitFoldedRowsToo();
    void columnsFitRowsBeyondTheFirstThousand();
    void foldedRowsWidenColumnsToTwoFifthsOfTheViewAtMost();
    void aHiddenTypeColumnKeepsItsWidth();
    void filteringAppliesTheTypeColumnRule();

    void currentRowAndSelectionStayWithTheirFeature();
    void aCurrentRowThatIsFilteredOutIsNoLongerCurrent();
    void filteringEmitsOneLayoutChange();
    void filteredRowsMatchAPlainProxyModel_data();
    void filteredRowsMatchAPlainProxyModel();
    void disabledUpdatesStayDisabled();
};

void FeatureViewFilterTest::levelsAndOrders_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("sortAtoZ");
    QTest::addColumn<bool>("notImplementedVisible");
    QTest::addColumn<QString>("letters");

    struct Row {
        int level;
        const char* inCategoryOrder;
        const char* inAtoZOrder;
        const char* inCategoryOrderWithAll;
        const char* inAtoZOrderWithAll;
    };
    constexpr Row kRows[] = {
        {0, "CB", "B", "CBb", "Bb"},
        {1, "CBE", "BE", "CBbEe", "BEbe"},
        {2, "CBEG", "BEG", "CBbEeGg", "BEGbeg"},
        {3, "CBEGI", "BEGI", "CBbEeGgIi", "BEGIbegi"},
        {4, "CB", "B", "CBb", "Bb"},
        {-1, "CB", "B", "CBb", "Bb"},
        {99, "CB", "B", "CBb", "Bb"},
    };
    for (const Row& row : kRows) {
        const auto add = [&](bool sortAtoZ, bool all, const char* letters) {
            QTest::addRow("level %d%s%s", row.level, sortAtoZ ? " A-Z" : "", all ? " with not implemented" : "")
                << row.level << sortAtoZ << all << letters;
        };
        add(false, false, row.inCategoryOrder);
        add(true, false, row.inAtoZOrder);
        add(false, true, row.inCategoryOrderWithAll);
        add(true, true, row.inAtoZOrderWithAll);
    }
}

void FeatureViewFilterTest::levelsAndOrders()
{
    QFETCH(int, level);
    QFETCH(bool, sortAtoZ);
    QFETCH(bool, notImplementedVisible);
    FeatureTable features(everyLetter());
    features.view().setNIfeatureVisible(notImplementedVisible);
    features.view().sortAndFilter(sortAtoZ, static_cast<Orvo::TC_NODE_VISIBILITY>(level));
    QTEST(features.names().join(QString()), "letters");

    QStringList checked{sortAtoZ ? "&sortAz" : "&sortCtg"};
    const QStringList ofLevels{"&levelBeginner", "&levelExpert", "&levelGuru", "&levelInvisible"};
    if (level >= 0 && level < ofLevels.size())
        checked << ofLevels.at(level);
    QCOMPARE(checkedActions(features.view()), checked); // no action is checked for an invalid level
}

void FeatureViewFilterTest::theProxyFiltersByALevelPattern()
{
    FeatureTable features(everyLetter());
    const auto& proxy = dynamic_cast<QSortFilterProxyModel&>(features.rowsModel());
    features.view().sortAndFilter(false, Orvo::NODE_VISIBILITY_GURU);
    QCOMPARE(proxy.filterRegExp(), QRegExp("[BEGC]", Qt::CaseSensitive));
    QCOMPARE(proxy.filterKeyColumn(), 0);
    QCOMPARE(proxy.filterRole(), 260);
    QCOMPARE(proxy.sortRole(), 261);
    QCOMPARE(proxy.sortColumn(), 0);
    QCOMPARE(proxy.sortOrder(), Qt::AscendingOrder);
    QCOMPARE(proxy.sourceModel(), features.view().sourceModel());
    features.view().setNIfeatureVisible(true);
    features.view().sortAndFilter(true, Orvo::NODE_VISIBILITY_BEGINNER);
    QCOMPARE(proxy.filterRegExp(), QRegExp("B", Qt::CaseInsensitive));
    QCOMPARE(proxy.sortRole(), static_cast<int>(Qt::DisplayRole));
}

void FeatureViewFilterTest::aNewViewIsInCategoryOrderAtBeginner()
{
    FeatureView view;
    QCOMPARE(checkedActions(view), QStringList({"&sortCtg", "&levelBeginner"}));
}

void FeatureViewFilterTest::levelSlotsKeepTheOrder()
{
    FeatureTable features(everyLetter());
    features.view().selectExpert();
    QCOMPARE(features.names().join(""), QString("CBE"));
    features.view().selectGuru();
    QCOMPARE(features.names().join(""), QString("CBEG"));
    features.view().selectInvisible();
    QCOMPARE(features.names().join(""), QString("CBEGI"));
    features.view().selectBeginner();
    QCOMPARE(features.names().join(""), QString("CB"));
    features.view().selectSortAtoZ();
    features.view().selectGuru();
    QCOMPARE(features.names().join(""), QString("BEG"));
}

void FeatureViewFilterTest::orderSlotsKeepTheLevel()
{
    FeatureTable features(everyLetter());
    features.view().selectExpert();
    features.view().selectSortAtoZ();
    QCOMPARE(features.names().join(""), QString("BE"));
    features.view().selectSortCategory();
    QCOMPARE(features.names().join(""), QString("CBE"));
}

void FeatureViewFilterTest::actionsTriggerTheSlots()
{
    FeatureTable features(everyLetter());
    struct Step {
        const char* action = nullptr;
        const char* shown = nullptr;
        QStringList checked;
    };
    const Step steps[] = {
        {"&levelExpert", "CBE", {"&sortCtg", "&levelExpert"}},
        {"&sortAz", "BE", {"&sortAz", "&levelExpert"}},
        {"&levelGuru", "BEG", {"&sortAz", "&levelGuru"}},
        {"&sortCtg", "CBEG", {"&sortCtg", "&levelGuru"}},
        {"&levelInvisible", "CBEGI", {"&sortCtg", "&levelInvisible"}},
        {"&levelBeginner", "CB", {"&sortCtg", "&levelBeginner"}},
    };
    for (const Step& step : steps) {
        actionOf(features.view(), step.action)->trigger();
        QCOMPARE(features.names().join(""), QString(step.shown));
        QCOMPARE(checkedActions(features.view()), step.checked);
    }
}

void FeatureViewFilterTest::aCheckedActionStaysChecked()
{
    FeatureTable features(everyLetter());
    actionOf(features.view(), "&levelBeginner")->trigger();
    actionOf(features.view(), "&sortCtg")->trigger();
    QCOMPARE(checkedActions(features.view()), QStringList({"&sortCtg", "&levelBeginner"}));
}

void FeatureViewFilterTest::notImplementedFeaturesTakeEffectAtTheNextFilter()
{
    FeatureTable features(everyLetter());
    features.view().setNIfeatureVisible(true);
    QVERIFY(features.view().isNIfeatureVisible());
    QCOMPARE(features.names().join(""), QString("CB"));
    features.view().selectBeginner();
    QCOMPARE(features.names().join(""), QString("CBb"));
    features.view().setNIfeatureVisible(false);
    features.view().selectBeginner();
    QCOMPARE(features.names().join(""), QString("CB"));
}

void FeatureViewFilterTest::availabilityOfTheInvisibleLevelOnlyShowsTheAction()
{
    FeatureTable features(everyLetter());
    const QAction* const invisible = actionOf(features.view(), "&levelInvisible");
    QVERIFY(!invisible->isVisible());
    features.view().setLevelInvisibleAvailable(true);
    QVERIFY(invisible->isVisible());
    QVERIFY(features.view().levelInvisibleAvailable());
    QCOMPARE(features.names().join(""), QString("CB"));
    features.view().setLevelInvisibleAvailable(false);
    QVERIFY(!invisible->isVisible());
    QVERIFY(!features.view().levelInvisibleAvailable());
}

void FeatureViewFilterTest::theReReadSettingIsOnlyStored()
{
    FeatureTable features(everyLetter());
    scripted::clearCalls();
    features.view().setAutoReRead(false);
    QVERIFY(!features.view().autoReRead());
    features.view().setAutoReRead(true);
    QVERIFY(features.view().autoReRead());
    QVERIFY(scripted::calls().empty());
}

void FeatureViewFilterTest::aToZComparesPlainCharacters()
{
    FeatureTable features(mixedOrder());
    features.view().selectSortAtoZ();
    QCOMPARE(features.names(), QStringList({"A10", "A2", "B", "_", "a", "b", "\u00C4"}));
}

void FeatureViewFilterTest::categoryOrderIsRestoredExactly()
{
    FeatureTable features(mixedOrder());
    const QStringList before = features.names();
    QCOMPARE(before, QStringList({"Zoo", "b", "A10", "\u00C4", "a", "Ape", "B", "A2", "_"}));
    features.view().selectSortAtoZ();
    features.view().selectGuru();
    features.view().selectSortCategory();
    QCOMPARE(features.names(), before);
}

void FeatureViewFilterTest::categoryOrderComparesNumbers()
{
    FeatureTable many(manyNodes(300)); // row 10 comes after row 9, not after row 1
    many.view().selectGuru();
    const QStringList all = many.names();
    QCOMPARE(all.mid(0, 12), QStringList({"Category0", "Feature0", "Feature1", "Feature2", "Feature3", "Feature4",
                                          "Feature5", "Feature6", "Feature7", "Feature8", "Feature9", "Feature10"}));
    many.view().selectSortAtoZ();
    many.view().selectSortCategory();
    QCOMPARE(many.names(), all);
}

void FeatureViewFilterTest::noCategoryInAToZAtAnyLevel()
{
    FeatureTable features(everyLetter());
    for (int level = 0; level < 4; ++level) {
        features.view().sortAndFilter(true, static_cast<Orvo::TC_NODE_VISIBILITY>(level));
        QVERIFY(!features.names().contains("C"));
        QCOMPARE(features.shownNames(), features.names());
    }
}

void FeatureViewFilterTest::categoriesSpanTheRow()
{
    FeatureTable features(mixedOrder());
    for (int row = 0; row < features.rowsModel().rowCount(); ++row) {
        const bool isCategory = features.rowsModel().index(row, 0).data(FeatureView::LevelRole) == "C";
        QCOMPARE(features.table().columnSpan(row, 0), isCategory ? 3 : 1);
        QCOMPARE(features.table().rowSpan(row, 0), 1);
    }
}

void FeatureViewFilterTest::noRowSpansInAToZ()
{
    FeatureTable features(mixedOrder());
    features.view().selectSortAtoZ();
    for (int row = 0; row < features.rowsModel().rowCount(); ++row)
        QCOMPARE(features.table().columnSpan(row, 0), 1);
}

void FeatureViewFilterTest::columnsFitTheirContents()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"A", "LongNameOfAFeature"}), feature("A"),
                           feature("LongNameOfAFeature", Orvo::NODE_VISIBILITY_GURU)});
    features.show();
    features.view().changeCollapsedState(features.cell("C"));
    const QTableView& table = features.table();
    const auto widths = [&] { return std::pair{table.columnWidth(0), table.columnWidth(1)}; };
    std::vector<std::pair<int, int>> seen;
    for (const int level : {0, 2, 0}) {
        features.view().sortAndFilter(false, static_cast<Orvo::TC_NODE_VISIBILITY>(level));
        seen.push_back(widths());
        QTRY_COMPARE(table.horizontalHeader()->length(), table.viewport()->width()); // the last section stretches
        features.table().resizeColumnsToContents();
        QCOMPARE(widths(), seen.back());
    }
    QVERIFY(seen[1].first > seen[0].first);
    QCOMPARE(seen[2], seen[0]);
}

void FeatureViewFilterTest::columnsFitFoldedRowsToo()
{
    NodeSpec text = feature("FeatureOfLongName");
    text.type = Orvo::NODE_TYPE_ENUMERATION; // the longest of the type texts
    // More characters, but narrower on screen.
    const NodeSpec narrow = feature("iiiiiiiiiiiiiiiiiiiiii");
    // Never shown, and irrelevant to the column width: a category spans all columns.
    const NodeSpec empty = category("AnEmptyCategoryOfALongerName", {});
    FeatureTable features(
        {category("Root", {"C", empty.name}), category("C", {narrow.name, text.name}), narrow, text, empty});
    const QTableView& table = features.table();
    QCOMPARE(features.shownNames(), QStringList("C"));
    const std::pair folded(table.columnWidth(0), table.columnWidth(1));
    features.view().changeCollapsedState(features.cell("C"));
    features.table().resizeColumnsToContents();
    QCOMPARE(folded, std::pair(table.columnWidth(0), table.columnWidth(1)));
}

void FeatureViewFilterTest::columnsFitRowsBeyondTheFirstThousand()
{
    std::vector<NodeSpec> nodes = manyNodes(1500);
    nodes.front().features.emplace_back("ZZZ");
    nodes.push_back(category("ZZZ", {"ZZZLongNameOfTheLastFeatureOfAll"}));
    nodes.push_back(feature("ZZZLongNameOfTheLastFeatureOfAll"));
    FeatureTable features(nodes);
    features.show();
    features.view().sortAndFilter(true, Orvo::NODE_VISIBILITY_GURU);
    const QTableView& table = features.table();
    QCOMPARE(features.shownNames().last(), QString("ZZZLongNameOfTheLastFeatureOfAll"));
    const QModelIndex last = features.cell("ZZZLongNameOfTheLastFeatureOfAll");
    QVERIFY(table.columnWidth(0) >= table.sizeHintForIndex(last).width());
}

void FeatureViewFilterTest::foldedRowsWidenColumnsToTwoFifthsOfTheViewAtMost()
{
    const NodeSpec node = feature(std::string(200, 'W'));
    FeatureTable features({category("Root", {"C"}), category("C", {node.name}), node});
    QCOMPARE(features.table().columnWidth(0), features.view().width() * 2 / 5);
    features.view().changeCollapsedState(features.cell("C"));
    features.view().selectBeginner();
    QVERIFY(features.table().columnWidth(0) > features.view().width()); // visible rows are fitted without a limit
}

void FeatureViewFilterTest::aHiddenTypeColumnKeepsItsWidth()
{
    FeatureTable features;
    features.show();
    features.table().setColumnWidth(1, 123);
    features.view().setclmNodeTypeVisible(false);
    features.view().selectExpert();
    QVERIFY(!features.table().isColumnHidden(1));
    QCOMPARE(features.table().columnWidth(1), 123);
    features.view().selectExpert();
    QVERIFY(features.table().columnWidth(1) != 123);
}

void FeatureViewFilterTest::filteringAppliesTheTypeColumnRule()
{
    FeatureTable features;
    features.view().setclmNodeTypeVisible(false);
    features.view().selectExpert();
    QVERIFY(!features.table().isColumnHidden(1));
    features.view().resize(299, 700);
    features.view().setclmNodeTypeVisible(true);
    features.view().selectSortAtoZ();
    QVERIFY(features.table().isColumnHidden(1));
}

void FeatureViewFilterTest::currentRowAndSelectionStayWithTheirFeature()
{
    FeatureTable features(mixedOrder());
    features.show();
    features.table().setCurrentIndex(features.cell("A2", 0));
    features.view().selectSortAtoZ();
    QCOMPARE(features.table().currentIndex(), features.cell("A2", 0));
    QCOMPARE(features.table().selectionModel()->selectedIndexes(), QModelIndexList({features.cell("A2", 0)}));
    features.view().selectSortCategory();
    QCOMPARE(features.table().currentIndex(), features.cell("A2", 0));
}

void FeatureViewFilterTest::aCurrentRowThatIsFilteredOutIsNoLongerCurrent()
{
    FeatureTable features(everyLetter());
    features.show();
    features.view().selectGuru();
    features.table().setCurrentIndex(features.cell("G", 2));
    features.view().selectBeginner();
    QVERIFY(!features.table().currentIndex().isValid());
    QVERIFY(!features.table().selectionModel()->hasSelection());
    features.view().updateAllFeatures();
}

void FeatureViewFilterTest::filteringEmitsOneLayoutChange()
{
    FeatureTable features(everyLetter());
    int layouts = 0;
    connect(&features.rowsModel(), &QAbstractItemModel::layoutChanged, this, [&] { ++layouts; });
    const QSignalSpy resets(&features.rowsModel(), &QAbstractItemModel::modelReset);
    const QSignalSpy inserted(&features.rowsModel(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy removed(&features.rowsModel(), &QAbstractItemModel::rowsRemoved);
    features.view().selectInvisible();
    features.view().selectSortAtoZ();
    QCOMPARE(layouts, 2);
    QCOMPARE(resets.count() + inserted.count() + removed.count(), 0);
}

void FeatureViewFilterTest::filteredRowsMatchAPlainProxyModel_data()
{
    QTest::addColumn<QStringList>("patterns");
    QTest::addColumn<QVector<int>>("roles");
    const int byIndex = FeatureView::ItemIndexRole;
    const int byName = Qt::DisplayRole;
    QTest::newRow("levels") << QStringList({"[BC]", "[BEC]", "[BEGC]", "[BC]"})
                            << QVector<int>{byIndex, byIndex, byIndex, byIndex};
    QTest::newRow("orders") << QStringList({"[BEC]", "[BE]", "[BE]", "[BEC]"})
                            << QVector<int>{byIndex, byName, byName, byIndex};
    QTest::newRow("nothing passes") << QStringList({"[BC]", "X", "[BEG]", "X", "[BEGC]"})
                                    << QVector<int>{byIndex, byName, byName, byIndex, byIndex};
}

void FeatureViewFilterTest::filteredRowsMatchAPlainProxyModel()
{
    QFETCH(QStringList, patterns);
    QFETCH(QVector<int>, roles);
    FeatureTable features(manyNodes(300));
    FeatureFilterModel model;
    QSortFilterProxyModel plain;
    for (QSortFilterProxyModel* const proxy : {static_cast<QSortFilterProxyModel*>(&model), &plain}) {
        proxy->setSourceModel(features.view().sourceModel());
        proxy->setFilterRole(FeatureView::LevelRole);
    }
    const auto rows = [](const QAbstractItemModel& of) {
        QStringList names;
        for (int row = 0; row < of.rowCount(); ++row)
            names << of.index(row, 0).data().toString();
        return names;
    };
    const QPersistentModelIndex kept = model.mapFromSource(features.view().sourceModel()->index(1, 0));
    for (int i = 0; i < patterns.size(); ++i) {
        const QRegExp pattern(patterns.at(i));
        model.arrange(pattern, roles.at(i), features.view().sourceModel());
        plain.setFilterRegExp(pattern);
        plain.setSortRole(roles.at(i));
        plain.sort(0);
        QCOMPARE(rows(model), rows(plain));
        if (kept.isValid())
            QCOMPARE(kept.data().toString(), QString("   Feature0"));
    }
    QVERIFY(kept.isValid() || patterns.contains("X"));
}

void FeatureViewFilterTest::disabledUpdatesStayDisabled()
{
    FeatureTable features;
    features.table().setUpdatesEnabled(false);
    features.view().selectExpert();
    QVERIFY(!features.table().updatesEnabled());
    features.table().setUpdatesEnabled(true);
    features.view().setUpdatesEnabled(false); // disables the table, a child of the view, too
    features.view().selectGuru();
    features.view().setUpdatesEnabled(true);
    QVERIFY(features.table().updatesEnabled());
}

} // namespace

ORVO_TEST_CLASS(FeatureViewFilterTest)
#include "FeatureViewFilterTest.moc"
