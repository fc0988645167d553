// When an item attaches an editor, and of which kind.

#include "features/editors/TableViewItemDelegate.h"
#include "tests/features/EditorBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>

using scripted::NodeSpec;

namespace {

class AttachedEditorTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void everyEditorIsAttached_data();
    void everyEditorIsAttached();
    void comboBoxIsAttachedWhenLoaded();
};

void AttachedEditorTest::everyEditorIsAttached_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("written");
    QTest::newRow("line edit") << int{EditorLineEdit} << QStringList{"Number = 42"};
    QTest::newRow("combo box") << int{EditorComboBox} << QStringList();
    QTest::newRow("slider") << int{EditorSlider} << QStringList();
    QTest::newRow("button") << int{EditorButton} << QStringList();
    QTest::newRow("spin box") << int{EditorSpinBox} << QStringList();
}

void AttachedEditorTest::everyEditorIsAttached()
{
    QFETCH(const int, kind);
    EditorBench bench({features::integer("Number", 37, 0, 100)});
    GenAPINodeItem* item = bench.item("Number");
    item->setData(kind, EditorKindRole);
    QLineEdit before; // replaced when the delegate's editor is attached
    before.setText("7");
    item->setEditor(&before);

    const auto* delegate = bench.view().findChild<TableViewItemDelegate*>();
    const std::unique_ptr<QWidget> editor(delegate->createEditor(nullptr, {}, bench.valueCell("Number")));
    delegate->setEditorData(editor.get(), bench.valueCell("Number"));
    if (auto* lineEdit = qobject_cast<QLineEdit*>(editor.get()))
        lineEdit->setText("42");
    item->lineEdit_EditingFinished();
    QTEST(bench.written(), "written");
}

// The entry that was current when the editor opened is no longer current, so choosing it writes it.
void AttachedEditorTest::comboBoxIsAttachedWhenLoaded()
{
    EditorBench bench({features::enumeration("Choice", 1, {"One", "Two", "Three"})});
    auto* comboBox = bench.openAs<QComboBox>("Choice");
    scripted::changeNode("Choice", [](NodeSpec& node) { node.intValue = 2; });
    bench.view().updateAllFeatures();
    QCOMPARE(comboBox->currentText(), QString("Three"));
    comboBox->setCurrentText("Two");
    QCOMPARE(bench.written(), QStringList{"Choice = Two"});
}

} // namespace

ORVO_TEST_CLASS(AttachedEditorTest)
#include "AttachedEditorTest.moc"
