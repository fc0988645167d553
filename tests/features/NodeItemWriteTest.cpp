// Writing typed texts: what the camera gets, what is shown afterwards, and what failures do.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;

class NodeItemWriteTest : public QObject {
    Q_OBJECT

private slots:
    void texts_data();
    void texts();
    void refusedTexts_data();
    void refusedTexts();
    void notWritable_data();
    void notWritable();
    void writeOnlyIsWritable();
    void typesThatCannotBeWritten_data();
    void typesThatCannotBeWritten();
    void failedWrite_data();
    void failedWrite();
    void successIsCached();
    void failureInvalidatesTheCache();
    void refusedTextKeepsTheCache();
    void textWriteKeepsTheNumberReadLast();
    void commands_data();
    void commands();
    void unitStaysInTheEditRole();
    void displayOfRefusedText();
    void longTexts();
    void latin1();
    void triggerNodes_data();
    void triggerNodes();
    void triggerNodesByNumberCheckNothing();
    void writesNeverReadProperties();
};

QString written(const char* operation, const QString& value)
{
    return QString(operation) + '(' + value + ", true)";
}

// --- Texts ----------------------------------------------------------------------------------------------------------

void NodeItemWriteTest::texts_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* name, const scripted::NodeSpec& node, const QString& text, const QString& call,
                        const QString& shown) { QTest::newRow(name) << node << text << call << shown; };
    const scripted::NodeSpec integer = integerNode(5);
    const scripted::NodeSpec hex = with(NODE_REPRESENTATION_HEX_NUMBER, integer);
    row("integer", integer, "31", written("Nd_SetIntValue", "31"), "31");
    row("negative integer", integer, "-31", written("Nd_SetIntValue", "-31"), "-31");
    row("integer with unit", integer, "31 px wide", written("Nd_SetIntValue", "31"), "31");
    row("integer in hexadecimal digits", integer, "0x1F", written("Nd_SetIntValue", "31"), "31");
    row("hexadecimal", hex, "0x1F", written("Nd_SetIntValue", "31"), "0x0000001f");
    row("hexadecimal in decimal digits", hex, "31", written("Nd_SetIntValue", "31"), "0x0000001f");
    row("least integer", integer, "-9223372036854775808", written("Nd_SetIntValue", "-9223372036854775808"),
        "-9223372036854775808");
    row("most integer", hex, "9223372036854775807", written("Nd_SetIntValue", "9223372036854775807"),
        "0x7fffffffffffffff");
    row("IPv4 address", with(NODE_REPRESENTATION_IPV4_ADDRESS, integer), "192.168.0.1",
        written("Nd_SetIntValue", "11013121"), "192.168.0.1");
    row("IPv4 address with a blank", with(NODE_REPRESENTATION_IPV4_ADDRESS, integer), "192.168.0.1 .5",
        written("Nd_SetIntValue", "11013121"), "192.168.0.1");
    row("MAC address", with(NODE_REPRESENTATION_MAC_ADDRESS, integer), "0-17-34-51-68-171",
        written("Nd_SetIntValue", QString::number(0x0011223344AB)), "00-11-22-33-44-ab");

    const scripted::NodeSpec boolean = nodeOf(NODE_TYPE_BOOLEAN);
    row("false", boolean, "false", written("Nd_SetBoolValue", "false"), "false");
    row("FALSE", boolean, "FALSE", written("Nd_SetBoolValue", "false"), "false");
    row("true", boolean, "true", written("Nd_SetBoolValue", "true"), "true");
    row("no", boolean, "no", written("Nd_SetBoolValue", "true"), "true");
    row("0", boolean, "0", written("Nd_SetBoolValue", "true"), "true");
    row("false and a blank", boolean, "false ", written("Nd_SetBoolValue", "true"), "true");

    const scripted::NodeSpec real = floatNode(5);
    scripted::NodeSpec scientific = real;
    scientific.notation = FLOAT_DISPLAY_NOTATION_SCIENTIFIC;
    scientific.precision = 1;
    row("float", real, "1500.25", written("Nd_SetFloatValue", "1500.25"), "1500.25");
    row("float with unit", real, "1500 us", written("Nd_SetFloatValue", "1500"), "1500.00");
    row("float with a leading blank", real, " 1500", written("Nd_SetFloatValue", "1500"), "1500.00");
    row("float in the node's notation", scientific, "1500", written("Nd_SetFloatValue", "1500"), "1.5e+03");
    row("float with exponent", real, "1.5e3", written("Nd_SetFloatValue", "1500"), "1500.00");

    row("string", stringNode("old"), "new text", written("Nd_SetStrValue", "\"new text\""), "new text");
    row("empty string", stringNode("old"), "", written("Nd_SetStrValue", "\"\""), "");
    row("string with markup", stringNode("old"), " <b>%1</b> & %2 ", written("Nd_SetStrValue", "\" <b>%1</b> & %2 \""),
        " <b>%1</b> & %2 ");

    row("enumeration", enumNode({RO, RO}), "Second", written("Nd_SetEnumStrValue", "\"Second\""), "Second");
}

