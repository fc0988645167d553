// Reading values: the texts, the cache, and which camera calls each read takes.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

namespace {

using namespace Orvo;

constexpr NodeAccessMode RO = NODE_ACCESS_MODE_RO;
constexpr NodeAccessMode RW = NODE_ACCESS_MODE_RW;

class NodeItemReadTest : public QObject {
    Q_OBJECT

private slots:
    void valueTexts_data();
    void valueTexts();
    void accessTexts_data();
    void accessTexts();
    void writeOnlyNodeWithUnit();
    void commandNode();
    void enumEntry();
    void typesWithoutValue_data();
    void typesWithoutValue();
    void cachedReadsMakeNoCalls_data();
    void cachedReadsMakeNoCalls();
    void forcedReadsAlwaysCallTheCamera();
    void failedReadIsTriedAgain_data();
    void failedReadIsTriedAgain();
    void failedReadKeepsTextAndNumber();
    void losingAccessInvalidatesTheCache();
    void unitGoesToTheEditRole();
};

// --- Values ---------------------------------------------------------------------------------------------------------

void NodeItemReadTest::valueTexts_data()
{
    QTest::addColumn<scripted::NodeSpec>("node");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const scripted::NodeSpec& spec, const char* text) {
        QTest::addRow("%s, read-write", name) << with(RW, spec) << QString::fromUtf8(text);
        QTest::addRow("%s, read-only", name) << with(RO, spec) << QString::fromUtf8(text);
    };
    scripted::NodeSpec on = nodeOf(NODE_TYPE_BOOLEAN);
    on.boolValue = 1;
    scripted::NodeSpec two = nodeOf(NODE_TYPE_BOOLEAN);
    two.boolValue = 2;
    row("integer", integerNode(-42), "-42");
    row("IPv4 address", with(NODE_REPRESENTATION_IPV4_ADDRESS, integerNode(0xC0A80001)), "192.168.0.1");
    row("MAC address", with(NODE_REPRESENTATION_MAC_ADDRESS, integerNode(0x0011223344AB)), "00-11-22-33-44-ab");
    row("hexadecimal", with(NODE_REPRESENTATION_HEX_NUMBER, integerNode(255)), "0x000000ff");
    row("boolean false", nodeOf(NODE_TYPE_BOOLEAN), "false");
    row("boolean true", on, "true");
    row("boolean of a byte that is neither 0 nor 1", two, "true");
    row("float", floatNode(12.3456), "12.35");
    row("string", stringNode("text"), "text");
    row("empty string", stringNode(""), "");
    row("string with markup and place markers", stringNode("<b>%1</b> & %2"), "<b>%1</b> & %2");
    row("string beyond ASCII", stringNode("gr\xC3\xBC\xC3\x9F"), "grüß");
    row("enumeration", enumNode({RO, RO}), "First");
}

void NodeItemReadTest::valueTexts()
{
    QFETCH(scripted::NodeSpec, node);
    QFETCH(QString, text);
    NodeBench bench({node});
    const auto item = bench.item();
    QCOMPARE(item->data(Qt::EditRole), QVariant(text)); // from the binding
    for (const bool force : {false, true}) {
        for (const bool withUnit : {false, true})
            QCOMPARE(item->getNodeValue(withUnit, force), text);
    }
    QCOMPARE(item->data(Qt::EditRole), QVariant(text));
}

void NodeItemReadTest::accessTexts_data()
{
    QTest::addColumn<int>("access");
    QTest::addColumn<QString>("text");
    QTest::newRow("not implemented") << 0 << "== Not Implemented ==";
    QTest::newRow("not available") << 1 << "== Not Available ==";
    QTest::newRow("write-only") << 2 << "== Write-Only ==";
    QTest::newRow("unknown") << 5 << "";
    QTest::newRow("not read") << 6 << "";
}

void NodeItemReadTest::accessTexts()
{
    QFETCH(int, access);
    QFETCH(QString, text);
    for (const NodeType type : {NODE_TYPE_INTEGER, NODE_TYPE_BOOLEAN, NODE_TYPE_COMMAND, NODE_TYPE_FLOAT,
                                NODE_TYPE_STRING, NODE_TYPE_ENUMERATION, NODE_TYPE_CATEGORY}) {
        NodeBench bench({with(static_cast<NodeAccessMode>(access), nodeOf(type))}, OpeLogRange);
        const auto item = bench.item();
        QCOMPARE(item->getNodeValue(true, true), text);
        QCOMPARE(item->getNodeValue(false, false), text);
        QCOMPARE(item->data(Qt::EditRole), QVariant(text));
        QCOMPARE(NodeBench::calls(), QStringList());
        QCOMPARE(bench.log, QStringList());
    }
}

