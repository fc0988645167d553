// Twenty thousand features.

#include "features/description/DescBox.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QHeaderView>

#include <memory>

namespace {

constexpr int kFeatures = 20000;
constexpr int kCategories = (kFeatures + 11) / 12;
constexpr int kBeginners = (kFeatures + 2) / 3; // levels repeat: Beginner, Expert, Guru
constexpr int kExperts = (kFeatures + 1) / 3;

class FeatureViewLargeTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        scripted::reset();
        features = std::make_unique<FeatureTable>(manyNodes(kFeatures));
        features->show();
    }
    void cleanupTestCase() { features.reset(); }
    void init()
    {
        features->view().selectBeginner();
        features->view().selectSortCategory();
    }

    void everyNodeHasARow();
    void foldsAndUnfolds();
    void filtersAndSorts();
    void readsEverythingOnce();
    void lastRowIsUsable();

private:
    std::unique_ptr<FeatureTable> features;
};

void FeatureViewLargeTest::everyNodeHasARow()
{
    QCOMPARE(features->view().items().size(), kFeatures + kCategories);
    QCOMPARE(features->view().sourceModel()->rowCount(), kFeatures + kCategories);
    QCOMPARE(features->names().size(), kBeginners + kCategories);
    QCOMPARE(features->shownNames().size(), kCategories);
    QCOMPARE(features->view().items().last()->getNodeName(), QString("Feature%1").arg(kFeatures - 1));
}

void FeatureViewLargeTest::foldsAndUnfolds()
{
    constexpr int kToggled = 50;
    constexpr int kBeginnersOfACategory = 4;
    for (const bool unfold : {true, false}) {
        for (int category = 0; category < kToggled; ++category) {
            features->view().changeCollapsedState(
                features->rowsModel().index(category * (kBeginnersOfACategory + 1), 0));
        }
        QCOMPARE(features->shownNames().size(), kCategories + (unfold ? kToggled * kBeginnersOfACategory : 0));
        QCOMPARE(features->table().verticalHeader()->length(), 22 * features->shownNames().size());
    }
}

void FeatureViewLargeTest::filtersAndSorts()
{
    features->view().selectExpert();
    QCOMPARE(features->names().size(), kBeginners + kExperts + kCategories);
    features->view().selectGuru();
    const QStringList inOrder = features->names();
    QCOMPARE(inOrder.size(), kFeatures + kCategories);
    QCOMPARE(inOrder.at(14), QString("Feature12"));

    features->view().selectSortAtoZ();
    QStringList sorted = features->names();
    QCOMPARE(sorted.size(), kFeatures);
    QCOMPARE(features->shownNames().size(), kFeatures);
    QVERIFY(std::is_sorted(sorted.begin(), sorted.end()));
    features->view().selectSortCategory();
    QCOMPARE(features->names(), inOrder);
}

void FeatureViewLargeTest::readsEverythingOnce()
{
    scripted::clearCalls();
    features->view().updateAllFeatures();
    QCOMPARE(scripted::count("Nd_GetAccessMode"), kFeatures + kCategories);
    QCOMPARE(scripted::count("Nd_GetIntValue"), kFeatures);
    QCOMPARE(scripted::count("Nd_GetIntMax"), kFeatures);
    QCOMPARE(scripted::calls({"Nd_"}).size(), std::size_t{3 * kFeatures + kCategories});
    scripted::clearCalls();
}

void FeatureViewLargeTest::lastRowIsUsable()
{
    const QString last = QString("Feature%1").arg((kFeatures - 1) / 3 * 3);
    features->view().selectSortAtoZ();
    QCoreApplication::processEvents();
    features->table().setCurrentIndex(features->cell(last));
    const QRect shown = features->table().visualRect(features->cell(last));
    QVERIFY(features->table().viewport()->rect().intersects(shown));
    features->view().tableRowClicked(features->cell(last));
    QCOMPARE(features->view().descBox()->getCurrentIndex(), features->item(last)->row());
}

} // namespace

ORVO_TEST_CLASS(FeatureViewLargeTest)
#include "FeatureViewLargeTest.moc"