void NodeItemWriteTest::texts()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(QString, text);
    QFETCH(QString, call);
    QFETCH(QString, shown);
    NodeBench bench({node});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(text), 0);
    QCOMPARE(NodeBench::calls(), QStringList{call});
    QCOMPARE(item->data(Qt::EditRole), QVariant(shown));
    QCOMPARE(item->getNodeValue(false, false), shown);
    QCOMPARE(NodeBench::calls().size(), 1);

    // The same through QAbstractItemModel::setData().
    NodeBench again({node});
    const auto edited = again.item();
    edited->setData(text, Qt::EditRole);
    QCOMPARE(NodeBench::calls(), QStringList{call});
    QCOMPARE(edited->data(Qt::EditRole), QVariant(shown));
}

void NodeItemWriteTest::refusedTexts_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const scripted::NodeSpec& node, const QString& text) {
        QTest::newRow(name) << node << text;
    };
    const scripted::NodeSpec ipv4 = with(NODE_REPRESENTATION_IPV4_ADDRESS, integerNode(5));
    const scripted::NodeSpec mac = with(NODE_REPRESENTATION_MAC_ADDRESS, integerNode(5));
    row("integer, empty", integerNode(5), "");
    row("integer, no number", integerNode(5), "five");
    row("integer, upper-case X", integerNode(5), "0X1F");
    row("integer, leading blank and unit", integerNode(5), " 31 px");
    row("integer, too large", integerNode(5), "9223372036854775808");
    row("integer, fraction", integerNode(5), "1.5");
    row("IPv4, empty", ipv4, "");
    row("IPv4, three parts", ipv4, "192.168.0");
    row("IPv4, blank inside", ipv4, "192. 168.0.1");
    row("MAC, empty", mac, "");
    row("MAC, hexadecimal", mac, "00-11-22-33-44-ab");
    row("boolean, empty", nodeOf(NODE_TYPE_BOOLEAN), "");
    row("float, empty", floatNode(5), "");
    row("float, no number", floatNode(5), "fast");
    row("float, comma", floatNode(5), "1,5");
    row("float, leading blank and unit", floatNode(5), " 1500 us");
    row("float, hexadecimal", floatNode(5), "0x1F");
    row("command, empty", nodeOf(NODE_TYPE_COMMAND), "");
    row("command, other number", nodeOf(NODE_TYPE_COMMAND), "2");
    row("command, number with a blank", nodeOf(NODE_TYPE_COMMAND), "1 ");
    row("command, padded number", nodeOf(NODE_TYPE_COMMAND), "01");
    row("command, true", nodeOf(NODE_TYPE_COMMAND), "true");
    row("command, part of the word", nodeOf(NODE_TYPE_COMMAND), "Exec");
}

void NodeItemWriteTest::refusedTexts()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(QString, text);
    NodeBench bench({node});
    const auto item = bench.item();
    const QVariant before = item->data(Qt::EditRole);
    QCOMPARE(item->setNodeValue(text), 13);
    QCOMPARE(NodeBench::calls(), QStringList());
    QCOMPARE(item->data(Qt::EditRole), before);
}

void NodeItemWriteTest::notWritable_data()
{
    QTest::addColumn<int>("access");
    for (const int access : {0, 1, 3, 5, 6})
        QTest::addRow("access mode %d", access) << access;
}

void NodeItemWriteTest::notWritable()
{
    QFETCH(int, access);
    const auto mode = static_cast<NodeAccessMode>(access);
    NodeBench bench({with(mode, integerNode(5, "TriggerMode")), with(mode, floatNode(5, "Float")),
                     with(mode, enumNode({RO}, "Enumeration")), with(mode, nodeOf(NODE_TYPE_CATEGORY, "Category"))},
                    OpeLogRange);
    for (const char* name : {"TriggerMode", "Float", "Enumeration", "Category"}) {
        const auto item = bench.item(name);
        const QVariant before = item->data(Qt::EditRole);
        QCOMPARE(item->setNodeValue(QString("1")), 2055);
        QCOMPARE(item->setNodeValue(1L), 13);
        QCOMPARE(item->setNodeValue(1.0), 13);
        QCOMPARE(NodeBench::calls(), QStringList());
        QCOMPARE(bench.log, QStringList());
        QCOMPARE(item->data(Qt::EditRole), before);
    }
    QCOMPARE(bench.triggerChecks, 0);
}

