// Folding categories, clicks on rows and on the header, and the node-type column.

#include "features/description/DescBox.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QCursor>
#include <QHeaderView>
#include <QScrollBar>

#include <random>

using scripted::category;
using scripted::NodeSpec;

namespace {

/// A loose feature, a category with one, a category within a category, and an empty one.
std::vector<NodeSpec> nested()
{
    return {category("Root", {"Loose", "Plain", "Outer", "Empty"}),
            category("Plain", {"A", "B"}),
            category("Outer", {"Inner", "After"}),
            category("Inner", {"C"}),
            category("Empty", {}),
            feature("Loose"),
            feature("A"),
            feature("B"),
            feature("C"),
            feature("After")};
}

class FeatureViewFoldingTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }
    void cleanup() { QCursor::setPos(0, 0); }

    void atFirstOnlyCategoriesWithFeaturesAreShown();
    void aCategoryUnfoldsAndFolds();
    void theOuterHeaderStaysHidden();
    void featuresAfterAnInnerCategoryFollowIt();
    void featuresBeforeTheFirstCategoryStayHidden();
    void aCategoryWhoseFeaturesAreFilteredOutIsHidden();
    void inAToZEveryRowIsShown();
    void foldStatesSurviveFilteringAndSorting();
    void foldStatesAreForgottenWithTheModel();
    void levelLettersAreCaseSensitive();
    void rowsAddedLaterFold();
    void everyTreeFoldsLikeARowByRowWalk_data();
    void everyTreeFoldsLikeARowByRowWalk();
    void theTableDoesNotUpdateItselfWhileRowsAreHidden();

    void aFeatureRowDoesNotFold();
    void anyCellOfACategoryFolds();
    void anIndexOfTheSourceModelFoldsToo();
    void anInvalidIndexDoesNothing();

    void clickDescribesTheRow();
    void clickAtTheLeftEdgeFolds_data();
    void clickAtTheLeftEdgeFolds();
    void clickWithThePointerLeftOfTheTableFolds();
    void clickAtTheLeftEdgeOfAFeatureOnlyDescribes();
    void doubleClickFolds();
    void doubleClickOnAFeatureChangesNothing();

    void theTypeColumnFollowsTheWidth();
    void theThresholdAppliesAtOnce();
    void headerDoubleClickTogglesTheTypeColumn();
    void clicksOnTheHeaderSelectNothing();
    void theManualToggleHoldsUntilTheNextResize();
    void nodeTypeColumnQueryReturnsTheOppositeOfItsName();

    void closingTheEditorKeepsTheCurrentRow();
    void closingWithoutACurrentRow();
    void scrollToCurrentDoesNothing();
};

void FeatureViewFoldingTest::atFirstOnlyCategoriesWithFeaturesAreShown()
{
    FeatureTable features(nested());
    QCOMPARE(features.names(), QStringList({"Loose", "Plain", "A", "B", "Outer", "Inner", "C", "After", "Empty"}));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
}

void FeatureViewFoldingTest::aCategoryUnfoldsAndFolds()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("Plain"));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "A", "B", "Inner"}));
    QCOMPARE(features.cell("Plain").data(FeatureView::ExpandedRole), QVariant(true));
    QVERIFY(showsImage(features.cell("Plain").data(Qt::DecorationRole).value<QIcon>(), "Collapsed.png"));

    features.view().changeCollapsedState(features.cell("Plain"));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
    QCOMPARE(features.cell("Plain").data(FeatureView::ExpandedRole), QVariant(false));
    QVERIFY(showsImage(features.cell("Plain").data(Qt::DecorationRole).value<QIcon>(), "Folded.png"));
}

void FeatureViewFoldingTest::theOuterHeaderStaysHidden()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("Outer"));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
}

void FeatureViewFoldingTest::featuresAfterAnInnerCategoryFollowIt()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("Inner"));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner", "C", "After"}));
}

void FeatureViewFoldingTest::featuresBeforeTheFirstCategoryStayHidden()
{
    FeatureTable features({category("Root", {"Loose"}), feature("Loose")});
    QVERIFY(features.shownNames().isEmpty());
    features.view().selectSortAtoZ();
    QCOMPARE(features.shownNames(), QStringList({"Loose"}));
}

