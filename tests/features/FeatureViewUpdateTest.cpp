// Updating all features: when values are read, how often, and what is shown afterwards.

#include "features/description/DescBox.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QLabel>
#include <QToolBar>

using scripted::category;
using scripted::NodeSpec;

namespace {

std::vector<NodeSpec> threeRows()
{
    return {category("Root", {"C"}), category("C", {"A", "B"}), feature("A"), feature("B")};
}

/// Counts the paint events of a widget.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }
    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
};

/// Updates all features within the first paint event of a widget, as an editor does that the table hides while it lays
/// itself out for a paint event.
class UpdateWhilePainting : public QObject {
public:
    UpdateWhilePainting(FeatureTable& features, QWidget& painted)
        : m_view(features.view())
        , m_painted(painted)
    {
        painted.installEventFilter(this);
        features.table().viewport()->installEventFilter(this);
    }
    int updates = 0;
    int nestedPaints = 0; ///< of the table's viewport
    int laterPaints = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Paint)
            return QObject::eventFilter(watched, event);
        if (m_updating) {
            ++nestedPaints;
        } else if (updates > 0) {
            ++laterPaints;
        }
        if (watched == &m_painted && updates == 0) {
            ++updates;
            m_updating = true;
            m_view.updateAllFeatures();
            m_updating = false;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    FeatureView& m_view;
    QWidget& m_painted;
    bool m_updating = false;
};

class FeatureViewUpdateTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void readsEveryNodeOnce();
    void readsTheMaximumOnly();
    void withoutAWriteNothingIsRead();
    void afterAWriteEverythingIsReadOnce();
    void aForcedUpdateCoversAnEarlierWrite();
    void aWriteDuringAnUpdateIsCoveredByIt();
    void updatesAreForcedByDefault();
    void theRefreshActionForcesAnUpdate();

    void showsTheNewValues();
    void showsTheNewColours();
    void failedAccessModeKeepsTheColour();
    void emitsDataChangedOncePerChange();
    void emitsNoDataChangedWithoutAChange();
    void repaintsImmediately();
    void anUpdateWhilePaintingRepaintsAfterwards_data();
    void anUpdateWhilePaintingRepaintsAfterwards();
    void withoutAnUpdateNothingIsRepainted();

    void aNestedCallAddsOnePass();
    void aNestedCallInTheSecondPassAddsAThird();
    void aNestedCallReturnsImmediately();
    void itemsAddedWhileReadingAreReadToo();

    void describesTheCurrentRowAgain();
    void aCurrentRowInAnyColumnIsDescribed();
    void withoutACurrentRowTheDescriptionStays();
    void anUnpluggedCameraIsReadSafely();
};

void FeatureViewUpdateTest::readsEveryNodeOnce()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    features.view().updateAllFeatures(true);
    QStringList read;
    for (const scripted::Call& call : scripted::calls({"Nd_GetAccessMode"}))
        read << QString::fromStdString(call.arguments.at(1));
    QCOMPARE(read, QStringList({"1000002", "1000003", "1000004"}));
    QCOMPARE(scripted::count("Nd_GetIntValue"), 2);
}

void FeatureViewUpdateTest::readsTheMaximumOnly()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    features.view().updateAllFeatures(true);
    QCOMPARE(scripted::count("Nd_GetIntMax"), 2);
    QCOMPARE(scripted::count("Nd_GetIntMin"), 0);
    QCOMPARE(scripted::count("Nd_GetIntInc"), 0);
    QCOMPARE(scripted::calls({"Nd_"}).size(), std::size_t{3 + 2 + 2});
}

void FeatureViewUpdateTest::withoutAWriteNothingIsRead()
{
    FeatureTable features(threeRows());
    features.table().setCurrentIndex(features.cell("A"));
    scripted::clearCalls();
    features.view().updateAllFeatures(false);
    QVERIFY(scripted::calls().empty());
}

void FeatureViewUpdateTest::afterAWriteEverythingIsReadOnce()
{
    FeatureTable features(threeRows());
    QCOMPARE(features.item("A")->setNodeValue(5L), 0);
    scripted::clearCalls();
    features.view().updateAllFeatures(false);
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 3);
    features.view().updateAllFeatures(false);
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 3);
    features.view().setValuesWritten();
    features.view().updateAllFeatures(false);
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 6);
}

void FeatureViewUpdateTest::aForcedUpdateCoversAnEarlierWrite()
{
    FeatureTable features(threeRows());
    features.view().setValuesWritten();
    features.view().updateAllFeatures(true);
    scripted::clearCalls();
    features.view().updateAllFeatures(false);
    QVERIFY(scripted::calls().empty());
}

