// The feature view gets a camera, and then another one.

#include "features/description/DescBox.h"
#include "features/view/FeatureView.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QLabel>
#include <QPointer>

using scripted::category;

namespace {

constexpr int kNodeNotFound = 1; // what SetCam returns without a node map

class FeatureViewCameraTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void noRootNode();
    void rootIsANullHandle();
    void aFailingRootKeepsTheOldRows();
    void rootWithoutFeatures();
    void rootThatCannotCountHasNoRows();

    void theLogOpensWithThePreamble_data();
    void theLogOpensWithThePreamble();
    void theLogIsSilentAtLevel0();

    void aSecondCameraReplacesTheRows();
    void aSecondCameraKeepsTheLevelAndReturnsToCategoryOrder();
    void aSecondCameraClearsTheDescriptionOfTheFirst();
    void aFreshDescriptionSurvivesTheFirstCamera();
};

void FeatureViewCameraTest::noRootNode()
{
    scripted::setNodes({feature("A")});
    FeatureView view;
    QCOMPARE(view.SetCam(openScriptedCamera()), kNodeNotFound);
    QCOMPARE(scripted::count("Nd_GetNode"), 1);
    QCOMPARE(view.sourceModel()->rowCount(), 0);
}

void FeatureViewCameraTest::rootIsANullHandle()
{
    FeatureView view;
    const Orvo::CAM_HANDLE camera = openScriptedCamera();
    scripted::failCall("Nd_GetNode", Orvo::CAM_API_STS_SUCCESS);
    QCOMPARE(view.SetCam(camera), kNodeNotFound);
    QCOMPARE(scripted::count("Nd_GetNumOfFeatures"), 0);
    QCOMPARE(view.SetCam(camera), 0);
}

void FeatureViewCameraTest::aFailingRootKeepsTheOldRows()
{
    FeatureTable features({category("Root", {"C"}), category("C", {"A"}), feature("A")});
    features.view().tableRowClicked(features.cell("A"));
    const QStandardItemModel* const before = features.view().sourceModel();
    scripted::failCall("Nd_GetNode", Orvo::CAM_API_STS_NOT_FOUND);
    QCOMPARE(features.view().SetCam(features.camera()), kNodeNotFound);
    QCOMPARE(features.view().sourceModel(), before);
    QCOMPARE(features.names(), QStringList({"C", "A"}));
    QVERIFY(features.view().items().isEmpty());
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 1);
    QCOMPARE(features.view().descBox()->findChildren<QLabel*>().first()->text(),
             QString("Description: A (Integer node)"));

    // The rows are no longer updated, but they are safe to use.
    scripted::clearCalls();
    features.view().updateAllFeatures();
    QVERIFY(scripted::calls({"Nd_"}).empty());
    features.view().setCellColor(1);
    features.view().tableRowClicked(features.cell("A"));
    features.view().changeCollapsedState(features.cell("C"));
    QCOMPARE(features.shownNames(), QStringList({"C", "A"}));
}

void FeatureViewCameraTest::rootWithoutFeatures()
{
    FeatureTable features({category("Root", {})});
    QCOMPARE(features.view().SetCam(features.camera()), 0);
    QCOMPARE(features.view().sourceModel()->rowCount(), 0);
    QCOMPARE(headerTexts(*features.view().sourceModel()), QStringList({"Name", "Type", "Value"}));
}

void FeatureViewCameraTest::rootThatCannotCountHasNoRows()
{
    FeatureTable features;
    scripted::failCall("Nd_GetNumOfFeatures", Orvo::CAM_API_STS_GENICAM_ERR);
    QCOMPARE(features.view().SetCam(features.camera()), 0);
    QCOMPARE(features.view().sourceModel()->rowCount(), 0);
}

void FeatureViewCameraTest::theLogOpensWithThePreamble_data()
{
    QTest::addColumn<int>("level");
    for (const int level : {1, 2, 3})
        QTest::addRow("level %d", level) << level;
}

void FeatureViewCameraTest::theLogOpensWithThePreamble()
{
    QFETCH(int, level);
    FeatureView view;
    view.setOpeLogLevel(level);
    const Orvo::CAM_HANDLE camera = openScriptedCamera();
    QStringList entries;
    int nodeCallsBefore = -1;
    connect(&view, &FeatureView::OpeLogAppended, this, [&](QString& text) {
        if (entries.isEmpty())
            nodeCallsBefore = static_cast<int>(scripted::calls({"Nd_"}).size());
        entries << text;
    });
    view.SetCam(camera);
    QCOMPARE(entries.mid(0, 1), QStringList({"Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;\n"
                                             "Orvo::CAM_HANDLE hCam = NULL;\n"
                                             "status = Orvo::Cam_Open( camIndex, &hCam, .... );\n"
                                             "Orvo::CAM_NODE_HANDLE hNode = NULL;\n"}));
    QCOMPARE(nodeCallsBefore, 0);
    QCOMPARE(entries.filter("Cam_Open").size(), 1);
}

void FeatureViewCameraTest::theLogIsSilentAtLevel0()
{
    FeatureView view;
    view.setOpeLogLevel(0);
    int entries = 0;
    connect(&view, &FeatureView::OpeLogAppended, this, [&] { ++entries; });
    view.SetCam(openScriptedCamera());
    QCOMPARE(entries, 0);
}

void FeatureViewCameraTest::aSecondCameraReplacesTheRows()
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

void FeatureViewCameraTest::aSecondCameraKeepsTheLevelAndReturnsToCategoryOrder()
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

void FeatureViewCameraTest::aSecondCameraClearsTheDescriptionOfTheFirst()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    features.view().tableRowClicked(features.cell("A"));
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 0);
    features.view().SetCam(features.camera());
    QCOMPARE(features.view().descBox()->getCurrentIndex(), -1);
    QCOMPARE(features.view().descBox()->findChildren<QLabel*>().first()->text(), QString("Description: "));
}

void FeatureViewCameraTest::aFreshDescriptionSurvivesTheFirstCamera()
{
    FeatureTable features;
    QCOMPARE(features.view().descBox()->findChildren<QLabel*>().first()->text(), QString("Description:"));
}

} // namespace

ORVO_TEST_CLASS(FeatureViewCameraTest)
#include "FeatureViewCameraTest.moc"