void FeatureViewFoldingTest::aCategoryWhoseFeaturesAreFilteredOutIsHidden()
{
    FeatureTable features({category("Root", {"Gurus", "All"}), category("Gurus", {"G"}), category("All", {"B"}),
                           feature("G", Orvo::NODE_VISIBILITY_GURU), feature("B")});
    QCOMPARE(features.shownNames(), QStringList({"All"}));
    features.view().selectGuru();
    QCOMPARE(features.shownNames(), QStringList({"Gurus", "All"}));
    features.view().selectBeginner();
    QCOMPARE(features.shownNames(), QStringList({"All"}));
}

void FeatureViewFoldingTest::inAToZEveryRowIsShown()
{
    FeatureTable features(nested());
    features.view().selectSortAtoZ();
    QCOMPARE(features.shownNames(), QStringList({"A", "After", "B", "C", "Loose"}));
    features.view().selectSortCategory();
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
}

void FeatureViewFoldingTest::foldStatesSurviveFilteringAndSorting()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("Plain"));
    features.view().selectSortAtoZ();
    features.view().selectGuru();
    features.view().selectSortCategory();
    QCOMPARE(features.shownNames(), QStringList({"Plain", "A", "B", "Inner"}));
}

void FeatureViewFoldingTest::foldStatesAreForgottenWithTheModel()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("Plain"));
    features.view().SetCam(features.camera());
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
}

void FeatureViewFoldingTest::levelLettersAreCaseSensitive()
{
    FeatureTable features(nested());
    features.view().setNIfeatureVisible(true); // otherwise the filter drops lower-case letters
    auto* const model = new QStandardItemModel(0, 3);
    features.view().addFeature(model, 0, "c", "Cat", "Category", "", EditorNone);
    features.view().addFeature(model, 1, "B", "A", "Integer", "", EditorNone);
    features.view().showModel(model);
    QCOMPARE(features.names(), QStringList({"Cat", "A"}));
    QVERIFY(features.shownNames().isEmpty());
    features.view().changeCollapsedState(features.cell("Cat"));
    QCOMPARE(features.cell("Cat").data(FeatureView::ExpandedRole), QVariant(false));
    QCOMPARE(features.table().columnSpan(0, 0), 1);
}

void FeatureViewFoldingTest::rowsAddedLaterFold()
{
    FeatureTable features(nested());
    auto* const model = new QStandardItemModel(0, 3);
    features.view().showModel(model);
    features.view().setFeatureDataDebug(model);
    features.view().SetRowCollapsedState();
    QCOMPARE(features.shownNames(), QStringList({"Scalable", "Analog"}));
}

void FeatureViewFoldingTest::everyTreeFoldsLikeARowByRowWalk_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 20; ++seed)
        QTest::addRow("%u", seed) << seed;
}

void FeatureViewFoldingTest::everyTreeFoldsLikeARowByRowWalk()
{
    QFETCH(unsigned, seed);
    std::minstd_rand random(seed);
    auto* const model = new QStandardItemModel(0, 3);
    FeatureView view;
    for (int row = 0; row < 60; ++row) {
        const bool isCategory = random() % 3 == 0;
        view.addFeature(model, row, isCategory ? "C" : "B", QString::number(row), isCategory ? "Category" : "Integer",
                        "", EditorNone);
        if (isCategory)
            model->item(row, 0)->setData(random() % 2 == 0, FeatureView::ExpandedRole);
    }
    view.showModel(model);

    QVector<bool> shown(model->rowCount());
    bool pending = false;
    bool expanded = false;
    int lastCategory = -1;
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, 0).data(FeatureView::LevelRole) == "C") {
            shown[row] = false;
            expanded = model->index(row, 0).data(FeatureView::ExpandedRole).toBool();
            pending = true;
            lastCategory = row;
        } else {
            if (pending)
                shown[lastCategory] = true;
            shown[row] = expanded;
            pending = false;
        }
    }
    for (int row = 0; row < model->rowCount(); ++row)
        QCOMPARE(!view.tableView()->isRowHidden(row), shown.at(row));
}

void FeatureViewFoldingTest::theTableDoesNotUpdateItselfWhileRowsAreHidden()
{
    FeatureTable features(nested());
    features.show();
    int hiddenOrShown = 0;
    int updating = 0;
    connect(features.table().verticalHeader(), &QHeaderView::sectionResized, this, [&] {
        ++hiddenOrShown;
        updating += features.table().updatesEnabled() ? 1 : 0;
    });
    features.view().changeCollapsedState(features.cell("Plain"));
    QCOMPARE(hiddenOrShown, 2); // only the two rows that appear
    QCOMPARE(updating, 0);
    QVERIFY(features.table().updatesEnabled());
}

