// Events while an editor is open: the camera is unplugged, the view is deleted, values change.

#include "tests/features/EditorBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QComboBox>
#include <QPushButton>

using scripted::NodeSpec;

namespace {

class OpenEditorTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void valueChangesWhileEdited_data();
    void valueChangesWhileEdited();
    void unpluggedWhileOpen_data();
    void unpluggedWhileOpen();
    void unpluggedWhileDragging();
    void viewIsDeletedWhileOpen_data();
    void viewIsDeletedWhileOpen();
    void otherCameraWhileOpen_data();
    void otherCameraWhileOpen();
    void closeEditOperationCommitsAndReopens_data();
    void closeEditOperationCommitsAndReopens();
    void rowIsFilteredOutWhileOpen_data();
    void rowIsFilteredOutWhileOpen();
    void refreshWhileOpen_data();
    void refreshWhileOpen();
    void typingSurvivesUpdatesOfOtherRows_data();
    void typingSurvivesUpdatesOfOtherRows();

private:
    static std::vector<NodeSpec> oneOfEach();
    /// One data row for each editor: "name" in oneOfEach() and "kind", where 0 keeps the node's own kind.
    static void everyEditor();
    static QWidget* openKind(EditorBench& bench);
};

std::vector<NodeSpec> OpenEditorTest::oneOfEach()
{
    return {features::integer("Number", 37, 0, 100),
            features::enumeration("Choice", 1, {"One", "Two", "Three"}),
            features::command("Reset"),
            features::percent(),
            features::logarithmic(features::real("Time", 100, 1, 1000)),
            features::withAccess(features::integer("Other", 1, 0, 10), Orvo::NODE_ACCESS_MODE_RO)};
}

void OpenEditorTest::everyEditor()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::newRow("line edit") << "Number" << 0;
    QTest::newRow("combo box") << "Choice" << 0;
    QTest::newRow("button") << "Reset" << 0;
    QTest::newRow("spin box") << "Number" << int{EditorSpinBox};
    QTest::newRow("slider") << "Percent" << 0;
    QTest::newRow("logarithmic slider") << "Time" << 0;
}

QWidget* OpenEditorTest::openKind(EditorBench& bench)
{
    const QString name = *static_cast<QString*>(QTest::qData("name", qMetaTypeId<QString>()));
    const int kind = *static_cast<int*>(QTest::qData("kind", qMetaTypeId<int>()));
    if (kind != 0)
        bench.item(name)->setData(kind, EditorKindRole);
    return bench.open(name);
}

bool takesText(QWidget* editor)
{
    return qobject_cast<QLineEdit*>(editor) != nullptr || qobject_cast<LineEditWithSlider*>(editor) != nullptr;
}

/// Changes the value in the editor, or clicks the button.
void use(QWidget* editor)
{
    if (auto* button = qobject_cast<QPushButton*>(editor)) {
        QTest::mouseClick(button, Qt::LeftButton);
    } else if (qobject_cast<QComboBox*>(editor) != nullptr) {
        EditorBench::press(Qt::Key_Down);
    } else {
        EditorBench::type("42");
        EditorBench::press(Qt::Key_Return);
    }
}

void OpenEditorTest::valueChangesWhileEdited_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("line edit") << "Number"
                               << "99";
    QTest::newRow("combo box") << "Choice"
                               << "Three";
    QTest::newRow("slider") << "Percent"
                            << "99";
}

void OpenEditorTest::valueChangesWhileEdited()
{
    QFETCH(const QString, name);
    QFETCH(const QString, shown);
    EditorBench bench(oneOfEach());
    QWidget* editor = bench.open(name);
    scripted::changeNode(name.toStdString(), [](NodeSpec& node) { node.intValue = node.intValue == 1 ? 2 : 99; });
    bench.view().updateAllFeatures();
    QCOMPARE(bench.editor(), editor);
    if (auto* lineEdit = qobject_cast<QLineEdit*>(editor)) {
        QCOMPARE(lineEdit->text(), shown);
    } else if (auto* comboBox = qobject_cast<QComboBox*>(editor)) {
        QCOMPARE(comboBox->currentText(), shown);
    } else {
        QCOMPARE(editor->findChild<QLineEdit*>()->text(), shown);
    }
    QCOMPARE(bench.written(), QStringList());
}

void OpenEditorTest::unpluggedWhileOpen_data()
{
    everyEditor();
}

void OpenEditorTest::unpluggedWhileOpen()
{
    QFETCH(const QString, name);
    EditorBench bench(oneOfEach());
    QWidget* editor = openKind(bench);
    const QString before = bench.shown(name);
    scripted::unplug();
    use(editor);
    bench.click("Other");
    bench.click(name);
    bench.view().closeEditOperation();
    bench.view().updateAllFeatures();
    for (const scripted::Call& call : scripted::calls())
        QCOMPARE(call.result, 19U);
    QCOMPARE(bench.shown(name), before);
}