void FeatureViewUpdateTest::aWriteDuringAnUpdateIsCoveredByIt()
{
    FeatureTable features(threeRows());
    scripted::onCall("Nd_GetAccessMode", [&] { features.view().setValuesWritten(); });
    features.view().updateAllFeatures(true);
    scripted::clearCalls();
    features.view().updateAllFeatures(false);
    QVERIFY(scripted::calls().empty());
}

void FeatureViewUpdateTest::updatesAreForcedByDefault()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    features.view().updateAllFeatures();
    features.view().updateAllFeatures();
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 6);
}

void FeatureViewUpdateTest::theRefreshActionForcesAnUpdate()
{
    FeatureTable features(threeRows());
    QAction* const refresh = features.view().findChild<QToolBar*>()->actions().at(1);
    QCOMPARE(refresh->text(), QString("&refreshItems"));
    scripted::clearCalls();
    refresh->trigger(); // its signal says "not checked"
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 3);
}

void FeatureViewUpdateTest::showsTheNewValues()
{
    FeatureTable features(threeRows());
    QCOMPARE(features.cell("A", 2).data().toString(), QString("0"));
    scripted::changeNode("A", [](NodeSpec& node) { node.intValue = 77; });
    QCOMPARE(features.cell("A", 2).data().toString(), QString("0"));
    features.view().updateAllFeatures();
    QCOMPARE(features.cell("A", 2).data().toString(), QString("77"));
}

void FeatureViewUpdateTest::showsTheNewColours()
{
    FeatureTable features(threeRows());
    scripted::changeNode("A", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_NA; });
    features.view().updateAllFeatures();
    for (int column = 0; column < 3; ++column)
        QCOMPARE(features.cell("A", column).data(Qt::BackgroundRole).value<QColor>(), QColor(192, 192, 192));
    QCOMPARE(features.cell("B", 0).data(Qt::BackgroundRole).value<QColor>(), QColor(255, 255, 255));
    QCOMPARE(features.cell("A", 2).data().toString(), QString("== Not Available =="));
}

void FeatureViewUpdateTest::failedAccessModeKeepsTheColour()
{
    FeatureTable features(threeRows());
    scripted::changeNode("A", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_NA; });
    scripted::failNode("A", "Nd_GetAccessMode", Orvo::CAM_API_STS_BUSY);
    features.view().updateAllFeatures();
    QCOMPARE(features.cell("A").data(Qt::BackgroundRole).value<QColor>(), QColor(255, 255, 255));

    // The row is still coloured by the access mode that was read last.
    for (const int column : {0, 1, 2})
        features.view().sourceModel()->item(1, column)->setForeground(QColor(1, 2, 3));
    features.view().updateAllFeatures();
    for (const int column : {0, 1, 2})
        QCOMPARE(features.cell("A", column).data(Qt::ForegroundRole).value<QColor>(), QColor(0, 0, 0));
}

void FeatureViewUpdateTest::emitsDataChangedOncePerChange()
{
    FeatureTable features(threeRows());
    const QSignalSpy changed(&features.rowsModel(), &QAbstractItemModel::dataChanged);
    scripted::changeNode("A", [](NodeSpec& node) { node.intValue = 77; });
    features.view().updateAllFeatures();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<QModelIndex>(), features.cell("A", 2));

    scripted::changeNode("B", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_RO; });
    features.view().updateAllFeatures();
    QCOMPARE(changed.count(), 2); // one signal for the three cells of the row
    QCOMPARE(changed.at(1).at(0).value<QModelIndex>(), features.cell("B", 0));
    QCOMPARE(changed.at(1).at(1).value<QModelIndex>(), features.cell("B", 2));
}

void FeatureViewUpdateTest::emitsNoDataChangedWithoutAChange()
{
    FeatureTable features;
    features.view().updateAllFeatures();
    const QSignalSpy changed(&features.rowsModel(), &QAbstractItemModel::dataChanged);
    features.view().updateAllFeatures();
    QCOMPARE(changed.count(), 0);
}

void FeatureViewUpdateTest::repaintsImmediately()
{
    FeatureTable features(threeRows());
    features.show();
    QCoreApplication::processEvents();
    const PaintCounter paints(features.table().viewport());
    features.view().updateAllFeatures();
    QCOMPARE(paints.count, 1);
}

void FeatureViewUpdateTest::anUpdateWhilePaintingRepaintsAfterwards_data()
{
    QTest::addColumn<QString>("painted");
    for (const char* const painted : {"viewport", "table", "browser"})
        QTest::newRow(painted) << painted;
}