void FeatureViewFoldingTest::aFeatureRowDoesNotFold()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("A"));
    QVERIFY(!features.cell("A").data(FeatureView::ExpandedRole).isValid());
    QVERIFY(!features.cell("A").data(Qt::DecorationRole).isValid());
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
}

void FeatureViewFoldingTest::anyCellOfACategoryFolds()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.cell("Plain", 2));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "A", "B", "Inner"}));
    QVERIFY(!features.cell("Plain", 2).data(FeatureView::ExpandedRole).isValid());
}

void FeatureViewFoldingTest::anIndexOfTheSourceModelFoldsToo()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState(features.view().sourceModel()->index(1, 0));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "A", "B", "Inner"}));
}

void FeatureViewFoldingTest::anInvalidIndexDoesNothing()
{
    FeatureTable features(nested());
    features.view().changeCollapsedState({});
    features.view().tableRowDoubleClicked({});
    const QStandardItemModel other(1, 1);
    features.view().changeCollapsedState(other.index(0, 0));
    QVERIFY(!features.view().itemAt({}));
    QVERIFY(!features.view().itemAt(other.index(0, 0)));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "Inner"}));
}

void FeatureViewFoldingTest::clickDescribesTheRow()
{
    FeatureTable features(nested());
    features.show();
    features.view().changeCollapsedState(features.cell("Inner"));
    features.clickRow("C", 200);
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 6);
    features.clickRow("Inner", 200);
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 5);
    features.view().selectSortAtoZ();
    features.clickRow("B", 30);
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 3);
}

void FeatureViewFoldingTest::clickAtTheLeftEdgeFolds_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<bool>("folds");
    QTest::newRow("0") << 1 << true; // x = 0 is the frame
    QTest::newRow("20") << 20 << true;
    QTest::newRow("21") << 21 << false;
    QTest::newRow("in the name") << 60 << false;
}

void FeatureViewFoldingTest::clickAtTheLeftEdgeFolds()
{
    QFETCH(int, x);
    FeatureTable features(nested());
    features.show();
    features.clickRow("Plain", x);
    QTEST(features.shownNames().contains("A"), "folds");
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 1);
    QCOMPARE(features.table().currentIndex(), features.cell("Plain"));
}

// The position of the pointer at the time of the call decides.
void FeatureViewFoldingTest::clickWithThePointerLeftOfTheTableFolds()
{
    FeatureTable features(nested());
    features.show();
    QCursor::setPos(features.table().mapToGlobal(QPoint(-7, 40)));
    features.view().tableRowClicked(features.cell("Plain"));
    QVERIFY(features.shownNames().contains("A"));
}

void FeatureViewFoldingTest::clickAtTheLeftEdgeOfAFeatureOnlyDescribes()
{
    FeatureTable features(nested());
    features.show();
    features.view().changeCollapsedState(features.cell("Plain"));
    const QStringList before = features.shownNames();
    features.clickRow("A", 5);
    QCOMPARE(features.shownNames(), before);
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 2);
}

void FeatureViewFoldingTest::doubleClickFolds()
{
    FeatureTable features(nested());
    features.show();
    const QRect row = features.table().visualRect(features.cell("Plain"));
    const QPoint inTheName(100, row.center().y());
    QCursor::setPos(features.table().viewport()->mapToGlobal(inTheName)); // away from the edge, where a click folds
    QTest::mouseClick(features.table().viewport(), Qt::LeftButton, {}, inTheName);
    QTest::mouseDClick(features.table().viewport(), Qt::LeftButton, {}, inTheName);
    QCOMPARE(features.shownNames(), QStringList({"Plain", "A", "B", "Inner"}));
}

void FeatureViewFoldingTest::doubleClickOnAFeatureChangesNothing()
{
    FeatureTable features(nested());
    features.show();
    features.view().changeCollapsedState(features.cell("Plain"));
    const QStringList before = features.shownNames();
    const QPoint inTheName = features.table().visualRect(features.cell("A")).center();
    const QSignalSpy doubleClicks(&features.table(), &QTableView::doubleClicked);
    QTest::mouseClick(features.table().viewport(), Qt::LeftButton, {}, inTheName);
    QTest::mouseDClick(features.table().viewport(), Qt::LeftButton, {}, inTheName);
    QCOMPARE(doubleClicks.count(), 1);
    QCOMPARE(features.shownNames(), before);
}

void FeatureViewFoldingTest::theTypeColumnFollowsTheWidth()
{
    FeatureTable features(nested());
    features.show();
    features.view().setMinimumSize(1, 1);
    features.table().setMinimumSize(1, 1);
    features.view().resize(299, 400);
    QVERIFY(features.table().isColumnHidden(1));
    features.view().resize(300, 400);
    QVERIFY(!features.table().isColumnHidden(1));
    features.view().resize(299, 400);
    QVERIFY(features.table().isColumnHidden(1));
}