void OpenEditorTest::unpluggedWhileDragging()
{
    EditorBench bench(features::beside(features::percent()));
    auto* editor = bench.openAs<LineEditWithSlider>("Percent");
    SliderDrag drag(sliderOf(editor));
    drag.to(0.75);
    QTRY_VERIFY(scripted::node("Percent").intValue > 50);
    const std::int64_t last = scripted::node("Percent").intValue;
    scripted::unplug();
    scripted::clearCalls();
    drag.to(0.9);
    QTRY_VERIFY(!bench.written().isEmpty());
    drag.to(0.2);
    drag.release();
    bench.click("Other");
    QCOMPARE(scripted::node("Percent").intValue, last);
    QCOMPARE(bench.shown("Percent"), QString::number(last));
}

void OpenEditorTest::viewIsDeletedWhileOpen_data()
{
    everyEditor();
}

void OpenEditorTest::viewIsDeletedWhileOpen()
{
    EditorBench bench(oneOfEach());
    const QPointer<QWidget> editor = openKind(bench);
    bench.features().destroyView();
    QVERIFY(editor.isNull());
    QVERIFY(scripted::calls({"Nd_Set", "Nd_CmdExecute"}).empty());
}

void OpenEditorTest::otherCameraWhileOpen_data()
{
    everyEditor();
}

void OpenEditorTest::otherCameraWhileOpen()
{
    EditorBench bench(oneOfEach());
    QVERIFY(openKind(bench) != nullptr);
    bench.view().SetCam(bench.features().camera());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(bench.editor() == nullptr);
    QVERIFY(scripted::calls({"Nd_Set", "Nd_CmdExecute"}).empty());
    bench.view().changeCollapsedState(bench.features().cell("Features"));
    QVERIFY(openKind(bench) != nullptr);
}

void OpenEditorTest::closeEditOperationCommitsAndReopens_data()
{
    everyEditor();
}

void OpenEditorTest::closeEditOperationCommitsAndReopens()
{
    QFETCH(const QString, name);
    EditorBench bench(oneOfEach());
    const QPointer<QWidget> editor = openKind(bench);
    const bool hasText = takesText(editor);
    if (hasText)
        EditorBench::type("42");
    bench.view().closeEditOperation();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(editor.isNull());
    QCOMPARE(bench.written(), hasText ? QStringList{name + " = 42"} : QStringList());
    QCOMPARE(bench.table().currentIndex(), bench.valueCell(name));
    QVERIFY(bench.editor() != nullptr);
}

void OpenEditorTest::rowIsFilteredOutWhileOpen_data()
{
    everyEditor();
}

void OpenEditorTest::rowIsFilteredOutWhileOpen()
{
    QFETCH(const QString, name);
    std::vector<NodeSpec> nodes = oneOfEach();
    for (NodeSpec& node : nodes)
        node.visibility = node.name == "Other" ? Orvo::NODE_VISIBILITY_BEGINNER : Orvo::NODE_VISIBILITY_GURU;
    EditorBench bench(nodes);
    bench.view().selectGuru();
    QWidget* editor = openKind(bench);
    QVERIFY(editor != nullptr);
    const bool hasText = takesText(editor);
    if (hasText)
        EditorBench::type("42");
    bench.view().selectBeginner();
    QTRY_VERIFY(bench.editor() == nullptr);
    QCOMPARE(bench.written(), hasText ? QStringList{name + " = 42"} : QStringList());
    bench.view().selectGuru();
    QVERIFY(openKind(bench) != nullptr);
}

void OpenEditorTest::refreshWhileOpen_data()
{
    everyEditor();
}

void OpenEditorTest::refreshWhileOpen()
{
    EditorBench bench(oneOfEach());
    QWidget* editor = openKind(bench);
    bench.view().updateAllFeatures();
    QCOMPARE(bench.editor(), editor);
    QCOMPARE(bench.written(), QStringList());
}

void OpenEditorTest::typingSurvivesUpdatesOfOtherRows_data()
{
    QTest::addColumn<bool>("byName");
    QTest::addColumn<QString>("name");
    QTest::newRow("by category, line edit") << false << "B";
    QTest::newRow("by category, slider") << false << "E";
    QTest::newRow("by name, line edit") << true << "B";
    QTest::newRow("by name, slider") << true << "E";
}

void OpenEditorTest::typingSurvivesUpdatesOfOtherRows()
{
    QFETCH(const bool, byName);
    QFETCH(const QString, name);
    // Sorted by name, each edited row separates two rows that are adjacent by category.
    NodeSpec percent = features::percent();
    percent.name = "E";
    EditorBench bench({features::integer("A", 1, 0, 10), features::integer("C", 1, 0, 10),
                       features::integer("D", 1, 0, 10), features::integer("F", 1, 0, 10),
                       features::integer("B", 1, 0, 100), percent});
    if (byName)
        bench.view().selectSortAtoZ();
    QVERIFY(bench.open(name) != nullptr);
    EditorBench::type("42");
    for (const char* other : {"A", "C", "D", "F"})
        scripted::changeNode(other, [](NodeSpec& node) { node.intValue = 7; });
    bench.view().updateAllFeatures();
    for (const char* other : {"A", "C", "D", "F"})
        QCOMPARE(bench.shown(other), QString("7"));
    auto* const slider = qobject_cast<LineEditWithSlider*>(bench.editor());
    QCOMPARE((slider != nullptr ? lineEditOf(slider) : qobject_cast<QLineEdit*>(bench.editor()))->text(),
             QString("42"));
}

} // namespace

ORVO_TEST_CLASS(OpenEditorTest)
#include "OpenEditorTest.moc"