void NodeItemReadTest::writeOnlyNodeWithUnit()
{
    scripted::NodeSpec spec = with(NODE_ACCESS_MODE_WO, floatNode(1));
    spec.unit = "ms";
    NodeBench bench({spec});
    const auto item = bench.item();
    QCOMPARE(item->getNodeValue(true, true), QString("== Write-Only == ms"));
    QCOMPARE(item->getNodeValue(false, true), QString("== Write-Only =="));
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Write-Only == ms")));
}

void NodeItemReadTest::commandNode()
{
    for (const NodeAccessMode access : {RO, RW}) {
        NodeBench bench({with(access, nodeOf(NODE_TYPE_COMMAND))}, OpeLogRange);
        const auto item = bench.item();
        QCOMPARE(item->getNodeValue(true, true), QString("== Command node =="));
        QCOMPARE(item->getNodeValue(true, false), QString("== Command node =="));
        QCOMPARE(NodeBench::calls(), QStringList());
        QCOMPARE(bench.log, QStringList());
        // Never cached: the next unforced read shows a change of the access mode.
        scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_NA; });
        item->updateAccessMode(nullptr);
        QCOMPARE(item->getNodeValue(true, false), QString("== Not Available =="));
    }
    NodeBench writeOnly({with(NODE_ACCESS_MODE_WO, nodeOf(NODE_TYPE_COMMAND))});
    QCOMPARE(writeOnly.item()->getNodeValue(true, true), QString("== Write-Only =="));
}

void NodeItemReadTest::enumEntry()
{
    NodeBench bench({enumNode({RO, RO})}, OpeLogRead);
    const auto item = bench.item("EnumEntry_Node_Second");
    QCOMPARE(item->getNodeType(), NODE_TYPE_ENUM_ENTRY);
    QCOMPARE(item->getNodeValue(true, true), QString("Second"));
    QCOMPARE(NodeBench::calls(),
             QStringList({"Nd_GetEnumEntryStrValue(null, out)", "Nd_GetEnumEntryStrValue(out, out)"}));
    QCOMPARE(bench.log, QStringList()); // it has no fragment
}

void NodeItemReadTest::typesWithoutValue_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {0, 1, 7, 8, 11, 12, 13, -1})
        QTest::addRow("type %d", type) << type;
}

void NodeItemReadTest::typesWithoutValue()
{
    QFETCH(int, type);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))}, OpeLogRange);
    const auto item = bench.item();
    QCOMPARE(item->getNodeValue(true, true), QString());
    item->updateVals(true);
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_GetAccessMode(out)"});
    QCOMPARE(bench.log, QStringList());
}

// --- Cache ----------------------------------------------------------------------------------------------------------

std::vector<scripted::NodeSpec> oneOfEachType()
{
    return {integerNode(1, "Integer"), nodeOf(NODE_TYPE_BOOLEAN, "Boolean"), floatNode(1, "Float"),
            stringNode("text", "String"), enumNode({RO}, "Enumeration")};
}

void NodeItemReadTest::cachedReadsMakeNoCalls_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<QStringList>("forced");
    QTest::newRow("integer") << "Integer" << QStringList{"Nd_GetIntValue(out)"};
    QTest::newRow("boolean") << "Boolean" << QStringList{"Nd_GetBoolValue(out)"};
    QTest::newRow("float") << "Float" << QStringList{"Nd_GetFloatValue(out)"};
    QTest::newRow("string") << "String" << QStringList{"Nd_GetStrValue(null, out)", "Nd_GetStrValue(out, out)"};
    QTest::newRow("enumeration") << "Enumeration"
                                 << QStringList{"Nd_GetEnumStrValue(null, out)", "Nd_GetEnumStrValue(out, out)"};
    QTest::newRow("enumeration entry") << "EnumEntry_Enumeration_First"
                                       << QStringList{"Nd_GetEnumEntryStrValue(null, out)",
                                                      "Nd_GetEnumEntryStrValue(out, out)"};
}

void NodeItemReadTest::cachedReadsMakeNoCalls()
{
    QFETCH(QString, node);
    QFETCH(QStringList, forced);
    NodeBench bench(oneOfEachType(), OpeLogRange);
    const auto item = bench.item(node.toStdString());
    for (int i = 0; i < 3; ++i)
        item->getNodeValue(true, false);
    item->getValInt(false);
    item->getValFloat(false);
    QCOMPARE(NodeBench::calls(), QStringList());
    QCOMPARE(bench.log, QStringList());
    item->getNodeValue(true, true);
    QCOMPARE(NodeBench::calls(), forced);
}

void NodeItemReadTest::forcedReadsAlwaysCallTheCamera()
{
    NodeBench bench({integerNode(1)});
    const auto item = bench.item();
    item->getNodeValue(false, true);
    item->getValInt(true);
    item->getValFloat(true);
    QCOMPARE(scripted::count("Nd_GetIntValue"), 3);
}