void FeatureViewFoldingTest::theThresholdAppliesAtOnce()
{
    FeatureTable features(nested());
    features.view().setMinWdtShowingClmNodeType(501);
    QCOMPARE(features.view().minWdtShowingClmNodeType(), 501);
    QVERIFY(features.table().isColumnHidden(1));
    features.view().setMinWdtShowingClmNodeType(500);
    QVERIFY(!features.table().isColumnHidden(1));
}

void FeatureViewFoldingTest::headerDoubleClickTogglesTheTypeColumn()
{
    FeatureTable features(nested());
    features.show();
    QHeaderView* const header = features.table().horizontalHeader();
    for (const int section : {0, 2}) {
        const QPoint at(header->sectionViewportPosition(section) + 10, header->height() / 2);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, at);
        QVERIFY(features.table().isColumnHidden(1));
        features.view().columnHeaderDoubleClicked();
        QVERIFY(!features.table().isColumnHidden(1));
    }
}

void FeatureViewFoldingTest::clicksOnTheHeaderSelectNothing()
{
    FeatureTable features(nested());
    features.show();
    features.view().changeCollapsedState(features.cell("Plain"));
    QWidget* const header = features.table().horizontalHeader()->viewport();
    const QPoint at = header->rect().center();
    const QItemSelectionModel& selection = *features.table().selectionModel();
    QTest::mouseClick(header, Qt::LeftButton, {}, at);
    QTest::mouseDClick(header, Qt::LeftButton, {}, at);
    QVERIFY(features.table().isColumnHidden(1));
    QVERIFY(!selection.hasSelection());
    QVERIFY(!selection.currentIndex().isValid());

    features.table().setCurrentIndex(features.cell("A"));
    QTest::mouseClick(header, Qt::LeftButton, {}, at);
    QTest::mouseDClick(header, Qt::LeftButton, {}, at);
    QVERIFY(!features.table().isColumnHidden(1));
    QCOMPARE(selection.selectedIndexes(), QModelIndexList{features.cell("A")});
    QCOMPARE(selection.currentIndex(), features.cell("A"));
}

void FeatureViewFoldingTest::theManualToggleHoldsUntilTheNextResize()
{
    FeatureTable features(nested());
    features.show();
    features.view().columnHeaderDoubleClicked();
    QVERIFY(features.table().isColumnHidden(1));
    features.view().updateAllFeatures();
    features.view().changeCollapsedState(features.cell("Plain"));
    QVERIFY(features.table().isColumnHidden(1));
    features.view().resize(501, 700);
    QVERIFY(!features.table().isColumnHidden(1));
}

void FeatureViewFoldingTest::nodeTypeColumnQueryReturnsTheOppositeOfItsName()
{
    FeatureTable features(nested());
    features.view().setclmNodeTypeVisible(true);
    QVERIFY(!features.view().clmNodeTypeVisible());
    features.view().setclmNodeTypeVisible(false);
    QVERIFY(features.view().clmNodeTypeVisible());
}

void FeatureViewFoldingTest::closingTheEditorKeepsTheCurrentRow()
{
    FeatureTable features(nested());
    features.show();
    features.view().changeCollapsedState(features.cell("Plain"));
    features.table().setCurrentIndex(features.cell("A"));
    features.view().closeEditOperation();
    QCOMPARE(features.table().currentIndex(), features.cell("A"));
    QCOMPARE(features.shownNames(), QStringList({"Plain", "A", "B", "Inner"}));
}

void FeatureViewFoldingTest::closingWithoutACurrentRow()
{
    FeatureTable features(nested());
    features.view().closeEditOperation();
    QVERIFY(!features.table().currentIndex().isValid());
}

void FeatureViewFoldingTest::scrollToCurrentDoesNothing()
{
    FeatureTable features(manyNodes(200));
    features.view().selectSortAtoZ();
    features.show();
    features.table().setCurrentIndex(features.rowsModel().index(0, 0));
    features.table().scrollToBottom();
    const int before = features.table().verticalScrollBar()->value();
    QVERIFY(before > 0);
    features.view().ScrollToCurrent();
    QCOMPARE(features.table().verticalScrollBar()->value(), before);
}

} // namespace

ORVO_TEST_CLASS(FeatureViewFoldingTest)
#include "FeatureViewFoldingTest.moc"