void NodeItemWriteTest::writeOnlyIsWritable()
{
    scripted::NodeSpec spec = with(NODE_ACCESS_MODE_WO, integerNode(5));
    spec.unit = "px";
    NodeBench bench({spec, with(NODE_ACCESS_MODE_WO, nodeOf(NODE_TYPE_COMMAND, "Command"))});
    const auto item = bench.item("Node");
    QCOMPARE(item->setNodeValue(QString("7")), 0);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("7 px"))); // until it is read again
    QCOMPARE(item->getNodeValue(false, false), QString("7"));
    QCOMPARE(item->getNodeValue(false, true), QString("== Write-Only =="));
    QCOMPARE(item->setNodeValue(8L), 0);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Write-Only == px")));
    QCOMPARE(bench.item("Command")->setNodeValue(QString("1")), 0);
    QCOMPARE(scripted::node("Command").executed, 1);
}

void NodeItemWriteTest::typesThatCannotBeWritten_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {0, 1, 7, 8, 10, 11, 12, 13})
        QTest::addRow("type %d", type) << type;
}

void NodeItemWriteTest::typesThatCannotBeWritten()
{
    QFETCH(int, type);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(QString("1")), 13);
    QCOMPARE(item->setNodeValue(1L), 13);
    QCOMPARE(item->setNodeValue(1.0), 13);
    const QString operation = NodeBench::calls().join(' ');
    QVERIFY2(!operation.contains("Nd_Set") && !operation.contains("Nd_Cmd"), qPrintable(operation));
}

void NodeItemWriteTest::failedWrite_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("operation");
    const auto row = [](const scripted::NodeSpec& node, const char* text, const char* operation) {
        QTest::newRow(operation) << node << QString(text) << QString(operation);
    };
    row(integerNode(5), "31", "Nd_SetIntValue");
    row(nodeOf(NODE_TYPE_BOOLEAN), "true", "Nd_SetBoolValue");
    row(floatNode(5), "31", "Nd_SetFloatValue");
    row(stringNode("old"), "new", "Nd_SetStrValue");
    row(enumNode({RO, RO}), "Second", "Nd_SetEnumStrValue");
    row(nodeOf(NODE_TYPE_COMMAND), "1", "Nd_CmdExecute");
}

void NodeItemWriteTest::failedWrite()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(QString, text);
    QFETCH(QString, operation);
    NodeBench bench({node});
    const auto item = bench.item();
    const QVariant before = item->data(Qt::EditRole);
    scripted::failAlways(operation.toStdString(), CAM_API_STS_BUSY);
    QCOMPARE(item->setNodeValue(text), 2053);
    QCOMPARE(NodeBench::calls().size(), 1);
    QCOMPARE(item->data(Qt::EditRole), before);
}

// --- Cache ----------------------------------------------------------------------------------------------------------

void NodeItemWriteTest::successIsCached()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    item->setNodeValue(QString("31"));
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.intValue = 32; }); // the camera changes its value
    QCOMPARE(item->getNodeValue(false, false), QString("31"));
    QCOMPARE(scripted::count("Nd_GetIntValue"), 0);
    QCOMPARE(item->getNodeValue(false, true), QString("32"));
}

void NodeItemWriteTest::failureInvalidatesTheCache()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    scripted::failAlways("Nd_SetIntValue", CAM_API_STS_TIMEOUT);
    QCOMPARE(item->setNodeValue(QString("31")), 18);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5")));
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.intValue = 6; });
    QCOMPARE(item->getNodeValue(false, false), QString("6"));
    QCOMPARE(scripted::count("Nd_GetIntValue"), 1);
}

void NodeItemWriteTest::refusedTextKeepsTheCache()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(QString("five")), 13);
    QCOMPARE(item->getNodeValue(false, false), QString("5"));
    QCOMPARE(NodeBench::calls(), QStringList()); // nothing was written, so the cache is still valid
}

void NodeItemWriteTest::textWriteKeepsTheNumberReadLast()
{
    NodeBench bench({integerNode(5), floatNode(5.5, "Float")});
    const auto integer = bench.item("Node");
    integer->setNodeValue(QString("31"));
    QCOMPARE(integer->getValInt(false), 5L);
    QCOMPARE(integer->getValInt(true), 31L);
    const auto real = bench.item("Float");
    real->setNodeValue(QString("31.5"));
    QCOMPARE(real->getValFloat(false), 5.5);
    QCOMPARE(real->getValFloat(true), 31.5);
}

// --- Commands and strings -------------------------------------------------------------------------------------------

