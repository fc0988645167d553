// Rows deleted while one of them is read: a handler of the log may show another camera.

#include "features/description/DescBox.h"
#include "features/editors/TableViewItemDelegate.h"
#include "tests/features/FeatureTable.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QPointer>
#include <QStandardItemModel>

#include <memory>

using scripted::category;

namespace {

class VanishingRowsTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void rowsVanishWhileAnEditorOpens();
    void rowsVanishDuringAnUpdate();
    void rowsVanishDuringDataChanged();
};

/// Empties the view when the maximum of a feature, the last read of an item, is logged.
void emptyWhenRead(FeatureView& view)
{
    view.setOpeLogLevel(OpeLogRange);
    QObject::connect(&view, &FeatureView::OpeLogAppended, &view, [&view](const QString& entry) {
        if (entry.contains("Nd_GetIntMax"))
            view.showModel(new QStandardItemModel(0, 3));
    });
}

void VanishingRowsTest::rowsVanishWhileAnEditorOpens()
{
    FeatureTable features({category("Root", {"A"}), feature("A")});
    features.view().selectSortAtoZ();
    const QPointer<GenAPINodeItem> item = features.item("A");
    const auto* const delegate = features.view().findChild<TableViewItemDelegate*>();
    emptyWhenRead(features.view());
    const std::unique_ptr<QWidget> editor(delegate->createEditor(nullptr, {}, features.cell("A", 2)));
    QVERIFY(item.isNull());
    QVERIFY(editor == nullptr);
    QCOMPARE(features.view().descBox()->getCurrentIndex(), -1);
}

void VanishingRowsTest::rowsVanishDuringAnUpdate()
{
    FeatureTable features({category("Root", {"A", "B"}), feature("A"), feature("B")});
    const QPointer<GenAPINodeItem> item = features.item("A");
    emptyWhenRead(features.view());
    scripted::clearCalls();
    features.view().updateAllFeatures();
    QVERIFY(item.isNull());
    QCOMPARE(scripted::count("Nd_GetIntMax"), 1);
    QCOMPARE(features.rowsModel().rowCount(), 0);
}

void VanishingRowsTest::rowsVanishDuringDataChanged()
{
    FeatureTable features({category("Root", {"A", "B", "C"}), feature("A"), feature("B"), feature("C")});
    for (const char* name : {"A", "C"}) // two ranges of changed rows around an unchanged one
        scripted::changeNode(name, [](scripted::NodeSpec& spec) { spec.intValue = 77; });
    int heard = 0;
    connect(&features.rowsModel(), &QAbstractItemModel::dataChanged, this, [&] {
        ++heard;
        features.view().showModel(new QStandardItemModel(0, 3));
    });
    features.view().updateAllFeatures();
    QCOMPARE(heard, 1);
    QCOMPARE(features.rowsModel().rowCount(), 0);
}

} // namespace

ORVO_TEST_CLASS(VanishingRowsTest)
#include "VanishingRowsTest.moc"