void NodeItemReadTest::failedReadIsTriedAgain_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("nth");
    const auto row = [](const char* name, const char* node, const char* operation, int nth = 1) {
        QTest::newRow(name) << QString(node) << QString(operation) << nth;
    };
    row("integer", "Integer", "Nd_GetIntValue");
    row("boolean", "Boolean", "Nd_GetBoolValue");
    row("float", "Float", "Nd_GetFloatValue");
    row("size of a string", "String", "Nd_GetStrValue");
    row("string", "String", "Nd_GetStrValue", 2);
    row("size of an entry name", "Enumeration", "Nd_GetEnumStrValue");
    row("entry name", "Enumeration", "Nd_GetEnumStrValue", 2);
    row("size of an entry's name", "EnumEntry_Enumeration_First", "Nd_GetEnumEntryStrValue");
    row("entry's name", "EnumEntry_Enumeration_First", "Nd_GetEnumEntryStrValue", 2);
}

void NodeItemReadTest::failedReadIsTriedAgain()
{
    QFETCH(QString, node);
    QFETCH(QString, operation);
    QFETCH(int, nth);
    NodeBench bench(oneOfEachType());
    const auto item = bench.item(node.toStdString());
    const QString before = item->getNodeValue(true, false);
    scripted::failCall(operation.toStdString(), CAM_API_STS_TIMEOUT, nth);
    QCOMPARE(item->getNodeValue(true, true), before); // the text stays
    const int afterFailure = scripted::count(operation.toStdString());
    QCOMPARE(afterFailure, nth);
    QCOMPARE(item->getNodeValue(true, false), before);
    const int afterSuccess = scripted::count(operation.toStdString());
    QVERIFY(afterSuccess > afterFailure); // a failure is not cached
    QCOMPARE(item->getNodeValue(true, false), before);
    QCOMPARE(scripted::count(operation.toStdString()), afterSuccess);
}

void NodeItemReadTest::failedReadKeepsTextAndNumber()
{
    NodeBench bench({integerNode(41), floatNode(4.5, "Float")});
    const auto integer = bench.item("Node");
    const auto real = bench.item("Float");
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.intValue = 42; });
    scripted::changeNode("Float", [](scripted::NodeSpec& spec) { spec.floatValue = 5.5; });
    scripted::failAlways("Nd_GetIntValue", CAM_API_STS_TIMEOUT);
    scripted::failAlways("Nd_GetFloatValue", CAM_API_STS_TIMEOUT);
    QCOMPARE(integer->getValInt(true), 41L);
    QCOMPARE(integer->getNodeValue(false, false), QString("41"));
    QCOMPARE(real->getValFloat(true), 4.5);
    QCOMPARE(real->data(Qt::EditRole), QVariant(QString("4.50")));
    scripted::heal("Nd_GetIntValue");
    scripted::heal("Nd_GetFloatValue");
    QCOMPARE(integer->getValInt(false), 42L);
    QCOMPARE(real->getValFloat(false), 5.5);
}

void NodeItemReadTest::losingAccessInvalidatesTheCache()
{
    NodeBench bench({integerNode(41)});
    const auto item = bench.item();
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_NA; });
    item->updateAccessMode(nullptr);
    QCOMPARE(item->getNodeValue(false, false), QString("41")); // the text is still valid
    QCOMPARE(item->getNodeValue(false, true), QString("== Not Available =="));
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_RO; });
    item->updateAccessMode(nullptr);
    QCOMPARE(item->getNodeValue(false, false), QString("41")); // it was not valid after the failure
    QCOMPARE(scripted::count("Nd_GetIntValue"), 1);
}

void NodeItemReadTest::unitGoesToTheEditRole()
{
    NodeBench bench({exposure()});
    const auto item = bench.item();
    QCOMPARE(item->getNodeValue(true, true), QString("12.35 us"));
    QCOMPARE(item->getNodeValue(false, true), QString("12.35"));
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("12.35 us")));
    // A text that someone else stored is replaced, even from the cache, and nothing is written.
    item->QStandardItem::setData(QString("else"), Qt::EditRole);
    QCOMPARE(item->getNodeValue(false, false), QString("12.35"));
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("12.35 us")));
    QCOMPARE(NodeBench::calls(), QStringList({"Nd_GetFloatValue(out)", "Nd_GetFloatValue(out)"}));

    scripted::NodeSpec odd = stringNode("%2 %1");
    odd.unit = "%1 <i>%2</i>";
    NodeBench withMarkers({odd});
    QCOMPARE(withMarkers.item()->getNodeValue(true, true), QString("%2 %1 %1 <i>%2</i>"));
}

} // namespace

ORVO_TEST_CLASS(NodeItemReadTest)
#include "NodeItemReadTest.moc"