void FeatureViewUpdateTest::anUpdateWhilePaintingRepaintsAfterwards()
{
    QFETCH(QString, painted);
    FeatureTable features(threeRows());
    features.show();
    QCoreApplication::processEvents();
    QWidget* const widget = painted == "viewport" ? features.table().viewport()
                            : painted == "table"  ? static_cast<QWidget*>(&features.table())
                                                  : &features.view();
    const UpdateWhilePainting paints(features, *widget);
    widget->repaint();
    QCOMPARE(paints.updates, 1);
    QCOMPARE(paints.nestedPaints, 0);
    QTRY_VERIFY(paints.laterPaints > 0);
}

void FeatureViewUpdateTest::withoutAnUpdateNothingIsRepainted()
{
    FeatureTable features(threeRows());
    features.show();
    QCoreApplication::processEvents();
    const PaintCounter paints(features.table().viewport());
    features.view().updateAllFeatures(false);
    QCOMPARE(paints.count, 0);
}

void FeatureViewUpdateTest::aNestedCallAddsOnePass()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    int calls = 0;
    scripted::onCall("Nd_GetAccessMode", [&] {
        ++calls;
        if (calls == 1 || calls == 2) // two nested calls in one pass add only one pass
            features.view().updateAllFeatures();
    });
    features.view().updateAllFeatures();
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 6);
    features.view().updateAllFeatures();
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 9);
}

void FeatureViewUpdateTest::aNestedCallInTheSecondPassAddsAThird()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    int calls = 0;
    scripted::onCall("Nd_GetAccessMode", [&] {
        ++calls;
        if (calls == 3 || calls == 6) // while the last row is read
            features.view().updateAllFeatures(false);
    });
    features.view().updateAllFeatures();
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 9);
}

void FeatureViewUpdateTest::aNestedCallReturnsImmediately()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    QVector<int> readsInside;
    scripted::onCall("Nd_GetAccessMode", [&] {
        if (readsInside.isEmpty()) {
            features.view().updateAllFeatures();
            readsInside << scripted::count("Nd_GetAccessMode");
        }
    });
    features.view().updateAllFeatures();
    QCOMPARE(readsInside, QVector<int>{1});
}

void FeatureViewUpdateTest::itemsAddedWhileReadingAreReadToo()
{
    FeatureTable features(threeRows());
    scripted::clearCalls();
    int calls = 0;
    scripted::onCall("Nd_GetIntMax", [&] {
        if (++calls == 1)
            features.view().registerItemsToList(1000003);
    });
    features.view().updateAllFeatures();
    QCOMPARE(scripted::count("Nd_GetIntMax"), 3);
}

void FeatureViewUpdateTest::describesTheCurrentRowAgain()
{
    FeatureTable features(threeRows());
    features.table().setCurrentIndex(features.cell("B"));
    QCOMPARE(features.view().descBox()->getCurrentIndex(), -1);
    scripted::changeNode("B", [](NodeSpec& node) {
        node.access = Orvo::NODE_ACCESS_MODE_RO;
        node.intMax = 123;
        node.intMin = -5;
    });
    features.view().updateAllFeatures();
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 2);
    QCOMPARE(features.view().descBox()->findChildren<QLabel*>().first()->text(),
             QString("Description: B (Integer node, read-only)"));
    QCOMPARE(features.view().descBox()->toolTip(), QString("Max = 123, Min = -5, Inc = 1"));
}

void FeatureViewUpdateTest::aCurrentRowInAnyColumnIsDescribed()
{
    FeatureTable features(threeRows());
    features.view().selectSortAtoZ();
    for (int column = 0; column < 3; ++column) {
        features.table().setCurrentIndex(features.cell("B", column));
        features.view().updateAllFeatures();
        QCOMPARE(features.view().descBox()->getCurrentIndex(), 2);
        features.view().descBox()->clear();
    }
}

void FeatureViewUpdateTest::withoutACurrentRowTheDescriptionStays()
{
    FeatureTable features(threeRows());
    features.view().descBox()->setText(features.item("A"));
    scripted::clearCalls();
    features.view().updateAllFeatures();
    QCOMPARE(features.view().descBox()->getCurrentIndex(), 1);
    QCOMPARE(scripted::count("Nd_GetIntMin"), 0); // the description did not read the range
}

void FeatureViewUpdateTest::anUnpluggedCameraIsReadSafely()
{
    FeatureTable features;
    features.show();
    features.table().setCurrentIndex(features.cell("Width", 2));
    scripted::unplug();
    features.view().updateAllFeatures();
    QCOMPARE(features.cell("Width", 2).data().toString(), QString("64"));
    features.view().selectGuru();
    features.view().tableRowClicked(features.cell("DeviceReset"));
    features.view().closeEditOperation();
}

} // namespace

ORVO_TEST_CLASS(FeatureViewUpdateTest)
#include "FeatureViewUpdateTest.moc"
