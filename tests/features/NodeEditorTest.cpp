// The kind of editor for a node, and the text of its type.

#include "features/item/NodeEditor.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

namespace {

using namespace Orvo;

class NodeEditorTest : public QObject {
    Q_OBJECT

private slots:
    void types_data();
    void types();
    void representations_data();
    void representations();
    void names_data();
    void names();
};

void NodeEditorTest::types_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("editor");
    const auto row = [](int type, const char* text, int editor) {
        QTest::addRow("%d %s", type, text) << type << QString(text) << editor;
    };
    row(0, "Value", 0);
    row(1, "Base", 0);
    row(2, "Integer", 1);
    row(3, "Boolean", 2);
    row(4, "Command", 4);
    row(5, "Float", 1);
    row(6, "String", 1);
    row(7, "Register", 0);
    row(8, "Category", 0);
    row(9, "Enumeration", 2);
    row(10, "EnumEntry", 0);
    row(11, "Port", 0);
    row(12, "Unknown", 0);
    row(13, "Not definded", 0);
    row(-1, "Not definded", 0);
    row(INT32_MAX, "Not definded", 0);
}

void NodeEditorTest::types()
{
    QFETCH(int, type);
    const auto nodeType = static_cast<NodeType>(type);
    QTEST(NodeEditor::typeText(nodeType), "text");
    const NodeEditor chosen = NodeEditor::choose(nodeType, "Node", NODE_REPRESENTATION_PURE_NUMBER, true);
    QTEST(static_cast<int>(chosen.editor), "editor");
    QCOMPARE(chosen.representation, NODE_REPRESENTATION_PURE_NUMBER);

    const NodeEditor linear = NodeEditor::choose(nodeType, "Node", NODE_REPRESENTATION_LINEAR, true);
    const bool slider = nodeType == NODE_TYPE_INTEGER || nodeType == NODE_TYPE_FLOAT;
    QCOMPARE(linear.editor, slider ? EditorSlider : chosen.editor);
}

void NodeEditorTest::representations_data()
{
    QTest::addColumn<int>("representation");
    QTest::addColumn<int>("ofInteger");
    QTest::addColumn<int>("ofFloat");
    QTest::newRow("linear") << 0 << 3 << 3;
    QTest::newRow("logarithmic") << 1 << 3 << 3;
    QTest::newRow("boolean") << 2 << 1 << 1;
    QTest::newRow("pure number") << 3 << 1 << 1;
    QTest::newRow("hexadecimal") << 4 << 1 << 1;
    QTest::newRow("IPv4") << 5 << 1 << 1;
    QTest::newRow("MAC") << 6 << 1 << 1;
    QTest::newRow("unknown") << 7 << 1 << 1;
    QTest::newRow("negative") << -1 << 1 << 3;
}

void NodeEditorTest::representations()
{
    QFETCH(int, representation);
    const auto given = static_cast<NodeRepresentation>(representation);
    const NodeEditor ofInteger = NodeEditor::choose(NODE_TYPE_INTEGER, "Node", given, true);
    QTEST(static_cast<int>(ofInteger.editor), "ofInteger");
    QCOMPARE(ofInteger.representation, given);
    const NodeEditor ofFloat = NodeEditor::choose(NODE_TYPE_FLOAT, "Node", given, true);
    QTEST(static_cast<int>(ofFloat.editor), "ofFloat");
    QCOMPARE(ofFloat.representation, given);
}

void NodeEditorTest::names_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("representation"); // -1: no slider, and the representation is kept
    const auto row = [](NodeType type, const char* name, int representation) {
        QTest::addRow("%d %s", type, name) << static_cast<int>(type) << QString(name) << representation;
    };
    row(NODE_TYPE_INTEGER, "Width", 0);
    row(NODE_TYPE_INTEGER, "Height", 0);
    row(NODE_TYPE_INTEGER, "OffsetX", 0);
    row(NODE_TYPE_INTEGER, "OffsetY", 0);
    row(NODE_TYPE_FLOAT, "ExposureTime", 1);
    row(NODE_TYPE_FLOAT, "Gain", 0);
    row(NODE_TYPE_INTEGER, "width", -1);
    row(NODE_TYPE_INTEGER, "WidthMax", -1);
    row(NODE_TYPE_INTEGER, "Gain", -1);
    row(NODE_TYPE_INTEGER, "ExposureTime", -1);
    row(NODE_TYPE_FLOAT, "Width", -1);
    row(NODE_TYPE_FLOAT, "exposuretime", -1);
    row(NODE_TYPE_FLOAT, "Gain ", -1);
}

void NodeEditorTest::names()
{
    QFETCH(int, type);
    QFETCH(QString, name);
    QFETCH(int, representation);
    const auto nodeType = static_cast<NodeType>(type);
    const NodeEditor chosen = NodeEditor::choose(nodeType, name, NODE_REPRESENTATION_HEX_NUMBER, true);
    QCOMPARE(chosen.editor, representation < 0 ? EditorLineEdit : EditorSlider);
    QCOMPARE(static_cast<int>(chosen.representation), representation < 0 ? 4 : representation);

    const NodeEditor plain = NodeEditor::choose(nodeType, name, NODE_REPRESENTATION_HEX_NUMBER, false);
    QCOMPARE(plain.editor, EditorLineEdit);
    QCOMPARE(plain.representation, NODE_REPRESENTATION_HEX_NUMBER);
}

} // namespace

ORVO_TEST_CLASS(NodeEditorTest)
#include "NodeEditorTest.moc"
