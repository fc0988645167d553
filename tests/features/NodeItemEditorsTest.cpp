// The slots of the editors.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QComboBox>
#include <QLineEdit>
#include <QMetaMethod>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;

class NodeItemEditorsTest : public QObject {
    Q_OBJECT

private slots:
    void slotsAreDeclaredInOrder();
    void lineEditWritesItsText();
    void slotsIgnoreEditorsOfAnotherKind();
    void comboWritesItsChoice();
    void comboOfABoolean();
    void comboWithTheSameIndexWritesNothing();
    void comboWhoseWriteFails();
    void comboIsReloadedDuringItsWrite();
    void comboIndexIsStoredForComboEditorsOnly();
    void destroyedEditor();
    void spinBox();
    void spinBoxFails();
    void spinBoxDoesNotWriteAsText();
    void button();
    void buttonFails();
    void sliderSlotsDoNothing();
};

void NodeItemEditorsTest::slotsAreDeclaredInOrder()
{
    const QMetaObject& meta = GenAPINodeItem::staticMetaObject;
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot); // there are no signals
        QCOMPARE(meta.method(i).access(), QMetaMethod::Public);
        names << meta.method(i).methodSignature();
    }
    QCOMPARE(names,
             QStringList({"spinBox_ValueChanged(int)", "lineEdit_EditingFinished()", "button_Clicked()",
                          "combo_CurrentIndexChanged(int)", "slider_EditingFinished()", "slider_sliderMoved()"}));
    GenAPINodeItem item(nullptr);
    QVERIFY(static_cast<QStandardItem*>(&item) != static_cast<void*>(&item)); // QStandardItem is not the first base
    QVERIFY(static_cast<QObject*>(&item) == static_cast<void*>(&item));
}

void NodeItemEditorsTest::lineEditWritesItsText()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    QLineEdit editor(" 7");
    item->setEditor(&editor);
    QCOMPARE(NodeBench::calls(), QStringList());
    item->lineEdit_EditingFinished();
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetIntValue(7, true)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("7")));
    editor.setText("nonsense");
    item->lineEdit_EditingFinished();
    QCOMPARE(NodeBench::calls().size(), 1);
    QCOMPARE(editor.text(), QString("nonsense"));
}

void NodeItemEditorsTest::slotsIgnoreEditorsOfAnotherKind()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems({"7", "8"});
    item->setEditor(&editor);
    item->lineEdit_EditingFinished();
    QLineEdit lineEdit("7");
    item->setEditor(&lineEdit);
    item->combo_CurrentIndexChanged(1);
    item->setEditor(nullptr);
    item->lineEdit_EditingFinished();
    item->combo_CurrentIndexChanged(1);
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemEditorsTest::comboWritesItsChoice()
{
    // The second entry is not listed, so combo box index and entry index differ.
    NodeBench bench({enumNode({RO, NODE_ACCESS_MODE_NA, RO})});
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems(item->getItemsValue());
    item->setEditor(&editor);
    scripted::clearCalls();
    editor.setCurrentIndex(1);
    item->combo_CurrentIndexChanged(0); // the current text of the box decides, not the argument
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetEnumStrValue(\"Third\", true)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("Third")));

    item->combo_CurrentIndexChanged(1); // the same entry again
    QCOMPARE(NodeBench::calls().size(), 1);
    editor.setCurrentIndex(0);
    item->combo_CurrentIndexChanged(0);
    QCOMPARE(NodeBench::calls().last(), QString("Nd_SetEnumStrValue(\"First\", true)"));
}

void NodeItemEditorsTest::comboOfABoolean()
{
    NodeBench bench({nodeOf(NODE_TYPE_BOOLEAN)});
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems(item->getItemsValue());
    item->setEditor(&editor);
    QObject::connect(&editor, QOverload<int>::of(&QComboBox::currentIndexChanged), item.get(),
                     &GenAPINodeItem::combo_CurrentIndexChanged);
    editor.setCurrentIndex(1);
    editor.setCurrentIndex(0);
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_SetBoolValue(true, true)", "Nd_SetBoolValue(false, true)"}));
}

void NodeItemEditorsTest::comboWithTheSameIndexWritesNothing()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems({"First", "Second"});
    editor.setCurrentIndex(1);
    item->setEditor(&editor); // stores the index
    item->combo_CurrentIndexChanged(1);
    item->combo_CurrentIndexChanged(0);
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemEditorsTest::comboWhoseWriteFails()
{
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems({"First", "Second"});
    item->setEditor(&editor);
    scripted::failCall("Nd_SetEnumStrValue", CAM_API_STS_BUSY);
    editor.setCurrentIndex(1);
    item->combo_CurrentIndexChanged(1);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("First")));
    item->combo_CurrentIndexChanged(1); // the index was stored despite the failure
    QCOMPARE(NodeBench::calls().size(), 1);
}

