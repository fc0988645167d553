// The colours of the rows by access mode.

#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

using scripted::category;
using scripted::NodeSpec;

namespace {

class FeatureViewColoursTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void coloursByAccessMode_data();
    void coloursByAccessMode();
    void aNodeWhoseAccessModeWasNotReadIsReadWrite();
    void rowsWithoutItemStayAsTheyAre();
    void cellsWithoutItemAreColoured();
    void everyWrongColourIsCorrected_data();
    void everyWrongColourIsCorrected();
    void rightColoursAreLeftAlone();
    void aModelOfTheCallerIsColoured();
    void anItemThatReadsItsAccessModeColoursItsRow();
};

void FeatureViewColoursTest::coloursByAccessMode_data()
{
    QTest::addColumn<int>("access");
    QTest::addColumn<bool>("isCategory");
    QTest::addColumn<QColor>("background");
    QTest::addColumn<QColor>("foreground");

    const QColor white(255, 255, 255);
    const QColor black(0, 0, 0);
    for (const bool isCategory : {false, true}) {
        const auto add = [&](const char* name, int access, const QColor& background, const QColor& foreground) {
            QTest::addRow("%s%s", name, isCategory ? " category" : "")
                << access << isCategory << background << foreground;
        };
        add("not implemented", 0, QColor(128, 128, 128), QColor(208, 208, 208));
        add("not available", 1, QColor(192, 192, 192), QColor(64, 64, 64));
        add("write-only", 2, white, QColor(0, 160, 0));
        if (isCategory) {
            add("read-only", 3, QColor(212, 255, 255), QColor(64, 64, 255));
        } else {
            add("read-only", 3, white, QColor(128, 64, 0));
        }
        add("read-write", 4, white, black);
        add("5", 5, white, black);
        add("not read yet", 6, white, black);
        add("negative", -1, white, black);
        add("unknown", 7, white, black);
    }
}

void FeatureViewColoursTest::coloursByAccessMode()
{
    QFETCH(int, access);
    QFETCH(bool, isCategory);
    NodeSpec node = feature("A");
    if (isCategory)
        node.type = Orvo::NODE_TYPE_CATEGORY;
    node.access = static_cast<Orvo::NodeAccessMode>(access);
    FeatureTable features({category("Root", {"A"}), node});
    for (int column = 0; column < 3; ++column) {
        const QModelIndex index = features.view().sourceModel()->index(0, column);
        QTEST(index.data(Qt::BackgroundRole).value<QColor>(), "background");
        QTEST(index.data(Qt::ForegroundRole).value<QColor>(), "foreground");
        QCOMPARE(index.data(Qt::BackgroundRole).value<QColor>().alpha(), 255);
        QCOMPARE(index.data(Qt::ForegroundRole).value<QColor>().alpha(), 255);
    }
}

void FeatureViewColoursTest::aNodeWhoseAccessModeWasNotReadIsReadWrite()
{
    scripted::failNode("A", "Nd_GetAccessMode", Orvo::CAM_API_STS_BUSY);
    FeatureTable features({category("Root", {"A"}), feature("A", {}, Orvo::NODE_ACCESS_MODE_NA)});
    const QModelIndex index = features.view().sourceModel()->index(0, 0);
    QCOMPARE(index.data(Qt::BackgroundRole).value<QColor>(), QColor(255, 255, 255));
    QCOMPARE(index.data(Qt::ForegroundRole).value<QColor>(), QColor(0, 0, 0));
}

void FeatureViewColoursTest::rowsWithoutItemStayAsTheyAre()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    features.view().setCellColor(-1);
    features.view().setCellColor(1);
    features.view().setCellColor(nullptr, 0);
    QStandardItemModel narrow(1, 1);
    features.view().setCellColor(&narrow, 0);
    QCOMPARE(narrow.index(0, 0).data(Qt::BackgroundRole).value<QColor>(), QColor(255, 255, 255));
    QStandardItemModel empty(0, 3);
    features.view().setCellColor(&empty, 0);
    QCOMPARE(empty.rowCount(), 0);
}

void FeatureViewColoursTest::cellsWithoutItemAreColoured()
{
    FeatureTable features({category("Root", {"A"}), feature("A", {}, Orvo::NODE_ACCESS_MODE_NI)});
    QStandardItemModel bare(1, 3);
    features.view().setCellColor(&bare, 0);
    for (int column = 0; column < 3; ++column) {
        QCOMPARE(bare.index(0, column).data(Qt::BackgroundRole).value<QColor>(), QColor(128, 128, 128));
        QCOMPARE(bare.index(0, column).data(Qt::ForegroundRole).value<QColor>(), QColor(208, 208, 208));
    }
}

void FeatureViewColoursTest::everyWrongColourIsCorrected_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("role");
    for (int column = 0; column < 3; ++column) {
        QTest::addRow("background %d", column) << column << int{Qt::BackgroundRole};
        QTest::addRow("foreground %d", column) << column << int{Qt::ForegroundRole};
    }
}

void FeatureViewColoursTest::everyWrongColourIsCorrected()
{
    QFETCH(int, column);
    QFETCH(int, role);
    FeatureTable features({category("Root", {"A"}), feature("A")});
    QStandardItem* const cell = features.view().sourceModel()->item(0, column);
    const auto right = cell->data(role).value<QColor>();
    cell->setData(QColor(Qt::magenta), role);
    const QSignalSpy told(features.view().sourceModel(), &QStandardItemModel::dataChanged);
    features.view().setCellColor(0);
    QCOMPARE(cell->data(role).value<QColor>(), right);
    QCOMPARE(told.count(), 1);
}

void FeatureViewColoursTest::rightColoursAreLeftAlone()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    const QSignalSpy told(features.view().sourceModel(), &QStandardItemModel::dataChanged);
    features.view().setCellColor(0);
    QCOMPARE(told.count(), 0);
}

void FeatureViewColoursTest::aModelOfTheCallerIsColoured()
{
    FeatureTable features({category("Root", {"A"}), feature("A", {}, Orvo::NODE_ACCESS_MODE_NI)});
    QStandardItemModel other(1, 3);
    for (int column = 0; column < 3; ++column)
        other.setItem(0, column, new QStandardItem);
    features.view().setCellColor(&other, 0);
    for (int column = 0; column < 3; ++column)
        QCOMPARE(other.item(0, column)->data(Qt::BackgroundRole).value<QColor>(), QColor(128, 128, 128));
}

void FeatureViewColoursTest::anItemThatReadsItsAccessModeColoursItsRow()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    scripted::changeNode("A", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_WO; });
    features.item("A")->updateAccessMode(nullptr);
    for (int column = 0; column < 3; ++column)
        QCOMPARE(features.cell("A", column).data(Qt::ForegroundRole).value<QColor>(), QColor(0, 160, 0));
}

} // namespace

ORVO_TEST_CLASS(FeatureViewColoursTest)
#include "FeatureViewColoursTest.moc"