void NodeItemWriteTest::commands_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"Execute", "execute", "EXECUTE", "eXeCuTe", "1"})
        QTest::newRow(text) << QString(text);
}

void NodeItemWriteTest::commands()
{
    QFETCH(QString, text);
    NodeBench bench({nodeOf(NODE_TYPE_COMMAND)});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(text), 0);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_CmdExecute(true)"});
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Command node ==")));
}

void NodeItemWriteTest::unitStaysInTheEditRole()
{
    NodeBench bench({exposure()});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(item->data(Qt::EditRole).toString()), 13); // 12.35 is off the steps of 0.5
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("12.35 us")));
    QCOMPARE(item->setNodeValue(QString("1500 us")), 0);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("1500.00 us")));
    QCOMPARE(item->setNodeValue(QString("1501")), 0);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("1501.00 us")));
}

void NodeItemWriteTest::displayOfRefusedText()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    item->QStandardItem::setData(QString("typed nonsense"), Qt::EditRole);
    QCOMPARE(item->setNodeValue(QString("typed nonsense")), 13);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("5"))); // the item's value is restored
}

void NodeItemWriteTest::longTexts()
{
    NodeBench bench({stringNode("old")});
    const auto item = bench.item();
    const QString text(65535, 'x');
    QCOMPARE(item->setNodeValue(text), 0);
    QCOMPARE(QString::fromStdString(scripted::node("Node").strValue), text);
    QCOMPARE(item->data(Qt::EditRole), QVariant(text));
    QCOMPARE(item->getNodeValue(true, true), text);

    NodeBench number({integerNode(5)});
    QCOMPARE(number.item()->setNodeValue(QString(65535, '1')), 13);
}

void NodeItemWriteTest::latin1()
{
    NodeBench bench({stringNode("old")});
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(QString::fromUtf8("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC")), 0); // Latin-1 has no euro sign
    QCOMPARE(scripted::node("Node").strValue, std::string("gr\xFC\xDF ?"));
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString::fromUtf8("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC")));

    scripted::NodeSpec spec = nodeOf(NODE_TYPE_ENUMERATION);
    spec.entries = {scripted::enumEntry("One", 0), scripted::enumEntry("gr\xFC", 1)};
    NodeBench enumeration({spec});
    QCOMPARE(enumeration.item()->setNodeValue(QString::fromUtf8("gr\xC3\xBC")), 0);
}

// --- Trigger --------------------------------------------------------------------------------------------------------

void NodeItemWriteTest::triggerNodes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("checks");
    QTest::newRow("TriggerMode") << "TriggerMode" << 1;
    QTest::newRow("TriggerSource") << "TriggerSource" << 1;
    QTest::newRow("lower case") << "triggermode" << 0;
    QTest::newRow("longer name") << "TriggerModes" << 0;
    QTest::newRow("another node") << "TriggerSelector" << 0;
}

void NodeItemWriteTest::triggerNodes()
{
    QFETCH(QString, name);
    QFETCH(int, checks);
    NodeBench bench({enumNode({RO, RO}, name.toStdString())}, OpeLogWrite);
    const auto item = bench.item();
    QCOMPARE(item->setNodeValue(QString("Second")), 0);
    QCOMPARE(bench.triggerChecks, checks);
    QCOMPARE(item->setNodeValue(QString("Nowhere")), 13); // a failed write may still have changed it
    QCOMPARE(bench.triggerChecks, 2 * checks);

    bool logged = false;
    QString shown;
    QObject::connect(&bench.view, &FeatureView::checkSoftwareTriggerMode, &bench.view, [&] {
        logged = bench.log.size() == 3;
        shown = item->data(Qt::EditRole).toString();
    });
    QCOMPARE(item->setNodeValue(QString("First")), 0);
    QCOMPARE(logged, checks == 1);
    QCOMPARE(shown, QString(checks == 1 ? "Second" : "")); // the value is stored after the check
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("First")));
}

void NodeItemWriteTest::triggerNodesByNumberCheckNothing()
{
    NodeBench bench({enumNode({RO, RO}, "TriggerMode")});
    QCOMPARE(bench.item()->setNodeValue(20L), 0);
    QCOMPARE(bench.triggerChecks, 0);
}

void NodeItemWriteTest::writesNeverReadProperties()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) {
        spec.access = NODE_ACCESS_MODE_RO;
        spec.intMax = 3;
    });
    QCOMPARE(item->setNodeValue(QString("7")), 2055); // the camera's status
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetIntValue(7, true)"});
    QVERIFY(item->isWritable());
    QCOMPARE(item->getMaxInt(), 0L);
}

} // namespace

ORVO_TEST_CLASS(NodeItemWriteTest)
#include "NodeItemWriteTest.moc"