void NodeItemEditorsTest::comboIsReloadedDuringItsWrite()
{
    // The write changes the cell, which reloads the editor: the box is cleared during the write.
    NodeBench bench({enumNode({RO, RO})});
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems({"First", "Second"});
    item->setEditor(&editor);
    scripted::onCall("Nd_SetEnumStrValue", [&] {
        editor.clear();
        editor.addItems({"First", "Second"});
        item->setEditor(&editor);
    });
    editor.setCurrentIndex(1);
    item->combo_CurrentIndexChanged(1);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetEnumStrValue(\"Second\", true)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("Second")));
}

void NodeItemEditorsTest::comboIndexIsStoredForComboEditorsOnly()
{
    NodeBench bench({stringNode("Second")}); // a string node has a line edit
    const auto item = bench.item();
    QComboBox editor;
    editor.addItems({"First", "Second"});
    editor.setCurrentIndex(1);
    item->setEditor(&editor);
    item->combo_CurrentIndexChanged(1);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetStrValue(\"Second\", true)"});
}

void NodeItemEditorsTest::destroyedEditor()
{
    NodeBench bench({integerNode(5), enumNode({RO}, "Enumeration")});
    const auto integer = bench.item("Node");
    const auto enumeration = bench.item("Enumeration");
    {
        QLineEdit lineEdit("7");
        integer->setEditor(&lineEdit);
        QComboBox combo;
        enumeration->setEditor(&combo);
    }
    integer->lineEdit_EditingFinished();
    enumeration->combo_CurrentIndexChanged(3);
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemEditorsTest::spinBox()
{
    scripted::NodeSpec spec = with(NODE_REPRESENTATION_HEX_NUMBER, integerNode(5));
    spec.unit = "px";
    NodeBench bench({spec});
    const auto item = bench.item();
    item->spinBox_ValueChanged(77);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetIntValue(77, true)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("77 px"))); // decimal regardless of the representation
    QCOMPARE(item->getNodeValue(false, false), QString("77"));
    QCOMPARE(item->getValInt(false), 5L);
    item->spinBox_ValueChanged(-1);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("-1 px")));
}

void NodeItemEditorsTest::spinBoxFails()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    scripted::failCall("Nd_SetIntValue", CAM_API_STS_BUSY);
    item->spinBox_ValueChanged(77);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5")));
    QCOMPARE(item->getNodeValue(false, false), QString("5"));
    QCOMPARE(scripted::count("Nd_GetIntValue"), 0);
}

void NodeItemEditorsTest::spinBoxDoesNotWriteAsText()
{
    // It lets the camera decide instead of the cached access mode, and never checks the trigger.
    NodeBench bench({with(NODE_ACCESS_MODE_RO, integerNode(5, "TriggerMode"))});
    const auto item = bench.item();
    item->spinBox_ValueChanged(7);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetIntValue(7, true)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5")));
    QCOMPARE(bench.triggerChecks, 0);
}

void NodeItemEditorsTest::button()
{
    NodeBench bench({nodeOf(NODE_TYPE_COMMAND)});
    const auto item = bench.item();
    item->button_Clicked();
    item->button_Clicked();
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_CmdExecute(true)", "Nd_CmdExecute(true)"}));
    QCOMPARE(scripted::node("Node").executed, 2);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Command node ==")));
}

void NodeItemEditorsTest::buttonFails()
{
    NodeBench bench({nodeOf(NODE_TYPE_COMMAND)}, OpeLogWrite);
    const auto item = bench.item();
    scripted::failCall("Nd_CmdExecute", CAM_API_STS_BUSY);
    item->button_Clicked();
    QCOMPARE(bench.log, QStringList{"status = Orvo::Nd_GetNode(hCam, \"Node\", &hNode);\n"
                                    "status = Orvo::Nd_CmdExecute'hCam, hNode);\n"});
    QCOMPARE(scripted::node("Node").executed, 0);
}

void NodeItemEditorsTest::sliderSlotsDoNothing()
{
    NodeBench bench({floatNode(5)}, OpeLogRange);
    const auto item = bench.item();
    const QVariant before = item->data(Qt::EditRole);
    item->slider_EditingFinished();
    item->slider_sliderMoved();
    QCOMPARE(NodeBench::calls(), QStringList());
    QCOMPARE(bench.log, QStringList());
    QCOMPARE(item->data(Qt::EditRole), before);
}

} // namespace

ORVO_TEST_CLASS(NodeItemEditorsTest)
#include "NodeItemEditorsTest.moc"
